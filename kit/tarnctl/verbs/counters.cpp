// `tarnctl counters`: what has been sent and received, or how much a second.
#include "tarnctl/listing.h"
#include "tarnctl/rate.h"
#include "tarnctl/verbs/verbs.h"

#include <array>
#include <chrono>
#include <cmath>
#include <map>

namespace tarn::ctl
{

namespace
{

struct CountersOptions
{
    std::vector<std::string> targets;
    WatchOptions watch;
};

void declareCounters(Syntax& syntax, CountersOptions& options)
{
    declareTargets(syntax, options.targets);
    declareWatch(syntax, options.watch);
    syntax.footer("Without --watch the sums, with it what came a second since the time before.");
}

struct Counter
{
    const char* field; // of TarnSsidIntfStats
    const char* sumKey;
    const char* rateKey;
    const char* rateTitle;
    bool isBytes; // whose rate is in bits
};

constexpr std::array<Counter, 7> kCounters = {{
    {"txBytes", "tx_bytes", "tx_bits_per_second", "tx", true},
    {"rxBytes", "rx_bytes", "rx_bits_per_second", "rx", true},
    {"txPackets", "tx_packets", "tx_packets_per_second", "tx packets", false},
    {"rxPackets", "rx_packets", "rx_packets_per_second", "rx packets", false},
    {"txErrors", "tx_errors", "tx_errors_per_second", "tx errors", false},
    {"rxErrors", "rx_errors", "rx_errors_per_second", "rx errors", false},
    {"txRetries", "tx_retries", "tx_retries_per_second", "tx retries", false},
}};

// Of one interface. Each has a time of its own: finding the interfaces, and asking each, may take long.
struct Reading
{
    Fields counters;
    std::chrono::steady_clock::time_point time;
};

std::vector<Reading> readingsOf(Survey& survey, const std::vector<std::string>& targets)
{
    std::vector<Reading> readings;
    for (const Interface& interface : survey.interfaces(targets))
    {
        Fields counters = survey.ask("TarnGetSsidIntfStats", interface.asSsid());
        const auto time = std::chrono::steady_clock::now();
        counters.set("interface", textCell(interface.name));
        readings.push_back({std::move(counters), time});
    }
    return readings;
}

Cell rateOf(const Counter& counter, const Cell& before, const Cell& after, double seconds)
{
    constexpr double kBitsOfAByte = 8;
    Cell rate;
    if (!before.isNumber() || !after.isNumber())
        return rate;
    const double perSecond =
        growth(before.number(), after.number(), after.size) * (counter.isBytes ? kBitsOfAByte : 1) / seconds;
    const double rounded = std::round(perSecond * 10) / 10;
    rate.value = rounded;
    rate.unit = counter.isBytes ? "bit/s" : "1/s";
    rate.shown = shortened(rounded, counter.isBytes ? "bit/s" : "/s");
    return rate;
}

// What is counted is in the column's title.
Cell withoutUnit(Cell sum, bool isBytes)
{
    if (sum.isNumber())
        sum.shown = isBytes ? shortened(static_cast<double>(sum.number()), "B") : std::to_string(sum.number());
    return sum;
}

ExitCode writeSums(const Console& console, const CountersOptions& options)
{
    Survey survey("counters");
    Page page("counters");
    std::vector<Column> columns = {{"interface", "interface", &strong}, {"stations", "stations"}};
    for (const Counter& counter : kCounters)
        columns.push_back({counter.sumKey, counter.field});
    Listing& list = page.list("interfaces", columns);
    for (const Reading& reading : readingsOf(survey, options.targets))
    {
        Fields& row = list.rows.emplace_back(reading.counters);
        for (const Counter& counter : kCounters)
            row.set(counter.field, withoutUnit(row[counter.field], counter.isBytes));
    }
    return page.write(console, survey);
}

// `before` becomes the readings of this time.
ExitCode writeRates(const Console& console, const CountersOptions& options, std::vector<Reading>& before)
{
    Survey survey("counters");
    Page page("rates");
    std::vector<Column> columns = {{"interface", "interface", &strong}, {"stations", "stations"}};
    for (const Counter& counter : kCounters)
        columns.push_back({counter.rateKey, counter.rateKey, nullptr, false, counter.rateTitle});
    Listing& list = page.list("interfaces", columns);
    std::vector<Reading> now = readingsOf(survey, options.targets);
    std::map<std::string, Reading> earlier;
    for (const Reading& reading : before)
        earlier[reading.counters["interface"].text()] = reading;
    for (const auto& [counters, time] : now)
    {
        Fields& row = list.rows.emplace_back(counters);
        const Reading& last = earlier[counters["interface"].text()];
        const double seconds = std::chrono::duration<double>(time - last.time).count();
        for (const Counter& counter : kCounters)
            row.set(counter.rateKey, rateOf(counter, last.counters[counter.field], counters[counter.field], seconds));
    }
    before = std::move(now);
    return page.write(console, survey);
}

ExitCode counters(const Console& console, const CountersOptions& options)
{
    if (!options.watch.seconds)
        return watch(console, options.watch, [&](const Console& frame) { return writeSums(frame, options); });
    Survey survey("counters");
    std::vector<Reading> before = readingsOf(survey, options.targets);
    WatchOptions later = options.watch;
    later.waitsFirst = true;
    return watch(console, later, [&](const Console& frame) { return writeRates(frame, options, before); });
}

} // namespace

void addCounters(Verbs& verbs)
{
    verbs.add("counters", "Shows what the networks have sent and received", &declareCounters, &counters);
}

} // namespace tarn::ctl
