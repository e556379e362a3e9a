/* What a bridge has for the broker and the connection has not taken yet: answers and events in the order in which they were
 * posted, so many of each at most. From any thread, but for `send`. Needs no C++ run-time library. */
#pragma once

#include "broker_link.h"
#include "envelope.h"
#include "queue.h"

#include <cstdint>

#include <pthread.h>

namespace tarn::fleet
{

// All since the start.
struct OutboxCounters
{
    std::uint32_t unanswered = 0; // answers that were dropped, because the connection was gone or too slow
    std::uint32_t events = 0;     // events of the platform
    std::uint32_t lostEvents = 0; // of these, dropped
};

class Outbox
{
public:
    static constexpr std::uint32_t kMostAnswers = 64;
    static constexpr std::uint32_t kMostEvents = 64;

    Outbox() = default;
    ~Outbox();
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;

    // Keeps a place for an answer that is to come: what could not be answered is not to be done. False if there is none left.
    bool reserveAnswer();
    // Into the place that was kept for it.
    void postAnswer(const Topic& topic, const Envelope& answer);
    // There will be no answer, and its place is free again.
    void giveUpAnswer();

    // Gives the event the number behind `latest`, even if there is no place for it: so a gap shows that it is lost.
    void postEvent(const Topic& topic, const Envelope& event, std::uint32_t& latest);

    // Sends what waits, as long as the connection takes it at once, and drops what has waited too long.
    void send(BrokerLink& link);

    bool isEmpty() const;
    OutboxCounters counters() const;

private:
    struct Parcel;

    static Parcel* pack(const Topic& topic, const Envelope& envelope, bool isEvent);

    mutable pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    Queue<Parcel> parcels_;
    std::uint32_t answers_ = 0; // among the parcels, and those that have a place and are to come
    std::uint32_t events_ = 0;  // among the parcels
    OutboxCounters counters_;
};

} // namespace tarn::fleet
