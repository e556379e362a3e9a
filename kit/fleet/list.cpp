// `tarn-fleet list`: which gateways are there. Births and wills say which there may be; who answers a ping is there.
#include "contract_table.h"
#include "fleet_verbs.h"
#include "roll.h"

#include "base/timestamp.h"
#include "tarnctl/listing.h"
#include "tarnctl/wakeup.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

namespace tarn::fleet
{

namespace
{

constexpr std::chrono::milliseconds kPingTime{2000};
constexpr std::size_t kPingWindow = 64;
constexpr char kThere[] = "there";

struct ListOptions
{
    std::optional<std::string> filter;
    bool isWatching = false;
};

void declareList(ctl::Syntax& syntax, ListOptions& options)
{
    syntax.text("FILTER", options.filter, "A name, a pattern with * and ?, or @FILE with a name a line; all if left out");
    syntax.flag("--watch", options.isWatching, "Go on, and show who comes and goes, until SIGINT or SIGTERM comes");
    syntax.footer("Each gateway that has told the broker of itself is asked whether it is there:\n"
                  "  there      it has answered\n"
                  "  no answer  the broker has it connected, but it has not answered within 2 s\n"
                  "  gone       it has not answered, and the broker knows that it has gone\n"
                  "since is when it connected to the broker, up how long its bridge runs.\n"
                  "Exit code 0 if one is there, else 4.");
}

std::string timeBefore(std::uint64_t milliseconds)
{
    constexpr long kNanosecondsInSecond = 1000000000;
    timespec time = {};
    clock_gettime(CLOCK_REALTIME, &time);
    time.tv_sec -= static_cast<std::time_t>(milliseconds / 1000);
    time.tv_nsec -= static_cast<long>(milliseconds % 1000) * 1000000;
    if (time.tv_nsec < 0)
    {
        --time.tv_sec;
        time.tv_nsec += kNanosecondsInSecond;
    }
    return base::Timestamp(time).text;
}

ctl::Fields fieldsOf(const std::string& name, const std::optional<Presence>& presence, const State& state)
{
    ctl::Fields fields;
    fields.set("gateway", ctl::textCell(name));
    const char* const absence = state.isConnected ? "no answer" : "gone";
    fields.set("state", ctl::textCell(presence ? kThere : absence));
    if (!presence)
        return fields;
    const std::uint64_t second = 1000;
    if (presence->run == state.run && presence->clock >= state.clock)
        fields.set("since", ctl::textCell(timeBefore(presence->clock - state.clock)));
    fields.set("up", ctl::withDuration(ctl::numberCell(static_cast<std::int64_t>(presence->clock / second), "seconds")));
    fields.set("version", ctl::textCell(presence->version));
    fields.set("byte_order", ctl::textCell(presence->byteOrder == ByteOrder::kBig ? "big" : "little"));
    fields.set("contract", ctl::textCell(presence->isSameContract ? "same" : "other"));
    fields.set("round_trip", ctl::numberCell(presence->roundTrip.count(), "us"));
    return fields;
}

const std::vector<ctl::Column>& columns()
{
    static const std::vector<ctl::Column> kColumns = {
        {"gateway", "gateway"}, {"state", "state"},           {"since", "since"},       {"up", "up"},
        {"version", "version"}, {"byte_order", "byte_order"}, {"contract", "contract"}, {"round_trip", "round_trip"}};
    return kColumns;
}

// Of whom a birth or a will was heard, for the thread that shows them.
struct News
{
    std::mutex mutex;
    std::set<std::string> gateways;
    ctl::Wakeup wakeup;

    void add(const std::string& gateway)
    {
        const std::lock_guard guard(mutex);
        gateways.insert(gateway);
        wakeup.wake();
    }
    std::set<std::string> take()
    {
        const std::lock_guard guard(mutex);
        return std::exchange(gateways, {});
    }
};

// Asks gateways, and knows which births and wills were heard when it did.
class RollCall
{
public:
    RollCall(Exchange& exchange, const Roll& roll) : exchange_(exchange), roll_(roll)
    {
    }

