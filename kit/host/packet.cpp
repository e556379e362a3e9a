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
    constexpr int kFlags = MSG_NOSIGNAL | MSG_DONTWAIT;
    iovec parts[2] = {};
    parts[0].iov_base = const_cast<PacketHeader*>(&header);
    parts[0].iov_len = sizeof header;
    parts[1].iov_base = const_cast<void*>(message);
    parts[1].iov_len = header.length;
    msghdr packet = {};
    packet.msg_iov = parts;
    packet.msg_iovlen = 2;

    const bool isOnePart = header.length == 0 || message == &header + 1; // which costs the kernel less than a list of parts
    ssize_t sent;
    do
        sent = isOnePart ? send(socket, &header, sizeof header + header.length, kFlags) : sendmsg(socket, &packet, kFlags);
    while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

} // namespace koriil
