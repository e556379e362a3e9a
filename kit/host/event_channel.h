// A process's side of one service's events: a connection that carries nothing else, the subscriptions, and the thread that
// reads the connection and calls the handlers.
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

class EventChannel
{
public:
    // Connects, and starts the thread. May throw std::bad_alloc and, when there is no thread to be had, std::system_error.
    static std::uint32_t open(const char* serviceId, std::shared_ptr<EventChannel>& channel);

    // False once the service has closed the connection.
    bool isAlive() const;
    // The number that the service gave to its connection.
    std::uint32_t number() const
    {
        return connection_->channel();
    }

    // False if it is subscribed already.
    bool add(const Subscriber& subscriber);
    // False if it is not subscribed.
    bool remove(const Subscriber& subscriber);
    // Waits until the handler of the subscriber, which was removed before, is not running. Called by that handler, it does not
    // wait.
    void waitForEnd(const Subscriber& subscriber);

    bool wants(std::uint32_t event);
    bool isUnused();

    // Ends the subscriptions, the connection and the thread. May be called on that thread.
    void close();

private:
    struct Subscription
    {
        std::uint64_t number;
        Subscriber subscriber;
    };

    explicit EventChannel(const char* serviceId);

    void deliverAll();
    bool receive();
    void deliver(const void* data);
    std::uint64_t newestSubscription();
    KorIilEventHandler begin(std::uint64_t& current, std::uint64_t last);
    void end();
    void reportLoss();

    const std::string serviceId_;
    std::unique_ptr<Connection> connection_;
    const std::unique_ptr<Packet> packet_;

    std::mutex mutex_;
    std::vector<Subscription> subscriptions_;
    std::uint64_t lastNumber_ = 0;
    std::uint64_t lastRun_ = 0;
    std::uint64_t run_ = 0; // number of the handler's call that is under way; 0 for none
    Subscriber runningFor_; // the subscriber of that call
    std::thread::id thread_;
    std::condition_variable ended_;
};

} // namespace koriil