    // From any thread.
    ctl::Fields ask(const std::string& gateway)
    {
        const std::optional<Presence> presence = exchange_.ping(gateway, kPingTime);
        // At once: its clock is as it was when it answered. What is retained of it came before its answer.
        State state = roll_.state(gateway);
        ctl::Fields fields = fieldsOf(gateway, presence, state);
        state.isConnected = state.isConnected || presence; // a will that came behind its answer is not shown yet
        const std::lock_guard guard(mutex_);
        shown_[gateway] = state;
        return fields;
    }
    // Whether there was a birth or a will since it was asked.
    bool hasChanged(const std::string& gateway) const
    {
        const State state = roll_.state(gateway);
        const std::lock_guard guard(mutex_);
        const auto shown = shown_.find(gateway);
        return shown == shown_.end() || shown->second.run != state.run || shown->second.connection != state.connection ||
               shown->second.isConnected != state.isConnected;
    }

private:
    Exchange& exchange_;
    const Roll& roll_;
    mutable std::mutex mutex_;
    std::map<std::string, State> shown_;
};

void showChange(const ctl::Console& console, const ctl::Fields& fields)
{
    const std::string time = base::Timestamp().text;
    if (!console.json)
    {
        console.out << time;
        for (const auto& [name, cell] : fields.all())
            if (name == "gateway" || name == "state" || name == "version")
                console.out << ' ' << cell.text();
        console.out << '\n' << std::flush;
        return;
    }
    ctl::Json document = ctl::Console::document("presence");
    document["time"] = time;
    for (const char* key : {"gateway", "state", "version"})
        document[key] = fields[key].isKnown() ? ctl::Json(fields[key].text()) : ctl::Json(nullptr);
    console.write(document);
}

// Each as it answers. Who has gone is waited for, and many may have gone with one broker or one line.
void showChanges(const ctl::Console& console, const std::set<std::string>& heard, RollCall& rollCall,
                 const ctl::StopSignals& signals)
{
    std::vector<std::string> changed;
    std::copy_if(heard.begin(), heard.end(), std::back_inserter(changed),
                 [&](const std::string& gateway) { return rollCall.hasChanged(gateway); });
    std::mutex mutex; // of the console
    forEach(changed, kPingWindow,
            [&](std::size_t index)
            {
                const ctl::Fields fields = rollCall.ask(changed[index]);
                const std::lock_guard guard(mutex);
                showChange(console, fields);
                return !signals.haveCome();
            });
}

// A row each. Returns whether one is there.
bool showAll(const ctl::Console& console, const std::vector<std::string>& names, RollCall& rollCall,
             const ctl::StopSignals& signals)
{
    std::vector<ctl::Fields> rows(names.size());
    forEach(names, kPingWindow,
            [&](std::size_t index)
            {
                rows[index] = rollCall.ask(names[index]);
                return !signals.haveCome();
            });
    const auto wasNotAsked = [](const ctl::Fields& row) { return !row["gateway"].isKnown(); }; // a signal came before
    rows.erase(std::remove_if(rows.begin(), rows.end(), wasNotAsked), rows.end());
    const bool isAnyThere =
        std::any_of(rows.begin(), rows.end(), [](const ctl::Fields& row) { return row["state"].text() == kThere; });
    ctl::Page page("gateways");
    page.list("gateways", columns()).rows = std::move(rows);
    page.writeUndecoded(console);
    return isAnyThere;
}

ctl::ExitCode list(const ctl::Console& plain, const ListOptions& options, const LinkSettings& link)
{
    ctl::Console console = plain;
    console.oneLine = options.isWatching;
    const GatewayFilter filter(options.filter.value_or("*"));
    Roll roll;
    News news;
    const ctl::StopSignals signals(news.wakeup);
    ExchangeWatcher watcher;
    watcher.state = [&](const std::string& gateway, const Envelope& envelope)
    {
        if (roll.hear(gateway, envelope) && filter.accepts(gateway))
            news.add(gateway);
    };
    Exchange exchange(link, {kAllStates}, watcher, nullptr);
    if (!exchange.awaitAnyBroker(signals))
        return console.fail(ctl::ExitCode::kIpcFailed, exchange.lastLoss());

    const std::vector<std::string> names = gatewaysOf(filter, roll);
    RollCall rollCall(exchange, roll);
    const bool isAnyThere = showAll(console, names, rollCall, signals);
    while (options.isWatching && !signals.haveCome())
    {
        showChanges(console, news.take(), rollCall, signals);
        news.wakeup.wait(std::nullopt);
    }
    return isAnyThere || options.isWatching ? ctl::ExitCode::kSuccess : ctl::ExitCode::kNoService;
}

} // namespace

void addList(ctl::Verbs& verbs, const SettingsSource& settings)
{
    verbs.add<ListOptions>("list", "Which gateways are there, since when, and what runs on them", declareList,
                           [settings](const ctl::Console& console, const ListOptions& options)
                           { return list(console, options, settings()); });
}

} // namespace tarn::fleet
