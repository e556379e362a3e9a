#include "connection.h"

#include "identifiers.h"
#include "runtime_directory.h"
#include "trace.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>

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
    const std::uint32_t status = statusOfErrno();
    KORIIL_REPORT(kTraceWarning, "%s for service %s failed: %s", what, serviceId, std::strerror(errno));
    return status;
}

std::uint32_t failedToConnect(const char* serviceId)
{
    switch (errno)
    {
    case ENOENT:
    case ECONNREFUSED: // the socket of a service that has ended
        return KOR_IIL_UNKNOWN_DST_ID;
    case EAGAIN: // the service does not accept, and its backlog is full
        return KOR_IIL_TIMEOUT;
    case EACCES:
        return KOR_IIL_UNKNOWN_COMM;
    case EPROTOTYPE: // a socket of another type
        return KOR_IIL_MISMATCH_COMM;
    default:
        return failedToOpen("connecting", serviceId);
    }
}

} // namespace

std::uint32_t checkReply(const PacketHeader& request, const PacketHeader& reply, std::size_t received)
{
    switch (validityOf(reply, received))
    {
    case PacketValidity::kForeign:
        return KOR_IIL_MISMATCH_COMM;
    case PacketValidity::kMalformed:
        return KOR_IIL_BAD_RET;
    case PacketValidity::kValid:
        break;
    }

    const bool whole = reply.length == received - sizeof(PacketHeader);
    const bool answers =
        reply.kind == PacketKind::kReply && reply.sequence == request.sequence && reply.command == request.command;
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
    if (!isStillOurSocket())
        socket_.release();
    else if (isOwn())
        hangUp(); // closing alone would not end it while a child holds a copy
}

bool Connection::isTo(const char* serviceId) const
{
    return std::strcmp(serviceId_, serviceId) == 0;
}

bool Connection::isOwn() const
{
    return owner_ == getpid();
}

bool Connection::isAlive() const
{
    if (!isStillOurSocket())
        return false;
    pollfd socket = {socket_.get(), POLLRDHUP, 0};
    int ended = 0;
    do
        ended = poll(&socket, 1, 0);
    while (ended < 0 && errno == EINTR);
    return ended <= 0; // where poll fails, nothing is known to be wrong
}

void Connection::hangUp()
{
    if (isStillOurSocket())
        shutdown(socket_.get(), SHUT_RDWR);
}

// A program may have closed all descriptors, as daemons do, and the number may now be that of another file.
bool Connection::isStillOurSocket() const
{
    struct stat status = {};
    if (!socket_ || inode_ == 0) // none, or too new for that
        return static_cast<bool>(socket_);
    if (fstat(socket_.get(), &status) != 0)
        return errno != EBADF;
    return S_ISSOCK(status.st_mode) && status.st_ino == inode_;
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
    RuntimeDirectory directory;
    if (const std::uint32_t status = findRuntimeDirectory(directory))
        return status;
    sockaddr_un address;
    if (const std::uint32_t status = socketAddress(socketPath(directory.path, serviceId_), address))
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
    hello.kind = PacketKind::kHello;
    hello.wait = deadline.wait();
    hello.began = deadline.began();
    copyIdentifier(hello.name, serviceId_);
    // A service that is full replies and closes at once; that reply can be read even where the hello could not be sent.
    if (send(hello, nullptr) == SendResult::kFailed)
        return KOR_IIL_TX_FAIL;

    PacketHeader welcome;
    const ssize_t received = receiveBytes(deadline, &welcome, sizeof welcome);
    if (received < 0 && errno == EAGAIN)
        return KOR_IIL_TIMEOUT;
    if (received <= 0)
        return KOR_IIL_RX_FAIL;
    if (const std::uint32_t status = checkReply(hello, welcome, static_cast<std::size_t>(received)))
        return status;
    number_ = welcome.connection;
    return welcome.status;
}

Connection::SendResult Connection::send(PacketHeader& request, const void* message)
{
    request.sequence = ++sequence_;
    if (request.kind == PacketKind::kRequest)
        request.connection = number_;
    if (sendPacket(socket_.get(), request, message)) // the queue has room: only one request at a time is under way
        return SendResult::kSent;
    if (errno == EPIPE || errno == ECONNRESET || errno == EBADF || errno == ENOTSOCK) // the last two: closed by the program
        return SendResult::kPeerGone;
    KORIIL_REPORT(kTraceWarning, "sending %zu bytes to service %s failed: %s", sizeof request + request.length, serviceId_,
                  std::strerror(errno));
    return SendResult::kFailed;
}

bool Connection::setLookout()
{
    receiveTimeout_ = std::chrono::seconds(1);
    return setTimeout(socket_.get(), SO_RCVTIMEO, receiveTimeout_);
}

std::uint32_t Connection::receive(const PacketHeader& request, const Deadline& deadline, Packet& reply)
{
    const ssize_t received = receiveBytes(deadline, &reply, sizeof reply);
    if (received < 0 && errno == EAGAIN)
        return KOR_IIL_TIMEOUT;
    if (received <= 0)
        return KOR_IIL_RX_FAIL;
    return checkReply(request, reply.header, static_cast<std::size_t>(received));
}

// Returns the packet's length, even if the buffer holds only its first part; 0 when the peer has closed; -1 with EAGAIN when
// the deadline has passed.
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
        // A peer that closed with unread data: ECONNRESET comes once, ahead of the peer's last packet.
        if (errno != EINTR && errno != EAGAIN && errno != ECONNRESET)
            return -1;
    }
}

} // namespace koriil
