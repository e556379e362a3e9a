#include "events.h"

#include "base/join.h"
#include "base/timestamp.h"
#include "event_names.h"
#include "tarn_frame.h"
#include "usage_error.h"
#include "values.h"
#include "wakeup.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <mutex>

namespace tarn::ctl
{

namespace
{

struct Event
{
    std::string time; // when it arrived
    std::string service;
    std::uint32_t number = 0;
    Bytes data;
};

// Between the platform's thread and ours. The platform's handlers know no context, so the inbox is found through a variable.
class Inbox
{
public:
    Inbox()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        current = this;
    }

    ~Inbox()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        current = nullptr;
    }

    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    static void receive(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
    {
        const auto* const bytes = static_cast<const unsigned char*>(data);
        Event event = {base::Timestamp().text, serviceId, evt, length == 0 ? Bytes() : Bytes(bytes, bytes + length)};
        const std::lock_guard<std::mutex> guard(mutex);
        if (current == nullptr)
            return;
        current->events.push_back(std::move(event));
        current->wakeup.wake();
    }

    std::optional<Event> take()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        if (events.empty())
            return std::nullopt;
        Event event = std::move(events.front());
        events.pop_front();
        return event;
    }

    const Wakeup wakeup;

private:
    static std::mutex mutex;
    static Inbox* current;
    std::deque<Event> events;
};

std::mutex Inbox::mutex;
Inbox* Inbox::current = nullptr;

using Register = decltype(&tarnSubscribeEvent);

Report registered(const char* function, Register call, const CallerId& callerId, std::uint32_t event)
{
    Report report;
    report.function = &functionNamed(function);
    report.callerId = callerId;
    Observer observer(Passage::kSend);
    report.result.number = call(callerId ? callerId->c_str() : nullptr, event, nullptr, &Inbox::receive);
    report.seen = observer.seen;
    report.outcome = outcomeOf(report);
    return report;
}

// The subscriptions that stand. They are taken back when this goes, if not before.
class Subscriptions
{
public:
    explicit Subscriptions(CallerId id) : callerId(std::move(id))
    {
    }

    ~Subscriptions()
    {
        cancelAll();
    }

    Subscriptions(const Subscriptions&) = delete;
    Subscriptions& operator=(const Subscriptions&) = delete;

    Report add(std::uint32_t event)
    {
        Report report = registered("tarnSubscribeEvent", &tarnSubscribeEvent, callerId, event);
        if (report.outcome == Outcome::kDone)
            standing.push_back(event);
        return report;
    }

    // The first cancel that failed, if one did.
    std::optional<Report> cancelAll()
    {
        std::optional<Report> failed;
        for (const std::uint32_t event : standing)
        {
            Report report = registered("tarnCancelEvent", &tarnCancelEvent, callerId, event);
            if (report.outcome != Outcome::kDone && !failed)
                failed = std::move(report);
        }
        standing.clear();
        return failed;
    }

private:
    const CallerId callerId;
    std::vector<std::uint32_t> standing;
};

std::vector<contract::Event> chosenEvents(const std::vector<std::string>& texts)
{
    if (texts.empty())
        return knownEvents();
    std::vector<contract::Event> chosen;
    for (const std::string& text : texts)
    {
        const contract::Event& event = eventNamed(text);
        const auto isSame = [&](const contract::Event& earlier) { return earlier.event == event.event; };
        if (std::any_of(chosen.begin(), chosen.end(), isSame))
            throw UsageError("event " + event.name + ": given twice; expected once");
        chosen.push_back(event);
    }
    return chosen;
}

void write(const Console& console, const Event& event)
{
    const std::string name = eventNamed(std::to_string(event.number)).name;
    if (!console.json)
    {
        console.out << event.time << ' ' << event.service << ' ' << event.number << ' ' << name << ' ' << event.data.size()
                    << " bytes" << (event.data.empty() ? "" : " ") << hexText(event.data) << '\n'
                    << std::flush;
        return;
    }
    Json document = Console::document("event");
    document["time"] = event.time;
    document["service"] = event.service;
    document["event"] = event.number;
    document["name"] = name;
    document["data"] = hexText(event.data);
    console.write(document);
}

Deadline deadlineAfter(const std::optional<double>& seconds)
{
    if (!seconds)
        return std::nullopt;
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(std::llround(*seconds * 1000));
}

bool hasPassed(const Deadline& deadline)
{
    return deadline && std::chrono::steady_clock::now() >= *deadline;
}

// How many came.
std::uint32_t writeEvents(const Console& console, const Watch& watch, Inbox& inbox, const StopSignals& stop,
                          const Deadline& deadline)
{
    std::uint32_t written = 0;
    while (!watch.count || written < *watch.count)
    {
        if (const std::optional<Event> event = inbox.take())
        {
            write(console, *event);
            ++written;
            if (!console.out)
                break;
        }
        else if (stop.haveCome() || hasPassed(deadline))
            break;
        else
            inbox.wakeup.wait(deadline);
    }
    return written;
}

} // namespace

ExitCode watchEvents(const Console& whole, const Watch& watch)
{
    Console console = whole;
    console.oneLine = true;

    const std::vector<contract::Event> chosen = chosenEvents(watch.events);
    Inbox inbox;
    const StopSignals stop(inbox.wakeup);
    Subscriptions subscriptions(watch.callerId);
    for (const contract::Event& event : chosen)
    {
        const Report report = subscriptions.add(event.event);
        if (report.outcome != Outcome::kDone)
            return console.fail(exitCodeOf(report.outcome), failureText(report));
    }
    console.remark("watching " + base::join(chosen, ", ", [](const contract::Event& event) { return event.name; }));

    const std::uint32_t written = writeEvents(console, watch, inbox, stop, deadlineAfter(watch.seconds));
    if (const std::optional<Report> lost = subscriptions.cancelAll())
        return console.fail(ExitCode::kIpcFailed,
                            "events may have been missed, a subscription was gone at the end: " + failureText(*lost));
    if (watch.count && written < *watch.count && !stop.haveCome())
        return console.fail(ExitCode::kTimedOut, "expected " + std::to_string(*watch.count) + " events; " +
                                                     std::to_string(written) + " came in time");
    return ExitCode::kSuccess;
}

} // namespace tarn::ctl
