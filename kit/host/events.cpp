// KorIilSubscribeEvent, KorIilCancelEvent and KorIilKeepSubscription: check the arguments, and find the stream of the service.
#include "event_stream.h"
#include "identifiers.h"
#include "last_status.h"
#include "thread_guards.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <new>
#include <optional>
#include <string>

#include <unistd.h>

namespace koriil
{
namespace
{

// All streams of this process.
class EventStreams
{
public:
    // A child process starts with none: the threads of the inherited ones are not copied by fork.
    static EventStreams& ofThisProcess()
    {
        static std::atomic<EventStreams*> current{nullptr}; // never deleted: handlers may run until the process ends
        EventStreams* found = current.load();
        while (found == nullptr || found->owner_ != getpid())
        {
            auto* fresh = new EventStreams(found);
            if (current.compare_exchange_strong(found, fresh))
                return *fresh;
            delete fresh;
        }
        return *found;
    }

    EventStream& to(const char* serviceId)
    {
        const std::lock_guard<std::mutex> guard(lock_.mutex);
        return streams_.try_emplace(serviceId, serviceId, lock_).first->second;
    }

private:
    explicit EventStreams(const EventStreams* inherited) : owner_(getpid()), inherited_(inherited)
    {
    }

    const pid_t owner_;
    [[maybe_unused]] const EventStreams* const inherited_; // keeps it reachable for leak checkers
    StreamLock lock_;
    std::map<std::string, EventStream> streams_;
};

template <typename Action>
std::uint32_t checked(const char* callerId, const char* serviceId, std::uint32_t evt, KorIilEventHandler handler, Action action)
try
{
    if (callerId == nullptr || serviceId == nullptr || handler == nullptr)
        return KOR_IIL_BAD_PARAM;
    if (!isCallerId(callerId))
        return KOR_IIL_UNKNOWN_SRC_ID;
    if (!isServiceId(serviceId))
        return KOR_IIL_UNKNOWN_DST_ID;
    const CancellationDeferred deferred;
    Subscriber subscriber;
    copyIdentifier(subscriber.callerId, callerId);
    subscriber.event = evt;
    subscriber.handler = handler;
    return action(EventStreams::ofThisProcess().to(serviceId), subscriber);
}
catch (const std::bad_alloc&)
{
    return KOR_IIL_NO_MEM;
}

template <typename Action>
std::uint32_t guarded(const char* callerId, const char* serviceId, std::uint32_t evt, KorIilEventHandler handler, Action action)
{
    return remembered(checked(callerId, serviceId, evt, handler, action));
}

} // namespace
} // namespace koriil

using koriil::EventStream;
using koriil::Keeping;
using koriil::Subscriber;

extern "C" uint32_t KorIilSubscribeEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return koriil::guarded(callerId, serviceId, evt, handler,
                           [](EventStream& stream, const Subscriber& subscriber)
                           { return stream.subscribe(subscriber, std::nullopt); });
}

extern "C" uint32_t KorIilCancelEvent(const char* callerId, const char* serviceId, uint32_t evt, KorIilEventHandler handler)
{
    return koriil::guarded(callerId, serviceId, evt, handler,
                           [](EventStream& stream, const Subscriber& subscriber) { return stream.cancel(subscriber); });
}

extern "C" uint32_t KorIilKeepSubscription(const char* callerId, const char* serviceId, uint32_t evt,
                                           KorIilEventHandler handler, KorIilSubscriptionWatcher watcher, void* context)
{
    return koriil::guarded(callerId, serviceId, evt, handler,
                           [=](EventStream& stream, const Subscriber& subscriber) {
                               return stream.subscribe(subscriber, Keeping{watcher, context});
                           });
}
