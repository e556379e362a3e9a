// `tarnctl ipc`: which services are running, and what they have counted. No function of the library, but a question to the IPC
// library of the workstation, which asks the services themselves.
#include "base/timestamp.h"
#include "kor_iil_service.h"
#include "tarn_frame.h"
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

constexpr std::uint32_t kWait = 3; // seconds

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

struct ServiceList
{
    Table table;
    Json documents = Json::array();
    std::vector<std::string> notes;
    ExitCode exit = ExitCode::kSuccess;
};

void addService(ServiceList& list, const std::string& name)
{
    KorIilServiceCounters counters = {};
    const std::uint32_t status = KorIilAskCounters(name.c_str(), kWait, &counters);
    if (status == KOR_IIL_UNKNOWN_DST_ID)
        return;
    if (status != KOR_IIL_OK)
    {
        list.notes.push_back("service " + name + " cannot be asked: " + tarnIpcStatusName(status) + " (IPC status " +
                             std::to_string(status) + ")");
        list.exit = exitCodeOf(outcomeOf(status));
        return;
    }
    std::vector<std::string> cells = {name, timeText(counters.openedAt)};
    Json document = {{"service", name}, {"since", cells.back()}};
    for (const CounterColumn& column : kCounterColumns)
    {
        document[column.key] = counters.*column.counter;
        cells.push_back(std::to_string(counters.*column.counter));
    }
    list.table.add(std::move(cells));
    list.documents.push_back(std::move(document));
}

ExitCode ipc(const Console& console)
{
    if (KorIilAskCounters == nullptr)
        return console.fail(ExitCode::kIpcFailed, "the platform's IPC library does not count");

    ServiceList list;
    std::vector<std::string> titles = {"service", "since"};
    for (const CounterColumn& column : kCounterColumns)
        titles.emplace_back(column.key);
    list.table.add(std::move(titles));
    for (const std::string& name : serviceNames(runtimeDirectory()))
        addService(list, name);
    if (list.documents.empty() && list.notes.empty())
        return console.fail(ExitCode::kNoService, "no service is running" + inRuntimeDirectory());

    if (console.json)
    {
        Json document = Console::document("ipc");
        document["services"] = list.documents;
        document["notes"] = list.notes;
        console.write(document);
    }
    else
        list.table.write(console.out);
    for (const std::string& note : list.notes)
        console.remark(note);
    return list.exit;
}

} // namespace

void addIpc(Verbs& verbs)
{
    verbs.add("ipc", "Shows the services that are running, and what they have counted", &ipc);
}

} // namespace tarn::ctl
