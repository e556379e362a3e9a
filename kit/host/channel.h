// What a process has with one service it subscribed to: a connection on which nothing but events comes, the subscriptions, and
// a thread that reads the one and serves the other.
#pragma once

#include "connection.h"
#include "kor_iil.h"

#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace koriil
{

// Who wants what. Of fixed size, so that the delivering thread copies it without fail.
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

class Channel
{
public:
    // Connects, and starts the thread. May throw std::bad_alloc and, when there is no thread to be had, std::system_error.
    static std::uint32_t open(const char* serviceId, std::shared_ptr<Channel>& channel);

    // False once the service has hung up, and so knows nothing of this channel any more.
    bool isAlive() const;
    // The service's own name for it.
    std::uint32_t number() const
    {
        return connection_->channel();
    }

    // False if it has subscribed already.
    bool add(const Subscriber& subscriber);
    // False if it has not subscribed.
    bool remove(const Subscriber& subscriber);
    // Returns when the subscriber, removed before, does not have its handler running. A handler does not wait for its own end.
    void waitForEnd(const Subscriber& subscriber);

    bool wants(std::uint32_t event);
    bool isUnused();

    // Ends the subscriptions, the connection and the thread, which may be the one that calls.
    void close();

private:
    struct Subscription
    {
        std::uint64_t number;
        Subscriber subscriber;
    };

    explicit Channel(const char* serviceId);

    void deliverAll();
    bool receive();
    void deliver(const void* data);
    std::uint64_t newestSubscription();
    KorIilEventHandler begin(std::uint64_t& turn, std::uint64_t last);
    void end();
    void reportLoss();

    const std::string serviceId_;
    std::unique_ptr<Connection> connection_;
    const std::unique_ptr<Packet> packet_;

    std::mutex mutex_;
    std::vector<Subscription> subscriptions_;
    std::uint64_t lastNumber_ = 0;
    std::uint64_t lastRun_ = 0;
    std::uint64_t run_ = 0; // of a handler, now; 0 for none
    Subscriber runningAs_;  // whose it is
    std::thread::id thread_;
    std::condition_variable ended_;
};

} // namespace koriil
