// A process's side of one service's events: the subscriptions, the connection that events come on, and the thread that reads it
// and calls the handlers. A service that is restarted gets a new connection; the thread remains the only one.
//
// Subscribing and cancelling are requests on the calling thread's own connection that name the events' connection, so neither
// waits for the delivering thread, and a handler can do both.
#pragma once

#include "connection.h"
#include "kor_iil.h"
#include "kor_iil_service.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace koriil
{

// Whose handler is called for which event. Of fixed size, so that copying it allocates nothing and cannot fail.
struct Subscriber
{
    char callerId[kIdentifierSize] = {};
    std::uint32_t event = 0;
    KorIilEventHandler handler = nullptr;

    bool operator==(const Subscriber& other) const
    {
        return event == other.event && handler == other.handler && std::strcmp(callerId, other.callerId) == 0;
    }
};

// For a subscription that is to be renewed: who is told what becomes of it.
struct Keeping
{
    KorIilSubscriptionWatcher watcher = nullptr; // may be NULL
    void* context = nullptr;
};

// One lock for all streams of a process, because a handler of one may wait for a handler of another. It is never held during
// an exchange with a service, nor while a handler runs.
struct StreamLock
{
    std::mutex mutex;
    std::condition_variable changed;
};

class EventStream
{
public:
    EventStream(const char* serviceId, StreamLock& lock);

    // Subscribing may throw std::bad_alloc.
    std::uint32_t subscribe(const Subscriber& subscriber, const std::optional<Keeping>& keeping);
    std::uint32_t cancel(const Subscriber& subscriber);

private:
    using Lock = std::unique_lock<std::mutex>;

    enum class State
    {
        kAsking, // the service has not confirmed it yet
        kActive,
        kLost,   // to be renewed
        kRefused // cannot be renewed
    };

    struct Subscription
    {
        std::uint64_t number = 0;
        Subscriber subscriber;
        std::optional<Keeping> keeping;
        State state = State::kAsking;
        std::uint64_t connection = 0;            // which one its events come on, see connectionCount_
        bool owesLoss = false;                   // its watcher is still to be told that it was lost,
        std::optional<std::uint32_t> owesStatus; // and what renewing it came to
    };

    Subscription* find(std::uint64_t number);
    Subscription* find(const Subscriber& subscriber);
    void erase(std::uint64_t number);
    bool wants(std::uint32_t event) const;
    bool isToRenew() const;

    std::uint32_t connect(Lock& lock, const Deadline& deadline);
    std::uint32_t openConnection(const Deadline& deadline, std::shared_ptr<Connection>& connection) const;
    std::uint32_t join(Lock& lock, std::uint64_t number, const Deadline& deadline);
    std::uint32_t joinOnce(Lock& lock, std::uint64_t number, const Deadline& deadline);
    std::uint32_t ask(PacketKind kind, const Subscriber& subscriber, std::uint32_t revision, std::uint32_t connection,
                      const Deadline& deadline) const;
    void loseIfDead();
    void lose();
    void hangUpIfUnused();
    void waitForEnd(Lock& lock, const Subscriber& subscriber);

    std::uint32_t startThread();
    void deliverAll();
    bool receive(Connection& connection, bool& isEvent);
    void deliver(Lock& lock, std::uint64_t connection);
    bool tellWatcher(Lock& lock);
    void renew(Lock& lock);
    template <typename Call>
    void run(Lock& lock, const Subscriber& subscriber, Call call);

    // Between two attempts to renew subscriptions.
    static constexpr std::chrono::milliseconds kFirstPause{20}, kLongestPause{1000};

    const std::string serviceId_;
    StreamLock& lock_; // guards all that follows

    std::vector<Subscription> subscriptions_;
    std::uint64_t lastNumber_ = 0;
    std::uint32_t lastRevision_ = 0;

    std::shared_ptr<Connection> connection_; // NULL where there is none
    std::uint64_t connectionCount_ = 0;
    bool isConnecting_ = false; // a thread is opening one, the others wait for it
    bool hasThread_ = false;
    std::unique_ptr<Packet> packet_;                // the thread's own
    std::chrono::milliseconds pause_ = kFirstPause; // likewise

    std::uint64_t lastRun_ = 0;
    std::uint64_t run_ = 0;                // number of the handler's call that is under way; 0 for none
    Subscriber runningFor_;                // the subscriber of that call
    const EventStream* awaited_ = nullptr; // the stream whose handler that one waits for
};

} // namespace koriil
