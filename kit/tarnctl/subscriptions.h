// Subscriptions to events of the device service: what they bring, and what becomes of them when the service is restarted.
#pragma once

#include "call.h"
#include "values.h"
#include "wakeup.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tarn::ctl
{

struct ReceivedEvent
{
    std::string time; // when it arrived
    std::string service;
    std::uint32_t number = 0;
    Bytes data;
};

enum class SubscriptionState
{
    kLost,    // the service has ended: events are missed from now on
    kRenewed, // it is back
    kGone     // it is back, and has this event no longer
};

const char* toString(SubscriptionState state);

// Of one subscription, at that time.
struct SubscriptionChange
{
    std::string time;
    std::string service;
    std::uint32_t number = 0; // of the event
    SubscriptionState state = SubscriptionState::kLost;
};

using Arrival = std::variant<ReceivedEvent, SubscriptionChange>;

// Between the platform's thread and ours. The platform's handlers know no context, so the inbox is found through a variable:
// one at a time in a process.
class Inbox
{
public:
    Inbox();
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    // The earliest that has not been taken; none if there is nothing.
    std::optional<Arrival> take();

    const Wakeup wakeup; // woken by each arrival

    // For the platform.
    static void receive(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length);
    static void noteChange(void* context, const char* callerId, const char* serviceId, std::uint32_t evt, std::uint32_t status);

private:
    static void add(Arrival arrival);

    static inline std::mutex mutex_;
    static inline Inbox* current_ = nullptr;
    std::deque<Arrival> arrivals_;
};

// The subscriptions that have been made; what comes goes to the inbox. The destructor cancels those that are left.
//
// They are renewed when the service comes back, and the inbox has each loss and renewal. A platform that cannot renew them does
// not tell of a loss either, but lets the cancel fail.
class Subscriptions
{
public:
    explicit Subscriptions(CallerId id) : callerId_(std::move(id))
    {
    }

    ~Subscriptions()
    {
        cancelAll();
    }

    Subscriptions(const Subscriptions&) = delete;
    Subscriptions& operator=(const Subscriptions&) = delete;

    Report add(std::uint32_t event);

    // One that is gone needs no cancel.
    void forget(std::uint32_t event);

    bool isEmpty() const
    {
        return made_.empty();
    }

    // The first cancel that failed, if one did.
    std::optional<Report> cancelAll();

private:
    const CallerId callerId_;
    std::vector<std::uint32_t> made_;
};

} // namespace tarn::ctl
