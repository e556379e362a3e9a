#include "outbox.h"
#include "clock.h"
#include "lock.h"

#include <cstdlib>

namespace tarn::fleet
{

namespace
{

// An answer or an event that the broker has not taken by then is dropped; in milliseconds.
constexpr std::uint64_t kParcelLife = 30000;

} // namespace

struct Outbox::Parcel
{
    Parcel* next;
    std::uint64_t postedAt;
    std::size_t size;
    Topic topic;
    bool isEvent;
    std::uint8_t payload[1]; // `size` bytes
};

Outbox::~Outbox()
{
    while (Parcel* parcel = parcels_.take())
        std::free(parcel);
}

// Null if there is no memory, or if the fields make no envelope.
Outbox::Parcel* Outbox::pack(const Topic& topic, const Envelope& envelope, bool isEvent)
{
    const std::size_t room = kHeaderSize + kIdSize + kServiceSize + envelope.present;
    auto* parcel = static_cast<Parcel*>(std::malloc(sizeof(Parcel) + room));
    if (parcel == nullptr || encode(envelope, parcel->payload, room, parcel->size) != Fault::kNone)
    {
        std::free(parcel);
        return nullptr;
    }
    // Most messages end in many zeros, which are not kept.
    if (void* smaller = std::realloc(parcel, sizeof(Parcel) + parcel->size); smaller != nullptr)
        parcel = static_cast<Parcel*>(smaller);
    parcel->topic = topic;
    parcel->isEvent = isEvent;
    parcel->postedAt = monotonicMilliseconds();
    return parcel;
}

bool Outbox::reserveAnswer()
{
    const Lock lock(mutex_);
    const bool isFree = answers_ < kMostAnswers;
    ++(isFree ? answers_ : counters_.unanswered);
    return isFree;
}

void Outbox::giveUpAnswer()
{
    const Lock lock(mutex_);
    --answers_;
    ++counters_.unanswered;
}

void Outbox::postAnswer(const Topic& topic, const Envelope& answer)
{
    Parcel* parcel = pack(topic, answer, false);
    if (parcel == nullptr)
        return giveUpAnswer();
    const Lock lock(mutex_);
    parcels_.add(parcel);
}

// It is numbered and queued in one go, or another thread's next one might be in front of it.
void Outbox::postEvent(const Topic& topic, const Envelope& event, std::uint32_t& latest)
{
    Envelope numbered = event;
    const Lock lock(mutex_);
    ++counters_.events;
    numbered.sequence = ++latest;
    Parcel* parcel = events_ < kMostEvents ? pack(topic, numbered, true) : nullptr;
    if (parcel == nullptr)
    {
        ++counters_.lostEvents;
        return;
    }
    ++events_;
    parcels_.add(parcel);
}

void Outbox::send(BrokerLink& link)
{
    for (;;)
    {
        Parcel* parcel = nullptr;
        bool isTooOld = false;
        {
            const Lock lock(mutex_);
            if (parcels_.first == nullptr)
                return;
            isTooOld = monotonicMilliseconds() - parcels_.first->postedAt >= kParcelLife;
            if (!isTooOld && !link.isClear())
                return;
            parcel = parcels_.take();
            --(parcel->isEvent ? events_ : answers_);
        }
        if (isTooOld || !link.publish(parcel->topic.text, parcel->payload, parcel->size, false))
        {
            const Lock lock(mutex_);
            ++(parcel->isEvent ? counters_.lostEvents : counters_.unanswered);
        }
        std::free(parcel);
    }
}

bool Outbox::isEmpty() const
{
    const Lock lock(mutex_);
    return parcels_.first == nullptr;
}

OutboxCounters Outbox::counters() const
{
    const Lock lock(mutex_);
    return counters_;
}

} // namespace tarn::fleet
