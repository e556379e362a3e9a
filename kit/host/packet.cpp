#include "packet.h"

#include <cerrno>

#include <sys/socket.h>
#include <sys/uio.h>

namespace koriil
{

PacketValidity validityOf(const PacketHeader& header, std::size_t received)
{
    if (received < offsetof(PacketHeader, kind))
        return PacketValidity::kMalformed;
    if (header.magic == kMagicOfOtherByteOrder || (header.magic == kMagic && header.version != kVersion))
        return PacketValidity::kForeign;
    if (header.magic != kMagic || received < sizeof(PacketHeader))
        return PacketValidity::kMalformed;
    return PacketValidity::kValid;
}

bool sendPacket(int socket, const PacketHeader& header, const void* message)
{
    iovec parts[2] = {};
    parts[0].iov_base = const_cast<PacketHeader*>(&header);
    parts[0].iov_len = sizeof header;
    parts[1].iov_base = const_cast<void*>(message);
    parts[1].iov_len = header.length;
    msghdr packet = {};
    packet.msg_iov = parts;
    packet.msg_iovlen = header.length > 0 ? 2 : 1;

    ssize_t sent;
    do
        sent = sendmsg(socket, &packet, MSG_NOSIGNAL | MSG_DONTWAIT);
    while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

} // namespace koriil
