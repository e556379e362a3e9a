// `tarnctl events`: watches what the device service publishes.
#include "base/join.h"
#include "base/timestamp.h"
#include "tarn_frame.h"
#include "tarnctl/event_names.h"
#include "tarnctl/fields.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"
#include "tarnctl/wakeup.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <mutex>

namespace tarn::ctl
{

namespace
{

struct EventsOptions
{
    std::vector<std::string> events; // names or numbers; none for all of them
    std::optional<std::uint32_t> count;
    std::optional<double> seconds;
    CallerId callerId = kOwnCallerId;
};

void declare(CLI::App& verb, EventsOptions& options)
{
    addTexts(verb, "EVENT", options.events, "Names or numbers of events; all five if none is given");
    verb.add_option("--count", options.count, "End after so many events")
        ->check(CLI::Range(1u, 0xFFFFFFFFu, "1 to 4294967295"));
    verb.add_option("--timeout", options.seconds, "End after so many seconds")->check(CLI::Range(0.0, 1e9, "0 to 1e9 seconds"));
    addCaller(verb, options.callerId);
    verb.footer("One line an event, until the count is reached, the time is up, or SIGINT or SIGTERM comes (exit code 0).\n"
                "Fewer events than --count when the time is up: exit code 5.");
}

struct ReceivedEvent
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
        const std::lock_guard<std::mutex> guard(mutex_);
        current_ = this;
    }

    ~Inbox()
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        current_ = nullptr;
    }

    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    static void receive(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
    {
        const auto* const bytes = static_cast<const unsigned char*>(data);
        ReceivedEvent event = {base::Timestamp().text, serviceId, evt, length == 0 ? Bytes() : Bytes(bytes, bytes + length)};
        const std::lock_guard<std::mutex> guard(mutex_);
        if (current_ == nullptr)
            return;
        current_->events_.push_back(std::move(event));
        current_->wakeup.wake();
    }

    std::optional<ReceivedEvent> take()
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        if (events_.empty())
            return std::nullopt;
        ReceivedEvent event = std::move(events_.front());
        events_.pop_front();
        return event;
    }

    const Wakeup wakeup;

private:
    static inline std::mutex mutex_;
    static inline Inbox* current_ = nullptr;
    std::deque<ReceivedEvent> events_;
};

using Register = decltype(&tarnSubscribeEvent);

Report registered(const char* function, Register call, const CallerId& callerId, std::uint32_t event)
{
    Report report;
    report.function = &functionNamed(function);
    report.callerId = callerId;
    const Observer observer(Passage::kSend);
    report.result.number = call(callerId ? callerId->c_str() : nullptr, event, nullptr, &Inbox::receive);
    report.seen = observer.seen;
    report.outcome = outcomeOf(report);
    return report;
}

// The subscriptions that have been made. The destructor cancels those that are left.
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

    Report add(std::uint32_t event)
    {
        Report report = registered("tarnSubscribeEvent", &tarnSubscribeEvent, callerId_, event);
        if (report.outcome == CallOutcome::kDone)
            made_.push_back(event);
        return report;
    }

    // The first cancel that failed, if one did.
    std::optional<Report> cancelAll()
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

private:
    const CallerId callerId_;
    std::vector<std::uint32_t> made_;
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

// " radioId=1 channel=44" where there is a layout, and in hexadecimal where none tells of all the bytes.
std::string dataText(const contract::Event& event, const Bytes& data)
{
    const layout::Structure* const structure = structureOf(event);
    const bool isExplained = structure != nullptr && data.size() == structure->size;
    std::string text = isExplained || data.empty() ? "" : " " + hexText(data);
    if (structure == nullptr)
        return text;
    for (const layout::FieldLine& line : layout::linesOf(layout::decode(*structure, data)))
        text += " " + line.name + "=" + line.value + (line.unit.empty() ? "" : " " + line.unit);
    return text;
}

void write(const Console& console, const ReceivedEvent& event)
{
    const contract::Event& known = eventNamed(std::to_string(event.number));
    const std::string& name = known.name;
    if (!console.json)
    {
        console.out << event.time << ' ' << event.service << ' ' << event.number << ' ' << name << ' ' << event.data.size()
                    << " bytes" << dataText(known, event.data) << '\n'
                    << std::flush;
        return;
    }
    const layout::Structure* const structure = structureOf(known);
    Json document = Console::document("event");
    document["time"] = event.time;
    document["service"] = event.service;
    document["event"] = event.number;
    document["name"] = name;
    document["data"] = hexText(event.data);
    if (structure != nullptr)
        document["fields"] = fieldsDocument(layout::decode(*structure, event.data));
    document["layout"] = layoutDocument(structure == nullptr ? nullptr : layoutInUse());
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

// Returns the number of events.
std::uint32_t writeEvents(const Console& console, const EventsOptions& options, Inbox& inbox, const StopSignals& stop,
                          const Deadline& deadline)
{
    std::uint32_t written = 0;
    while (!options.count || written < *options.count)
    {
        if (const std::optional<ReceivedEvent> event = inbox.take())
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

// Until the count is reached, the time is up, or SIGINT or SIGTERM arrives. One at a time in a process.
ExitCode events(const Console& settings, const EventsOptions& options)
{
    Console console = settings;
    console.oneLine = true;

    checkNamedLayout();
    const std::vector<contract::Event> chosen = chosenEvents(options.events);
    Inbox inbox;
    const StopSignals stop(inbox.wakeup);
    Subscriptions subscriptions(options.callerId);
    for (const contract::Event& event : chosen)
    {
        const Report report = subscriptions.add(event.event);
        if (report.outcome != CallOutcome::kDone)
            return console.fail(exitCodeOf(report.outcome), failureText(report));
    }
    const LayoutInUse* const inUse = layoutInUse();
    console.remark("watching " + base::join(chosen, ", ", [](const contract::Event& event) { return event.name; }) +
                   (inUse == nullptr ? "" : "; layout: " + inUse->layout.title()));

    const std::uint32_t written = writeEvents(console, options, inbox, stop, deadlineAfter(options.seconds));
    if (const std::optional<Report> lost = subscriptions.cancelAll())
        return console.fail(ExitCode::kIpcFailed,
                            "events may have been missed, a subscription was gone at the end: " + failureText(*lost));
    if (options.count && written < *options.count && !stop.haveCome())
        return console.fail(ExitCode::kTimedOut, "expected " + std::to_string(*options.count) + " events; " +
                                                     std::to_string(written) + " came in time");
    return ExitCode::kSuccess;
}

} // namespace

void addEvents(Verbs& verbs)
{
    verbs.add("events", "Watches events of the device service", &declare, &events, &eventNames);
}

} // namespace tarn::ctl
