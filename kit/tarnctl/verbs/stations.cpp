// `tarnctl stations`: who is connected.
#include "tarnctl/listing.h"
#include "tarnctl/sparkline.h"
#include "tarnctl/verbs/verbs.h"

#include <deque>
#include <map>

namespace tarn::ctl
{

namespace
{

struct StationsOptions
{
    std::vector<std::string> targets;
    std::optional<std::string> sort;
    WatchOptions watch;
};

std::vector<Column> columns(bool hasHistory)
{
    std::vector<Column> columns = {
        {"interface", "interface"}, {"address", "macAddress", &strong}, {"signal", "rssi", &signalTone}};
    if (hasHistory)
        columns.push_back({"history", "history", &signalTone});
    for (const Column& column :
         {Column{"tx_rate", "txRate"}, Column{"rx_rate", "rxRate"}, Column{"tx_mcs", "txMcs"}, Column{"rx_mcs", "rxMcs"},
          Column{"mode", "phyMode"}, Column{"chains", "chains"}, Column{"connected", "secondsAssociated"}})
        columns.push_back(column);
    return columns;
}

void declareStations(Syntax& syntax, StationsOptions& options)
{
    declareTargets(syntax, options.targets);
    declareSort(syntax, options.sort, columns(false));
    declareWatch(syntax, options.watch);
    syntax.footer("With --watch the column history shows how the signal has changed, the latest at the right.\n"
                  "Example:\n  tarnctl stations --sort signal --watch 1");
}

// The signals of each station since the watching began, the latest last.
using Histories = std::map<std::string, std::deque<std::int64_t>>;

Cell historyOf(const Fields& station, Histories& histories, bool hasUtf8)
{
    constexpr std::size_t kLongest = 24;
    constexpr std::int64_t kWeakest = -90; // dBm
    constexpr std::int64_t kStrongest = -30;
    const Cell& signal = station["rssi"];
    std::deque<std::int64_t>& history = histories[station["macAddress"].text()];
    if (signal.isNumber())
        history.push_back(signal.number());
    if (history.size() > kLongest)
        history.pop_front();
    Cell cell;
    cell.value = Datum::List(history.begin(), history.end());
    cell.unit = signal.unit;
    cell.shown = sparkline(history, kWeakest, kStrongest, hasUtf8);
    return cell;
}

ExitCode stations(const Console& console, const StationsOptions& options, Histories* histories)
{
    Survey survey("stations");
    Page page("stations");
    Listing& list = page.list("stations", columns(histories != nullptr));
    for (const Interface& interface : survey.interfaces(options.targets))
        for (Fields& station : survey.stations(interface))
        {
            station.set("interface", textCell(interface.name));
            station.set("secondsAssociated", withDuration(station["secondsAssociated"]));
            if (histories != nullptr)
                station.set("history", historyOf(station, *histories, console.terminal.knowsUtf8));
            list.rows.push_back(std::move(station));
        }
    if (options.sort)
        list.sort(*options.sort);
    return page.write(console, survey);
}

} // namespace

void addStations(Verbs& verbs)
{
    const auto act = [](const Console& console, const StationsOptions& options)
    {
        Histories histories;
        return watch(console, options.watch,
                     [&](const Console& frame)
                     { return stations(frame, options, options.watch.seconds ? &histories : nullptr); });
    };
    verbs.add("stations", "Shows the stations that are connected", &declareStations, act);
}

} // namespace tarn::ctl
