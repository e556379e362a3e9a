#include "round_trip.h"

#include "connection.h"
#include "environment.h"

#include <cstring>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace koriil
{
namespace
{

using std::chrono::microseconds;

// New connections that one request may need: a service that is being restarted, or short of room, may close one at once.
constexpr int kMostAttempts = 3;

constexpr microseconds kPause{10000}; // between two looks whether a service is back

// What one thread keeps between its calls.
struct KeptConnections
{
    // On KOR_IIL_OK, the connection to the service is the last one.
    std::uint32_t bringToBack(const char* serviceId, const Deadline& deadline, bool& isNew)
    {
        isNew = false;
        for (auto& connection : connections)
            if (connection->isTo(serviceId))
            {
                std::swap(connection, connections.back());
                return KOR_IIL_OK;
            }
        isNew = true;
        connections.reserve(connections.size() + 1);
        std::unique_ptr<Connection> fresh;
        const std::uint32_t status = Connection::open(serviceId, deadline, fresh);
        if (status == KOR_IIL_OK)
            connections.push_back(std::move(fresh));
        return status;
    }

    void prepare()
    {
        if (!reply)
            reply.reset(new Packet); // not cleared: 64 KiB, of which a short reply uses little
        if (!connections.empty() && !connections.front()->isOwn())
            connections.clear();
    }

    std::vector<std::unique_ptr<Connection>> connections;
    std::unique_ptr<Packet> reply;
};

// Whether to wait a moment for a service that is not there, and to try again.
bool shallTryAgain(std::uint32_t status, const Deadline& deadline)
{
    const bool mayComeBack = status == KOR_IIL_UNKNOWN_DST_ID || status == KOR_IIL_RX_FAIL || status == KOR_IIL_TX_FAIL;
    if (!mayComeBack || deadline.remaining() <= kPause || !isSwitchedOn("KORIIL_WAIT_FOR_SERVICE"))
        return false;
    std::this_thread::sleep_for(kPause);
    return true;
}

// On KOR_IIL_OK, the request has been sent over the last of the connections; otherwise nothing of it has.
std::uint32_t send(KeptConnections& kept, const char* serviceId, PacketHeader& request, const void* message,
                   const Deadline& deadline)
{
    std::uint32_t endOfSearch = KOR_IIL_TIMEOUT; // the status of a wait that ends in vain
    for (int attempts = 0;;)
    {
        bool isNew;
        std::uint32_t status = kept.bringToBack(serviceId, deadline, isNew);
        attempts += isNew;
        if (status == KOR_IIL_OK)
        {
            const Connection::SendResult result = kept.connections.back()->send(request, message);
            if (result == Connection::SendResult::kSent)
                return KOR_IIL_OK;
            kept.connections.pop_back();
            if (result == Connection::SendResult::kPeerGone && attempts < kMostAttempts)
                continue;
            status = KOR_IIL_TX_FAIL;
        }
        if (!shallTryAgain(status, deadline))
            return status == KOR_IIL_TIMEOUT ? endOfSearch : status;
        endOfSearch = status;
    }
}

// Trivially destructible, so that a call made after the thread's objects are destroyed (from the destructor of a static, for
// example) finds them valid.
thread_local KeptConnections* keptByThread = nullptr;
thread_local bool threadIsEnding = false;

struct EndOfThread
{
    ~EndOfThread()
    {
        delete keptByThread;
        keptByThread = nullptr;
        threadIsEnding = true;
    }
};

thread_local EndOfThread endOfThread;

KeptConnections& keptByThisThread()
{
    if (keptByThread == nullptr)
    {
        keptByThread = new KeptConnections;
        (void)&endOfThread; // constructs it, and with that registers its destructor
    }
    return *keptByThread;
}

} // namespace

std::uint32_t roundTrip(const char* serviceId, PacketHeader& request, void* message, const Deadline& deadline)
{
    KeptConnections ofThisCall;
    KeptConnections& kept = threadIsEnding ? ofThisCall : keptByThisThread();
    kept.prepare();
    request.wait = deadline.wait();
    request.began = deadline.began();
    std::uint32_t status = send(kept, serviceId, request, message, deadline);
    if (status != KOR_IIL_OK)
        return status;

    status = kept.connections.back()->receive(request, deadline, *kept.reply);
    if (status != KOR_IIL_OK)
    {
        // A packet that comes later on this connection may be the reply to this call, and must not answer the next one.
        kept.connections.pop_back();
        return status;
    }
    if (kept.reply->header.status == KOR_IIL_OK && request.length > 0)
        std::memcpy(message, kept.reply->message, request.length);
    return kept.reply->header.status;
}

} // namespace koriil
