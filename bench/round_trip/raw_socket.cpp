// Bare sockets, stream and packets: what the kernel takes for the bytes, without a message's name or number. The stream's
// receiver is told the length by the first word of the message.
#include "round_trip/peer.h"
#include "round_trip/unix_socket.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace round_trip
{
namespace
{

bool sendAll(int socket, const char* bytes, std::size_t length)
{
    for (std::size_t done = 0; done < length;)
    {
        const ssize_t sent = send(socket, bytes + done, length - done, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, char* bytes, std::size_t length)
{
    for (std::size_t done = 0; done < length;)
    {
        const ssize_t received = recv(socket, bytes + done, length - done, 0);
        if (received <= 0)
            return false;
        done += static_cast<std::size_t>(received);
    }
    return true;
}

void echoStream(int socket)
{
    std::vector<char> message(kLongest);
    for (;;)
    {
        std::uint32_t length;
        const ssize_t received = recv(socket, message.data(), message.size(), 0);
        if (received < static_cast<ssize_t>(sizeof length))
            break;
        std::memcpy(&length, message.data(), sizeof length);
        const auto first = static_cast<std::size_t>(received);
        if (length > kLongest || !receiveAll(socket, message.data() + first, length - first) ||
            !sendAll(socket, message.data(), length))
            break;
    }
    close(socket);
}

// False once the caller has hung up.
bool echoPacket(int socket, std::vector<char>& message)
{
    const ssize_t received = recv(socket, message.data(), message.size(), 0);
    return received > 0 && send(socket, message.data(), static_cast<std::size_t>(received), MSG_NOSIGNAL) == received;
}

void echoPackets(int socket)
{
    std::vector<char> message(kLongest);
    while (echoPacket(socket, message))
    {
    }
    close(socket);
}

// Serves all callers on this thread, which has to ask who of them has sent something.
[[noreturn]] void echoPacketsOfAll(int listener)
{
    const int poll = epoll_create1(EPOLL_CLOEXEC);
    const auto watch = [poll](int socket)
    {
        epoll_event event = {};
        event.events = EPOLLIN;
        event.data.fd = socket;
        if (epoll_ctl(poll, EPOLL_CTL_ADD, socket, &event) != 0)
            failWithReason("watching a socket");
    };
    watch(listener);
    std::vector<char> message(kLongest);
    for (;;)
    {
        epoll_event events[32];
        const int count = epoll_wait(poll, events, 32, -1);
        for (int i = 0; i < count; ++i)
            if (const int socket = events[i].data.fd; socket == listener)
                watch(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
            else if (!echoPacket(socket, message))
                close(socket);
    }
}

class RawConnection : public Connection
{
public:
    RawConnection(const std::string& path, int type) : socket_(connectTo(path, type))
    {
    }
    ~RawConnection() override
    {
        close(socket_);
    }

    void call(void* message, std::size_t length) override
    {
        auto* const bytes = static_cast<char*>(message);
        if (!sendAll(socket_, bytes, length) || !receiveAll(socket_, bytes, length))
            failWithReason("a bare socket");
    }

private:
    const int socket_;
};

// The socket is the file of that name in the directory; `serveAll` gets its listener.
Peer rawSocket(const char* name, const std::string& file, int type, void (*serveAll)(int))
{
    return {name,
            [=](const std::string& directory, const std::function<void()>& ready)
            {
                const int listener = listenAt(directory + file, type);
                ready();
                serveAll(listener);
            },
            [=](const std::string& directory) { return std::make_unique<RawConnection>(directory + file, type); }};
}

} // namespace

const Peer kStream = rawSocket("stream socket", "/stream", SOCK_STREAM, [](int listener) { acceptAll(listener, echoStream); });

const Peer kSeqpacket =
    rawSocket("seqpacket socket", "/seqpacket", SOCK_SEQPACKET, [](int listener) { acceptAll(listener, echoPackets); });

const Peer kSeqpacketEpoll = rawSocket("seqpacket, epoll", "/epoll", SOCK_SEQPACKET, echoPacketsOfAll);

} // namespace round_trip
