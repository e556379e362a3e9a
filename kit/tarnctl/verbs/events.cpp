// `tarnctl events`: watches what the device service publishes.
#include "base/join.h"
#include "tarnctl/event_names.h"
#include "tarnctl/fields.h"
#include "tarnctl/subscriptions.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <variant>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct EventsOptions
{
    std::vector<std::string> events; // names or numbers; none for all of them
    std::optional<std::uint32_t> count;
    std::optional<double> seconds;
    bool reconnects = true;
    CallerId callerId = kOwnCallerId;
};

void declareEvents(Syntax& syntax, EventsOptions& options)
{
    constexpr double kLongest = 1e9;
    syntax.texts("EVENT", options.events, "Names or numbers of events; all five if none is given");
    syntax.count("--count", options.count, "End after so many events");
    syntax.seconds("--timeout", options.seconds, 0, kLongest, "End after so many seconds");
    syntax.flag("!--no-reconnect,--reconnect", options.reconnects,
                "Go on when the service has been restarted, and say so: the default. Otherwise end with it");
    syntax.caller(options.callerId);
    syntax.footer("One line an event, until the count is reached, the time is up, or SIGINT or SIGTERM comes (exit code 0).\n"
                  "Fewer events than --count when the time is up: exit code 5. No service at the end: exit code 6.");
}

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

void write(const Console& console, const ReceivedEvent& event)
{
    const contract::Event& known = eventNamed(std::to_string(event.number));
    const std::string& name = known.name;
    if (!console.json)
    {
        console.out << event.time << ' ' << event.service << ' ' << event.number << ' ' << name << ' ' << event.data.size()
                    << " bytes" << eventDataText(known, event.data) << '\n'
                    << std::flush;
        return;
    }
    console.write(eventDocument(event.time, event.service, known, event.data));
}

void write(const Console& console, const SubscriptionChange& change)
{
    if (!console.json)
        return;
    Json document = Console::document("subscription");
    document["time"] = change.time;
    document["service"] = change.service;
    document["event"] = change.number;
    document["name"] = eventNamed(std::to_string(change.number)).name;
    document["state"] = toString(change.state);
    console.write(document);
}

// The subscriptions that a restart of the service has ended and not yet brought back.
class Losses
{
public:
    bool isAny() const
    {
        return !lost_.empty();
    }

    // What to tell a person: of the first loss, of each event that is gone, and of all that are back together. May be empty.
    std::string take(const SubscriptionChange& change, bool reconnects)
    {
        const std::string& name = eventNamed(std::to_string(change.number)).name;
        if (change.state == SubscriptionState::kLost)
        {
            const bool isFirst = lost_.empty();
            lost_.insert(change.number);
            if (!isFirst || !reconnects)
                return "";
            return change.service + " has ended; its events are missed until it is back";
        }
        lost_.erase(change.number);
        std::string text;
        if (change.state == SubscriptionState::kGone)
            text = change.service + " is back without " + name + ", which is not watched any more";
        else
            renewed_.push_back(name);
        if (!lost_.empty() || renewed_.empty())
            return text;
        text += (text.empty() ? change.service + " is back" : "") + "; watching " + base::join(renewed_) + " again";
        renewed_.clear();
        return text;
    }

private:
    std::set<std::uint32_t> lost_;
    std::vector<std::string> renewed_;
};

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

// One run of the verb.
class Watch
{
public:
    Watch(const Console& console, const EventsOptions& options)
        : console_(console), options_(options), stop_(inbox_.wakeup), subscriptions_(options.callerId)
    {
    }

    // Returns the report of a subscription that failed, if one did.
    std::optional<Report> subscribe(const std::vector<contract::Event>& events)
    {
        for (const contract::Event& event : events)
        {
            Report report = subscriptions_.add(event.event);
            if (report.outcome != CallOutcome::kDone)
                return report;
        }
        return std::nullopt;
    }

    // Until the count is reached, the time is up, a signal comes, or there is nothing left to wait for.
    void writeAll()
    {
        const Deadline deadline = deadlineAfter(options_.seconds);
        while (!isCountReached() && !subscriptions_.isEmpty() && console_.out && (options_.reconnects || !losses_.isAny()))
        {
            if (const std::optional<Arrival> arrival = inbox_.take())
                std::visit([&](const auto& arrived) { take(arrived); }, *arrival);
            else if (stop_.haveCome() || hasPassed(deadline))
                break;
            else
                inbox_.wakeup.wait(deadline);
        }
    }

    ExitCode end()
    {
        const bool isNothingLeft = subscriptions_.isEmpty();
        if (const std::optional<Report> lost = subscriptions_.cancelAll())
            return console_.fail(ExitCode::kIpcFailed,
                                 "events may have been missed, a subscription was gone at the end: " + failureText(*lost));
        if (isNothingLeft)
            return console_.fail(ExitCode::kIpcFailed, "none of the events is left to watch");
        if (losses_.isAny())
            return console_.fail(ExitCode::kIpcFailed, options_.reconnects
                                                           ? "events may have been missed, the service was not back at the end"
                                                           : "the service has ended, and with it the subscriptions");
        if (!isCountReached() && options_.count && !stop_.haveCome())
            return console_.fail(ExitCode::kTimedOut, "expected " + std::to_string(*options_.count) + " events; " +
                                                          std::to_string(written_) + " came in time");
        return ExitCode::kSuccess;
    }

private:
    bool isCountReached() const
    {
        return options_.count && written_ >= *options_.count;
    }

    void take(const ReceivedEvent& event)
    {
        write(console_, event);
        ++written_;
    }

    void take(const SubscriptionChange& change)
    {
        write(console_, change);
        if (const std::string text = losses_.take(change, options_.reconnects); !text.empty())
            console_.remark(text);
        if (change.state == SubscriptionState::kGone)
            subscriptions_.forget(change.number);
    }

    const Console& console_;
    const EventsOptions& options_;
    Inbox inbox_;
    const StopSignals stop_;
    Subscriptions subscriptions_;
    Losses losses_;
    std::uint32_t written_ = 0;
};

// Until the count is reached, the time is up, or SIGINT or SIGTERM arrives. One at a time in a process.
ExitCode events(const Console& settings, const EventsOptions& options)
{
    Console console = settings;
    console.oneLine = true;

    checkNamedLayout();
    const std::vector<contract::Event> chosen = chosenEvents(options.events);
    Watch watch(console, options);
    if (const std::optional<Report> failed = watch.subscribe(chosen))
        return console.fail(exitCodeOf(failed->outcome), failureText(*failed));
    const LayoutInUse* const inUse = layoutInUse();
    console.remark("watching " + base::join(chosen, ", ", [](const contract::Event& event) { return event.name; }) +
                   (inUse == nullptr ? "" : "; layout: " + inUse->layout.title()));
    watch.writeAll();
    return watch.end();
}

} // namespace

void addEvents(Verbs& verbs)
{
    verbs.add("events", "Watches events of the device service", &declareEvents, &events, &eventNames);
}

} // namespace tarn::ctl
