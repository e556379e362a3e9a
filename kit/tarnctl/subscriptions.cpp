#include "subscriptions.h"

#include "base/timestamp.h"
#include "kor_iil_service.h"
#include "tarn_frame.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

using Register = decltype(&tarnSubscribeEvent);

Report registered(const char* function, Register call, const CallerId& callerId, std::uint32_t event)
{
    Report report;
    report.function = &functionNamed(function);
    report.callerId = callerId;
    Observer observer(Passage::kSend);
    observer.watcher = &Inbox::noteChange;
    report.result.number = call(callerId ? callerId->c_str() : nullptr, event, nullptr, &Inbox::receive);
    report.seen = observer.seen;
    report.outcome = outcomeOf(report);
    return report;
}

SubscriptionState stateOf(std::uint32_t status)
{
    switch (status)
    {
    case KOR_IIL_OK:
        return SubscriptionState::kRenewed;
    case KOR_IIL_UNKNOWN_EVT:
        return SubscriptionState::kGone;
    default:
        return SubscriptionState::kLost;
    }
}

} // namespace

const char* toString(SubscriptionState state)
{
    switch (state)
    {
    case SubscriptionState::kLost:
        return "lost";
    case SubscriptionState::kRenewed:
        return "renewed";
    case SubscriptionState::kGone:
        break;
    }
    return "gone";
}

// --- Inbox -------------------------------------------------------------------------------------------------------------------

Inbox::Inbox()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    current_ = this;
}

Inbox::~Inbox()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    current_ = nullptr;
}

std::optional<Arrival> Inbox::take()
{
    const std::lock_guard<std::mutex> guard(mutex_);
    if (arrivals_.empty())
        return std::nullopt;
    Arrival arrival = std::move(arrivals_.front());
    arrivals_.pop_front();
    return arrival;
}

void Inbox::add(Arrival arrival)
{
    const std::lock_guard<std::mutex> guard(mutex_);
    if (current_ == nullptr)
        return;
    current_->arrivals_.push_back(std::move(arrival));
    current_->wakeup.wake();
}

void Inbox::receive(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    const auto* const bytes = static_cast<const unsigned char*>(data);
    add(ReceivedEvent{base::Timestamp().text, serviceId, evt, length == 0 ? Bytes() : Bytes(bytes, bytes + length)});
}

void Inbox::noteChange(void*, const char*, const char* serviceId, std::uint32_t evt, std::uint32_t status)
{
    add(SubscriptionChange{base::Timestamp().text, serviceId, evt, stateOf(status)});
}

// --- Subscriptions -----------------------------------------------------------------------------------------------------------

Report Subscriptions::add(std::uint32_t event)
{
    Report report = registered("tarnSubscribeEvent", &tarnSubscribeEvent, callerId_, event);
    if (report.outcome == CallOutcome::kDone)
        made_.push_back(event);
    return report;
}

void Subscriptions::forget(std::uint32_t event)
{
    made_.erase(std::remove(made_.begin(), made_.end(), event), made_.end());
}

std::optional<Report> Subscriptions::cancelAll()
{
    std::optional<Report> failed;
    for (const std::uint32_t event : made_)
    {
        Report report = registered("tarnCancelEvent", &tarnCancelEvent, callerId_, event);
        if (report.outcome != CallOutcome::kDone && !failed)
            failed = std::move(report);
    }
    made_.clear();
    return failed;
}

} // namespace tarn::ctl
