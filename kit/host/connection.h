// One connection of a client to a service.
#pragma once

#include "deadline.h"
#include "descriptor.h"
#include "packet.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <sys/types.h>

namespace koriil
{

// Checks the packet received after `request`: KOR_IIL_OK if it is the reply to it, whatever that reply's own status.
std::uint32_t checkReply(const PacketHeader& request, const PacketHeader& reply, std::size_t received);

class Connection
{
public:
    enum class SendResult
    {
        kSent,
        kPeerGone, // nothing was sent, and nothing can be
        kFailed
    };

    // Connects, and waits for the reply to its hello. Returns an IPC status.
    static std::uint32_t open(const char* serviceId, const Deadline& deadline, std::unique_ptr<Connection>& connection);

    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isTo(const char* serviceId) const;

    // False in a child of the process that opened the connection. A child must not use it: parent and child would read one
    // another's replies.
    bool isOwn() const;

    // False once the service has closed it.
    bool isAlive() const;
    // False once the program has closed its descriptor.
    bool isStillOurSocket() const;

    // Ends the connection for both sides, and for a thread that is receiving.
    void hangUp();

    int descriptor() const
    {
        return socket_.get();
    }

    // The number that the service gave to this connection.
    std::uint32_t number() const
    {
        return number_;
    }

    // Fills in the request's sequence, and sends it with its message.
    SendResult send(PacketHeader& request, const void* message);

    // For a connection that is read without a deadline: a second, to see now and then whether it is still this one's.
    bool setLookout();

    // Waits for the packet that answers `request`.
    std::uint32_t receive(const PacketHeader& request, const Deadline& deadline, Packet& reply);

private:
    explicit Connection(const char* serviceId);

    std::uint32_t connect(const Deadline& deadline);
    std::uint32_t greet(const Deadline& deadline);
    ssize_t receiveBytes(const Deadline& deadline, void* buffer, std::size_t size);

    char serviceId_[kIdentifierSize] = {};
    Descriptor socket_;
    pid_t owner_;
    ino_t inode_ = 0;
    std::uint32_t sequence_ = 0;
    std::uint32_t number_ = 0;
    std::chrono::microseconds receiveTimeout_{0}; // of the socket; 0 for none
};

} // namespace koriil
