#include "round_trip.h"

#include "connection.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace koriil
{
namespace
{

// What one thread keeps between its calls.
class KeptConnections
{
public:
    std::uint32_t roundTrip(const char* serviceId, PacketHeader& request, void* message)
    {
        const Deadline deadline(request.wait);
        if (!reply_)
            reply_.reset(new Packet); // not cleared: 64 KiB, of which a short reply uses little
        dropInherited();

        std::uint32_t status = send(serviceId, request, message, deadline);
        if (status != KOR_IIL_OK)
            return status;

        status = connections_.back()->receive(request, deadline, *reply_);
        if (status != KOR_IIL_OK)
        {
            // A packet that comes later on this connection may be the reply to this call, and must not answer the next one.
            connections_.pop_back();
            return status;
        }
        if (reply_->header.status == KOR_IIL_OK && request.length > 0)
            std::memcpy(message, reply_->message, request.length);
        return reply_->header.status;
    }

private:
    // On KOR_IIL_OK, the connection used is the last of `connections_`.
    std::uint32_t send(const char* serviceId, PacketHeader& request, const void* message, const Deadline& deadline)
    {
        if (bringToBack(serviceId))
        {
            const Connection::SendResult result = connections_.back()->send(request, message);
            if (result == Connection::SendResult::kSent)
                return KOR_IIL_OK;
            connections_.pop_back();
            if (result == Connection::SendResult::kFailed)
                return KOR_IIL_TX_FAIL;
        }

        connections_.reserve(connections_.size() + 1);
        std::unique_ptr<Connection> connection;
        if (const std::uint32_t status = Connection::open(serviceId, deadline, connection))
            return status;
        if (connection->send(request, message) != Connection::SendResult::kSent)
            return KOR_IIL_TX_FAIL;
        connections_.push_back(std::move(connection));
        return KOR_IIL_OK;
    }

    bool bringToBack(const char* serviceId)
    {
        for (auto& connection : connections_)
            if (connection->isTo(serviceId))
            {
                std::swap(connection, connections_.back());
                return true;
            }
        return false;
    }

    void dropInherited()
    {
        if (!connections_.empty() && !connections_.front()->isOwn())
            connections_.clear();
    }

    std::vector<std::unique_ptr<Connection>> connections_;
    std::unique_ptr<Packet> reply_;
};

// Trivially destructible, so that a call made after the thread's objects are destroyed (from the destructor of a static, for
// example) finds them valid.
thread_local KeptConnections* kept = nullptr;
thread_local bool threadIsEnding = false;

struct EndOfThread
{
    ~EndOfThread()
    {
        delete kept;
        kept = nullptr;
        threadIsEnding = true;
    }
};

thread_local EndOfThread endOfThread;

} // namespace

std::uint32_t roundTrip(const char* serviceId, PacketHeader& request, void* message)
{
    if (threadIsEnding)
        return KeptConnections().roundTrip(serviceId, request, message);
    if (kept == nullptr)
    {
        kept = new KeptConnections;
        (void)&endOfThread; // constructs it, and with that registers its destructor
    }
    return kept->roundTrip(serviceId, request, message);
}

} // namespace koriil
