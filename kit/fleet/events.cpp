// `tarn-fleet events`: what the services of gateways publish.
#include "fleet_verbs.h"
#include "message_order.h"
#include "roll.h"

#include "base/timestamp.h"
#include "tarnctl/fields.h"
#include "tarnctl/layout_in_use.h"
#include "tarnctl/wakeup.h"

#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include <nlohmann/json.hpp>

namespace tarn::fleet
{

namespace
{

struct EventsOptions
{
    std::optional<std::string> filter;
    std::optional<std::uint32_t> count;
    std::optional<double> seconds;
};

void declareEvents(ctl::Syntax& syntax, EventsOptions& options)
{
    constexpr double kLongest = 1e9;
    syntax.text("FILTER", options.filter, "A name, a pattern with * and ?, or @FILE with a name a line; all if left out");
    syntax.count("--count", options.count, "End after so many events");
    syntax.seconds("--timeout", options.seconds, 0, kLongest, "End after so many seconds");
    syntax.footer("One line an event, until the count is reached, the time is up, or SIGINT or SIGTERM\n"
                  "comes (exit code 0). Events that were lost on their way, or came faster than they\n"
                  "are read, are remarked on, and whenever there is a connection to a broker again.\n"
                  "Fewer events than --count when the time is up: exit code 5.");
}

// Events that have come and are not shown yet, at most: what is written may go into a pipe that nobody reads.
constexpr std::size_t kMostUnshown = 10000;

struct Received
{
    std::string gateway, time;
    Envelope envelope; // without its message
    ctl::Bytes data;
    std::uint32_t lost = 0; // events of this service that should have come before
};

// From the broker's thread to the one that shows them.
class Inbox
{
public:
    explicit Inbox(const GatewayFilter& filter) : filter_(filter)
    {
    }

    void add(const std::string& gateway, const Envelope& envelope)
    {
        if (!filter_.accepts(gateway))
            return;
        Received received{gateway, base::Timestamp().text, envelope, ctl::Bytes(envelope.length), 0};
        unpack(envelope, received.data.data());
        received.envelope.message = nullptr;
        const std::lock_guard guard(mutex_);
        Latest& latest = latest_[{gateway, envelope.service}];
        if (latest.run != envelope.run)
            latest = {envelope.run, envelope.sequence - 1};
        if (envelope.sequence <= latest.sequence)
            return; // it has been here before
        if (events_.size() >= kMostUnshown)
            return; // the next one for which there is room says that it is lost
        received.lost = envelope.sequence - latest.sequence - 1;
        latest.sequence = envelope.sequence;
        events_.push_back(std::move(received));
        wakeup.wake();
    }
    std::optional<Received> take()
    {
        const std::lock_guard guard(mutex_);
        if (events_.empty())
            return std::nullopt;
        Received first = std::move(events_.front());
        events_.pop_front();
        return first;
    }

    const ctl::Wakeup wakeup;

private:
    // Of the events of one service.
    struct Latest
    {
        std::uint64_t run = 0;
        std::uint32_t sequence = 0;
    };

    const GatewayFilter& filter_;
    std::mutex mutex_;
    std::deque<Received> events_;
    std::map<std::pair<std::string, std::string>, Latest> latest_; // by gateway and service
};

// Null if the contract has no such event.
const contract::Event* eventOf(const Envelope& envelope)
{
    if (const contract::Contract* const service = contract::findService(envelope.service))
        for (const contract::Event& event : service->events)
            if (event.event == envelope.command)
                return &event;
    return nullptr;
}

void showEvent(const ctl::Console& console, Received event)
{
    const Envelope& envelope = event.envelope;
    if (event.lost > 0)
        console.remark(event.gateway + ": " + std::to_string(event.lost) + " events of " + envelope.service +
                       " were lost on their way");
    if (envelope.byteOrder != kOwnByteOrder)
    {
        const OrderTable table = orderTableOfEvent(envelope.service, envelope.command, layoutOrNull());
        turnRound(table, event.data.data(), event.data.size());
        if (!table.unknownOutputs.empty() && !event.data.empty())
            console.remark(event.gateway +
                           " has the other byte order; its event is shown as it is: no layout tells of its inside");
    }
    const contract::Event* const known = eventOf(envelope);
    if (known == nullptr)
        return console.remark(event.gateway + " has sent event " + std::to_string(envelope.command) + " of " +
                              envelope.service + ", which the contract does not have");
    if (!console.json)
    {
        console.out << event.time << ' ' << event.gateway << ' ' << envelope.service << ' ' << envelope.command << ' '
                    << known->name << ' ' << event.data.size() << " bytes" << ctl::eventDataText(*known, event.data) << '\n'
                    << std::flush;
        return;
    }
    ctl::Json document = ctl::eventDocument(event.time, envelope.service, *known, event.data);
    document["gateway"] = event.gateway;
    document["sequence"] = envelope.sequence;
    document["lost"] = event.lost;
    console.write(document);
}

ctl::ExitCode events(const ctl::Console& plain, const EventsOptions& options, const LinkSettings& link)
{
    ctl::Console console = plain;
    console.oneLine = true;
    ctl::checkNamedLayout();
    layoutOrNull();
    const GatewayFilter filter(options.filter.value_or("*"));
    Inbox inbox(filter);
    const ctl::StopSignals signals(inbox.wakeup);
    ExchangeWatcher watcher;
    watcher.event = [&inbox](const std::string& gateway, const Envelope& envelope) { inbox.add(gateway, envelope); };
    watcher.connected = [&console, &options] { console.remark("watching the events of " + options.filter.value_or("*")); };
    watcher.lost = [&console](const std::string& broker, const std::string& reason)
    { console.remark("no connection to the broker " + broker + ": " + reason + "; events are missed until there is one"); };
    Exchange exchange(link, {kAllEvents}, watcher, nullptr);
    if (!exchange.awaitAnyBroker(signals))
        return signals.haveCome() ? ctl::ExitCode::kSuccess : console.fail(ctl::ExitCode::kIpcFailed, exchange.lastLoss());

    ctl::Deadline end;
    if (options.seconds)
        end = std::chrono::steady_clock::now() +
              std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(*options.seconds));
    for (std::uint32_t shown = 0; !signals.haveCome();)
    {
        while (std::optional<Received> event = inbox.take())
        {
            showEvent(console, std::move(*event));
            if (++shown == options.count)
                return ctl::ExitCode::kSuccess;
        }
        if (end && std::chrono::steady_clock::now() >= *end)
            return options.count
                       ? console.fail(ctl::ExitCode::kTimedOut,
                                      std::to_string(shown) + " of " + std::to_string(*options.count) + " events came in time")
                       : ctl::ExitCode::kSuccess;
        inbox.wakeup.wait(end);
    }
    return ctl::ExitCode::kSuccess;
}

} // namespace

void addEvents(ctl::Verbs& verbs, const SettingsSource& settings)
{
    verbs.add<EventsOptions>("events", "Watches the events of gateways", declareEvents,
                             [settings](const ctl::Console& console, const EventsOptions& options)
                             { return events(console, options, settings()); });
}

} // namespace tarn::fleet
