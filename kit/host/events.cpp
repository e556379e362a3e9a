// KorIilSubscribeEvent and KorIilCancelEvent.
//
// Events come on a channel of their own. Subscribing and cancelling are requests on the calling thread's connection that name
// the channel, so neither waits for the delivering thread, and a handler can do both.
#include "event_channel.h"
#include "identifiers.h"
#include "round_trip.h"
#include "trace.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <new>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace koriil
{
namespace
{

constexpr std::uint32_t kWait = 3; // seconds; an argument for it does not exist

std::uint32_t checkArguments(const char* callerId, const char* serviceId, KorIilEventHandler handler)
{
    if (callerId == nullptr || serviceId == nullptr || handler == nullptr)
        return KOR_IIL_BAD_PARAM;
    if (!isCallerId(callerId))
        return KOR_IIL_UNKNOWN_SRC_ID;
    return isServiceId(serviceId) ? KOR_IIL_OK : KOR_IIL_UNKNOWN_DST_ID;
}

std::uint32_t ask(PacketKind kind, const char* serviceId, const EventChannel& channel, const Subscriber& subscriber)
try
{
    PacketHeader request;
    request.kind = kind;
    request.command = subscriber.event;
    request.wait = kWait;
    request.channel = channel.number();
    copyIdentifier(request.name, subscriber.callerId);
    return roundTrip(serviceId, request, nullptr);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

// All subscriptions of this process.
class Subscriptions
{
public:
    // A child process starts with none: the threads of the inherited ones are not copied by fork.
    static Subscriptions& ofThisProcess()
    {
        static std::atomic<Subscriptions*> current{nullptr}; // never deleted: handlers may run until the process ends
        Subscriptions* found = current.load();
        while (found == nullptr || found->owner_ != getpid())
        {
            auto* fresh = new Subscriptions(found);
            if (current.compare_exchange_strong(found, fresh))
                return *fresh;
            delete fresh;
        }
        return *found;
    }

    std::uint32_t subscribe(const char* serviceId, const Subscriber& subscriber)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        std::uint32_t status = subscribeOnce(serviceId, subscriber);
        if (status == KOR_IIL_BAD_EVT) // the channel led to an earlier run of the service
            status = subscribeOnce(serviceId, subscriber);
        if (status == KOR_IIL_OK || status == KOR_IIL_CONFLICT_ID)
            return status;

        const auto channels = channelsOf(serviceId);
        lock.unlock();
        waitForEnd(channels, subscriber); // an event may have come already
        return status;
    }

    std::uint32_t cancel(const char* serviceId, const Subscriber& subscriber)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        const auto channels = channelsOf(serviceId);
        const std::uint32_t status = remove(serviceId, subscriber);
        lock.unlock();
        // Whatever the status: the handler may be running even where the subscription has ended with the service.
        waitForEnd(channels, subscriber);
        return status;
    }

private:
    using Channels = std::map<std::string, std::shared_ptr<EventChannel>>;

    explicit Subscriptions(const Subscriptions* inherited) : owner_(getpid()), inherited_(inherited)
    {
    }

    std::uint32_t subscribeOnce(const char* serviceId, const Subscriber& subscriber)
    {
        std::shared_ptr<EventChannel> channel;
        if (const std::uint32_t status = channelTo(serviceId, channel))
            return status;
        if (!channel->add(subscriber)) // before the service is asked, so that no event is missed
            return KOR_IIL_CONFLICT_ID;

        const std::uint32_t status = ask(PacketKind::kSubscribe, serviceId, *channel, subscriber);
        if (status == KOR_IIL_OK)
            return status;
        channel->remove(subscriber);
        if (status == KOR_IIL_BAD_EVT || channel->isUnused())
            drop(channels_.find(serviceId));
        return status;
    }

    std::uint32_t remove(const char* serviceId, const Subscriber& subscriber)
    {
        const auto found = channels_.find(serviceId);
        if (found == channels_.end())
            return KOR_IIL_BAD_EVT;
        EventChannel& channel = *found->second;
        if (!channel.isAlive())
        {
            drop(found);
            return KOR_IIL_BAD_EVT;
        }
        if (!channel.remove(subscriber))
            return KOR_IIL_BAD_EVT;

        if (!channel.wants(subscriber.event))
            if (const std::uint32_t status = ask(PacketKind::kCancel, serviceId, channel, subscriber))
                KORIIL_REPORT(kTraceNotice, "service %s has not confirmed the end of a subscription (status %lu)", serviceId,
                              static_cast<unsigned long>(status));
        if (channel.isUnused())
            drop(found);
        return KOR_IIL_OK;
    }

    std::uint32_t channelTo(const char* serviceId, std::shared_ptr<EventChannel>& channel)
    {
        const auto found = channels_.find(serviceId);
        if (found != channels_.end() && found->second->isAlive())
        {
            channel = found->second;
            return KOR_IIL_OK;
        }
        if (found != channels_.end())
            drop(found);
        if (const std::uint32_t status = EventChannel::open(serviceId, channel))
            return status;
        channels_[serviceId] = channel;
        return KOR_IIL_OK;
    }

    void drop(Channels::iterator channel)
    {
        channel->second->close();
        dropped_.emplace_back(channel->first, channel->second);
        channels_.erase(channel);
    }

    // The one in use, and the dropped ones whose threads have not ended: a handler may still be running there.
    std::vector<std::shared_ptr<EventChannel>> channelsOf(const char* serviceId)
    {
        std::vector<std::shared_ptr<EventChannel>> result;
        if (const auto found = channels_.find(serviceId); found != channels_.end())
            result.push_back(found->second);

        dropped_.erase(
            std::remove_if(dropped_.begin(), dropped_.end(), [](const auto& entry) { return entry.second.expired(); }),
            dropped_.end());
        for (const auto& [name, channel] : dropped_)
            if (auto running = channel.lock(); running != nullptr && name == serviceId)
                result.push_back(std::move(running));
        return result;
    }

    // Called without the lock: the handler may be about to subscribe.
    static void waitForEnd(const std::vector<std::shared_ptr<EventChannel>>& channels, const Subscriber& subscriber)
    {
        for (const auto& channel : channels)
            channel->waitForEnd(subscriber);
    }

    const pid_t owner_;
    [[maybe_unused]] const Subscriptions* const inherited_; // keeps it reachable for leak checkers
    std::mutex mutex_; // held during a request to the service, never while waiting for a handler
    Channels channels_;
    std::vector<std::pair<std::string, std::weak_ptr<EventChannel>>> dropped_;
};

template <typename Action>
std::uint32_t guarded(const char* callerId, const char* serviceId, std::uint32_t evt, KorIilEventHandler handler, Action action)
try
{
    if (const std::uint32_t status = checkArguments(callerId, serviceId, handler))
        return status;
    Subscriber subscriber;
    copyIdentifier(subscriber.callerId, callerId);
    subscriber.event = evt;
    subscriber.handler = handler;
    return action(Subscriptions::ofThisProcess(), subscriber);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}
catch (const std::system_error& error) // from std::thread
{
    KORIIL_REPORT(kTraceWarning, "event thread for service %s: %s", serviceId, error.what());
    return KOR_IIL_NO_MEM;
}

} // namespace
} // namespace koriil

extern "C" uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return koriil::guarded(callerId, serviceId, evt, handler,
                           [&](koriil::Subscriptions& subscriptions, const koriil::Subscriber& subscriber)
                           { return subscriptions.subscribe(serviceId, subscriber); });
}

extern "C" uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return koriil::guarded(callerId, serviceId, evt, handler,
                           [&](koriil::Subscriptions& subscriptions, const koriil::Subscriber& subscriber)
                           { return subscriptions.cancel(serviceId, subscriber); });
}
