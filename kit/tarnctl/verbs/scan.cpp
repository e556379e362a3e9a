// `tarnctl scan`: the networks around.
#include "tarnctl/listing.h"
#include "tarnctl/occupancy.h"
#include "tarnctl/progress.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/verbs/verbs.h"
#include "tarnctl/wakeup.h"

#include <algorithm>
#include <map>

namespace tarn::ctl
{

namespace
{

struct ScanOptions
{
    std::vector<std::string> targets;
    std::optional<std::string> sort;
    bool waits = false;
    bool startsNone = false;
    bool hasChart = false;
};

std::vector<Column> columns()
{
    return {{"radio", "radio"},     {"ssid", "ssid", &strong},  {"bssid", "bssid"}, {"signal", "rssi", &signalTone},
            {"channel", "channel"}, {"bandwidth", "bandwidth"}, {"band", "band"},   {"security", "security"}};
}

void declareScan(Syntax& syntax, ScanOptions& options)
{
    declareTargets(syntax, options.targets);
    syntax.flag("--wait", options.waits, "Wait for the scan's end, and show what it found");
    syntax.flag("--last", options.startsNone, "Start none; show what the last one found");
    declareSort(syntax, options.sort, columns());
    syntax.flag("--chart", options.hasChart, "Draw which channels the networks cover");
    syntax.footer("Without --wait a scan is started, and what the one before found is shown.\n"
                  "Example:\n  tarnctl scan --wait --sort signal --chart");
}

Cell stateOf(Survey& survey, const Radio& radio)
{
    return survey.ask("TarnGetRadioNeighboringStatus", radio.asRadio())["status"];
}

// The states, as the layout names them.
constexpr char kRunning[] = "running";

void start(Survey& survey, const std::vector<Radio>& radios)
{
    for (const Radio& radio : radios)
        if (stateOf(survey, radio).name != kRunning)
            survey.ask("TarnScanRadioNeighborhood", radio.asRadio());
}

// Throws std::runtime_error if it does not end.
void waitForEnd(const Console& console, Survey& survey, const std::vector<Radio>& radios)
{
    constexpr auto kLongest = std::chrono::minutes(2);
    constexpr auto kPause = std::chrono::milliseconds(100);
    const auto start = std::chrono::steady_clock::now();
    const auto isDone = [&survey](const Radio& radio)
    {
        const Cell state = stateOf(survey, radio);
        if (state.isKnown() && state.name.empty())
            throw UsageError("--wait: the layout does not name the state " + state.text() +
                             " of TarnGetRadioNeighboringStatus; expected running, done or another name");
        return state.name != kRunning;
    };
    Progress progress(console, "scanning");
    const Wakeup wakeup;
    for (;;)
    {
        const std::int64_t done = std::count_if(radios.begin(), radios.end(), isDone);
        if (static_cast<std::size_t>(done) == radios.size())
            return;
        progress.show(static_cast<std::size_t>(done), radios.size(), "radios");
        if (std::chrono::steady_clock::now() - start > kLongest)
            throw std::runtime_error("the scan has not ended within two minutes");
        wakeup.wait(std::chrono::steady_clock::now() + kPause);
    }
}

std::string networkName(const Fields& neighbour)
{
    const std::string name = neighbour["ssid"].text();
    return name.empty() ? "(hidden)" : name;
}

void writeChart(const Console& console, const std::vector<Radio>& radios, const std::vector<Fields>& neighbours)
{
    std::map<Band, std::vector<Network>> bands;
    for (const Radio& radio : radios)
        if (radio.data["channel"].number() != 0)
            bands[bandOf(radio.data["band"].text(), radio.data["channel"].number())].push_back(
                {radio.name, radio.data["channel"].number(), radio.data["bandwidth"].number(), 0, true});
    for (const Fields& neighbour : neighbours)
        if (neighbour["channel"].number() != 0)
            bands[bandOf(neighbour["band"].text(), neighbour["channel"].number())].push_back(
                {networkName(neighbour), neighbour["channel"].number(), neighbour["bandwidth"].number(),
                 neighbour["rssi"].number(), false});
    for (const auto& [band, networks] : bands)
    {
        console.out << '\n';
        writeOccupancy(console, band, networks);
    }
}

// Says where the results are not those of a finished scan.
void remarkState(const Console& console, const Radio& radio, const Cell& state)
{
    if (state.name == kRunning)
        console.remark(radio.title() + ": a scan is running; these are the results of the one before, --wait waits for it");
}

ExitCode scan(const Console& console, const ScanOptions& options)
{
    if (options.waits && options.startsNone)
        throw UsageError("scan: expected --wait or --last, not both");
    if (options.hasChart && (console.json || console.csv))
        throw UsageError("--chart: expected --format table; JSON and CSV have no pictures");
    Survey survey("scan");
    const std::vector<Radio> radios = survey.radios(options.targets);
    if (!options.startsNone)
        start(survey, radios);
    if (options.waits)
        waitForEnd(console, survey, radios);

    Page page("scan");
    Listing& networks = page.list("networks", columns());
    Listing& states = page.list("radios", {{"id", "id"}, {"name", "name"}, {"state", "state", nullptr, true}});
    states.isOnlyInJson = true;
    for (const Radio& radio : radios)
    {
        Fields& row = states.rows.emplace_back(radio.data);
        row.set("id", numberCell(radio.id));
        row.set("state", stateOf(survey, radio));
        if (!console.json)
            remarkState(console, radio, row["state"]);
        for (Fields& neighbour : survey.neighbours(radio))
        {
            neighbour.set("radio", numberCell(radio.id));
            if (neighbour["ssid"].text().empty())
            {
                Cell hidden = neighbour["ssid"];
                hidden.shown = networkName(neighbour);
                neighbour.set("ssid", hidden);
            }
            networks.rows.push_back(std::move(neighbour));
        }
    }
    if (options.sort)
        networks.sort(*options.sort);
    const ExitCode exit = page.write(console, survey);
    if (options.hasChart)
        writeChart(console, radios, networks.rows);
    return exit;
}

} // namespace

void addScan(Verbs& verbs)
{
    verbs.add("scan", "Looks for the networks around", &declareScan, &scan);
}

} // namespace tarn::ctl
