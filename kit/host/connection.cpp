#include "connection.h"

#include "identifiers.h"
#include "runtime_directory.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/uio.h>

namespace koriil
{
namespace
{

using std::chrono::microseconds;

// What is left of a wait is rounded up to this, so that a kept connection's timeout need not be set again for every call.
constexpr microseconds kTimeoutStep{10000};

microseconds roundedUp(microseconds time)
{
    return (time + kTimeoutStep - microseconds(1)) / kTimeoutStep * kTimeoutStep;
}

bool setTimeout(int socket, int option, microseconds timeout)
{
    // A 32-bit time_t ends at 68 years, a 32-bit wait at 136.
    const auto seconds = std::min<std::int64_t>(timeout.count() / 1000000, INT32_MAX);
    timeval value = {};
    value.tv_sec = static_cast<time_t>(seconds);
    value.tv_usec = static_cast<suseconds_t>(timeout.count() % 1000000);
    return setsockopt(socket, SOL_SOCKET, option, &value, sizeof value) == 0;
}

std::uint32_t failedToOpen(const char* what, const char* serviceId)
{
    const int error = errno;
    const bool shortage = error == EMFILE || error == ENFILE || error == ENOMEM || error == ENOBUFS;
    KORIIL_REPORT(kTraceWarning, "%s for service %s failed: %s", what, serviceId, std::strerror(error));
    return shortage ? KOR_IIL_NO_MEM : KOR_IIL_ERR;
}

std::uint32_t failedToConnect(const char* serviceId)
{
    switch (errno)
    {
    case ENOENT:
    case ECONNREFUSED: // the socket of a service that is no more
        return KOR_IIL_UNKNOWN_DST_ID;
    case EAGAIN: // the service is not accepting, and its queue of callers is full
        return KOR_IIL_TIMEOUT;
    case EACCES:
        return KOR_IIL_UNKNOWN_COMM;
    case EPROTOTYPE: // a socket, of another kind
        return KOR_IIL_MISMATCH_COMM;
    default:
        return failedToOpen("connecting", serviceId);
    }
}

} // namespace

std::uint32_t judgeReply(const PacketHeader& request, const PacketHeader& reply, std::size_t received)
{
    switch (originOf(reply, received))
    {
    case PacketOrigin::Foreign:
        return KOR_IIL_MISMATCH_COMM;
    case PacketOrigin::Malformed:
        return KOR_IIL_BAD_RET;
    case PacketOrigin::Sound:
        break;
    }

    const bool whole = reply.length == received - sizeof(PacketHeader);
    const bool answers =
        reply.kind == PacketKind::Reply && reply.sequence == request.sequence && reply.command == request.command;
    if (!whole || !answers)
        return KOR_IIL_BAD_RET;
    if (reply.status != KOR_IIL_OK)
        return reply.length == 0 ? KOR_IIL_OK : KOR_IIL_BAD_RET;
    return reply.length == request.length ? KOR_IIL_OK : KOR_IIL_MISMATCH_CMD_LEN;
}

Connection::Connection(const char* serviceId) : owner_(getpid())
{
    copyIdentifier(serviceId_, serviceId);
}

Connection::~Connection()
{
    if (!socket_)
        return;
    if (isOwn())
        shutdown(socket_.get(), SHUT_RDWR); // a child may hold a copy, and the service would not see the end
    else if (!isStillOurSocket())
        socket_.release();
}

bool Connection::isTo(const char* serviceId) const
{
    return std::strcmp(serviceId_, serviceId) == 0;
}

bool Connection::isOwn() const
{
    return owner_ == getpid();
}

// A child may have closed what it inherited and given the number to a file of its own.
bool Connection::isStillOurSocket() const
{
    struct stat status = {};
    return fstat(socket_.get(), &status) == 0 && S_ISSOCK(status.st_mode) && status.st_ino == inode_;
}

std::uint32_t Connection::open(const char* serviceId, const Deadline& deadline, std::unique_ptr<Connection>& connection)
{
    std::unique_ptr<Connection> fresh(new Connection(serviceId));
    std::uint32_t status = fresh->connect(deadline);
    if (status == KOR_IIL_OK)
        status = fresh->greet(deadline);
    if (status == KOR_IIL_OK)
        connection = std::move(fresh);
    return status;
}

std::uint32_t Connection::connect(const Deadline& deadline)
{
    std::string directory;
    if (const std::uint32_t status = findRuntimeDirectory(directory))
        return status;
    sockaddr_un address;
    if (const std::uint32_t status = socketAddress(socketPath(directory, serviceId_), address))
        return status;

    socket_ = Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    struct stat identity = {};
    if (!socket_ || fstat(socket_.get(), &identity) != 0)
        return failedToOpen("opening a socket", serviceId_);
    inode_ = identity.st_ino;

    for (;;)
    {
        const microseconds remaining = deadline.remaining();
        if (remaining <= microseconds(0))
            return KOR_IIL_TIMEOUT;
        if (!setTimeout(socket_.get(), SO_SNDTIMEO, roundedUp(remaining)))
            return failedToOpen("setting a time-out", serviceId_);
        if (::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return KOR_IIL_OK;
        if (errno != EINTR)
            return failedToConnect(serviceId_);
    }
}

std::uint32_t Connection::greet(const Deadline& deadline)
{
    PacketHeader hello;
    hello.kind = PacketKind::Hello;
    copyIdentifier(hello.name, serviceId_);
    // A service that has no room says so and hangs up at once; its answer can be read even if the hello finds nobody.
    if (send(hello, nullptr) == Sending::Failed)
        return KOR_IIL_TX_FAIL;

    PacketHeader welcome;
    const ssize_t received = receiveBytes(deadline, &welcome, sizeof welcome);
    if (received < 0 && errno == EAGAIN)
        return KOR_IIL_TIMEOUT;
    if (received <= 0)
        return KOR_IIL_RX_FAIL;
    if (const std::uint32_t status = judgeReply(hello, welcome, static_cast<std::size_t>(received)))
        return status;
    channel_ = welcome.channel;
    return welcome.status;
}

Connection::Sending Connection::send(PacketHeader& request, const void* message)
{
    request.sequence = ++sequence_;

    iovec parts[2] = {};
    parts[0].iov_base = &request;
    parts[0].iov_len = sizeof request;
    parts[1].iov_base = const_cast<void*>(message);
    parts[1].iov_len = request.length;
    msghdr packet = {};
    packet.msg_iov = parts;
    packet.msg_iovlen = request.length > 0 ? 2 : 1;

    // It never has to wait for room: there is one request on its way at a time.
    ssize_t sent;
    do
        sent = sendmsg(socket_.get(), &packet, MSG_NOSIGNAL | MSG_DONTWAIT);
    while (sent < 0 && errno == EINTR);

    if (sent >= 0)
        return Sending::Sent;
    if (errno == EPIPE || errno == ECONNRESET)
        return Sending::PeerGone;
    KORIIL_REPORT(kTraceWarning, "sending %zu bytes to service %s failed: %s", sizeof request + request.length, serviceId_,
                  std::strerror(errno));
    return Sending::Failed;
}

bool Connection::waitForEver()
{
    receiveTimeout_ = microseconds(0);
    return setTimeout(socket_.get(), SO_RCVTIMEO, receiveTimeout_);
}

std::uint32_t Connection::receive(const PacketHeader& request, const Deadline& deadline, Packet& reply)
{
    const ssize_t received = receiveBytes(deadline, &reply, sizeof reply);
    if (received < 0 && errno == EAGAIN)
        return KOR_IIL_TIMEOUT;
    if (received <= 0)
        return KOR_IIL_RX_FAIL;
    return judgeReply(request, reply.header, static_cast<std::size_t>(received));
}

// Returns the packet's own length, even if the buffer holds only the first part of it; 0 when the peer is gone; -1 with EAGAIN
// when the deadline has passed.
ssize_t Connection::receiveBytes(const Deadline& deadline, void* buffer, std::size_t size)
{
    for (;;)
    {
        const microseconds remaining = deadline.remaining();
        if (remaining <= microseconds(0))
        {
            errno = EAGAIN;
            return -1;
        }
        if (const microseconds timeout = roundedUp(remaining); timeout != receiveTimeout_)
        {
            if (!setTimeout(socket_.get(), SO_RCVTIMEO, timeout))
                return -1;
            receiveTimeout_ = timeout;
        }
        const ssize_t received = recv(socket_.get(), buffer, size, MSG_TRUNC);
        if (received >= 0)
            return received;
        // A peer that hung up without reading everything is reported first, before what it said last. That error comes once.
        if (errno != EINTR && errno != EAGAIN && errno != ECONNRESET)
            return -1;
    }
}

} // namespace koriil
