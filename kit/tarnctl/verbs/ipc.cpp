// `tarnctl ipc`: which services are running, and what they have counted. No function of the library, but a question to the IPC
// library of the workstation, which asks the services themselves.
#include "base/timestamp.h"
#include "kor_iil_service.h"
#include "tarn_frame.h"
#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>

// The platform's own IPC library does not have it.
#pragma weak KorIilAskCounters

namespace tarn::ctl
{

namespace
{

constexpr std::uint32_t kStatisticsWait = 3; // seconds

struct CounterColumn
{
    const char* key;
    std::uint64_t KorIilServiceCounters::*counter;
};

constexpr std::array<CounterColumn, 6> kCounterColumns = {{
    {"process", &KorIilServiceCounters::processId},
    {"connections", &KorIilServiceCounters::connections},
    {"subscriptions", &KorIilServiceCounters::subscriptions},
    {"calls", &KorIilServiceCounters::calls},
    {"refusals", &KorIilServiceCounters::refusals},
    {"drops", &KorIilServiceCounters::drops},
}};

// By their sockets, which services that have died leave behind.
std::vector<std::string> serviceNames(const std::string& directory)
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error))
        if (entry.is_socket(error) && entry.path().extension() == ".socket")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string timeText(std::uint64_t seconds)
{
    timespec time = {};
    time.tv_sec = static_cast<time_t>(seconds);
    return base::Timestamp(time).text;
}

struct IpcOptions
{
    WatchOptions watch;
};

void declareIpc(Syntax& syntax, IpcOptions& options)
{
    declareWatch(syntax, options.watch);
}

Fields rowOf(const std::string& name, const KorIilServiceCounters& counters)
{
    Fields row;
    row.set("service", textCell(name));
    row.set("since", textCell(timeText(counters.openedAt)));
    for (const CounterColumn& column : kCounterColumns)
        row.set(column.key, numberCell(static_cast<std::int64_t>(counters.*column.counter)));
    return row;
}

ExitCode ipc(const Console& console)
{
    if (KorIilAskCounters == nullptr)
        return console.fail(ExitCode::kIpcFailed, "the platform's IPC library does not count");

    std::vector<Column> columns = {{"service", "service", &strong}, {"since", "since"}};
    for (const CounterColumn& column : kCounterColumns)
        columns.push_back({column.key, column.key});
    Page page("ipc");
    Listing& services = page.list("services", std::move(columns));
    std::vector<std::string> notes;
    ExitCode exit = ExitCode::kSuccess;
    for (const std::string& name : serviceNames(runtimeDirectory()))
    {
        KorIilServiceCounters counters = {};
        const std::uint32_t status = KorIilAskCounters(name.c_str(), kStatisticsWait, &counters);
        if (status == KOR_IIL_OK)
            services.rows.push_back(rowOf(name, counters));
        else if (status != KOR_IIL_UNKNOWN_DST_ID)
        {
            notes.push_back("service " + name + " cannot be asked: " + tarnIpcStatusName(status) + " (IPC status " +
                            std::to_string(status) + ")");
            exit = exitCodeOf(outcomeOf(status));
        }
    }
    if (services.rows.empty() && notes.empty())
        return console.fail(ExitCode::kNoService, "no service is running" + inRuntimeDirectory());
    page.writeUndecoded(console, notes);
    return exit;
}

} // namespace

void addIpc(Verbs& verbs)
{
    const auto act = [](const Console& console, const IpcOptions& options) { return watch(console, options.watch, &ipc); };
    verbs.add("ipc", "Shows the services that are running, and what they have counted", &declareIpc, act);
}

} // namespace tarn::ctl
