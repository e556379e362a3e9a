#include "verbs.h"

#include "call.h"
#include "call_output.h"
#include "usage_error.h"
#include "values.h"

#include <array>

namespace tarn::ctl
{

namespace
{

// A gateway has a handful; a service that claims more is out of its mind.
constexpr std::uint32_t kMostRadios = 64;

bool isDone(const Report& report)
{
    return report.outcome == Outcome::kDone;
}

ExitCode failed(const Console& console, const Report& report)
{
    writeReport(console, report);
    return exitCodeOf(report.outcome);
}

std::uint32_t outputNumber(const Report& report, const char* output)
{
    return numberOf(report.argument(output));
}

std::string outputText(const Report& report, const char* output)
{
    return textOf(report.argument(output).content());
}

std::string switchText(const std::string& state)
{
    if (state != "on" && state != "off")
        throw UsageError("expected on or off; got " + inQuotes(state));
    return state == "on" ? "1" : "0";
}

// A line "title: value" for each, or a document of that kind.
struct Fact
{
    const char* key;
    std::string title;
    Json value;
};

ExitCode write(const Console& console, const char* kind, const std::vector<Fact>& facts)
{
    Json document = Console::document(kind);
    for (const Fact& fact : facts)
    {
        document[fact.key] = fact.value;
        if (!console.json)
            console.out << fact.title << ": " << (fact.value.is_string() ? fact.value.get<std::string>() : fact.value.dump())
                        << '\n';
    }
    if (console.json)
        console.write(document);
    return ExitCode::kSuccess;
}

// --- Radios -----------------------------------------------------------------------------------------------------------------

struct RadioQuery
{
    const char* key;
    const char* title;
    const char* function;
    const char* output;
};

constexpr std::array<RadioQuery, 5> kRadioQueries = {{
    {"ready", "ready", "TarnGetRadioIsReady", "isReady"},
    {"chains", "chains", "TarnGetRadioChainNumber", "number"},
    {"power_level", "power level", "TarnGetRadioCurrentTransmitPowerLevel", "power"},
    {"temperature", "temperature", "TarnGetRadioChipTemperature", "temperature"},
    {"driver", "driver", "TarnGetRadioDriverVersion", "version"},
}};

Json answerOf(const Report& report, const char* output)
{
    const Argument& argument = report.argument(output);
    if (argument.parameter->form == Form::kText)
        return textOf(argument.content());
    return numberOf(argument);
}

// What the radios of a gateway have in common is that each answers every query, or says with a status why not.
struct RadioList
{
    Table table;
    Json documents = Json::array();
    std::vector<std::string> refusals;
};

// The call that failed on its way, if one did.
std::optional<Report> addRadio(RadioList& list, std::uint32_t id)
{
    std::vector<std::string> cells = {std::to_string(id)};
    Json document = {{"id", id}};
    for (const RadioQuery& query : kRadioQueries)
    {
        Report report = perform(query.function, {"radioId=" + std::to_string(id)});
        if (!report.hasReply())
            return report;
        const Json answer = isDone(report) ? answerOf(report, query.output) : Json(nullptr);
        if (!isDone(report))
            list.refusals.push_back("radio " + std::to_string(id) + ": " + failureText(report));
        document[query.key] = answer;
        cells.push_back(answer.is_null() ? "-" : answer.is_string() ? inQuotes(answer.get<std::string>()) : answer.dump());
    }
    list.table.add(std::move(cells));
    list.documents.push_back(std::move(document));
    return std::nullopt;
}

} // namespace

ExitCode radios(const Console& console)
{
    const Report count = perform("TarnGetRadioNum");
    if (!isDone(count))
        return failed(console, count);
    const std::uint32_t number = outputNumber(count, "number");
    if (number > kMostRadios)
        return console.fail(ExitCode::kOther, "the service claims " + std::to_string(number) + " radios; expected at most " +
                                                  std::to_string(kMostRadios));

    RadioList list;
    std::vector<std::string> titles = {"radio"};
    for (const RadioQuery& query : kRadioQueries)
        titles.push_back(query.title);
    list.table.add(std::move(titles));
    for (std::uint32_t id = 1; id <= number; ++id)
        if (const std::optional<Report> failure = addRadio(list, id))
            return failed(console, *failure);

    if (console.json)
    {
        Json document = Console::document("radios");
        document["radios"] = list.documents;
        document["notes"] = list.refusals;
        console.write(document);
    }
    else
        list.table.write(console.out);
    for (const std::string& refusal : list.refusals)
        console.remark(refusal);
    return list.refusals.empty() ? ExitCode::kSuccess : ExitCode::kServiceStatus;
}

ExitCode logLevel(const Console& console, const std::optional<std::string>& level)
{
    const Report report = level ? perform("TarnSetLogLevel", {"level=" + *level}) : perform("TarnGetLogLevel");
    if (!isDone(report))
        return failed(console, report);
    const std::uint32_t number = level ? report.argument("level").number : outputNumber(report, "level");
    return write(console, "log-level", {{"level", "log level", number}});
}

ExitCode firmware(const Console& console)
{
    const Report report = perform("tarn_qcsapi_firmware_get_version");
    if (!isDone(report))
        return failed(console, report);
    return write(console, "firmware", {{"version", "firmware", outputText(report, "firmware_version")}});
}

ExitCode mirror(const Console& console, const std::optional<std::string>& state)
{
    if (state)
    {
        const Report report = perform("tarn_qtn_mirror_set_mirror_enable", {"enable=" + switchText(*state)});
        if (!isDone(report))
            return failed(console, report);
    }
    const Report report = perform("tarn_qtn_mirror_get_mirror_status");
    if (!isDone(report))
        return failed(console, report);
    return write(console, "mirror", {{"status", "mirror status", outputNumber(report, "status")}});
}

ExitCode telnet(const Console& console, const std::optional<std::string>& state, const std::optional<std::string>& processId)
{
    if (state.has_value() != processId.has_value())
        throw UsageError("telnet: expected a state and --pid, the process on whose behalf it is switched, or neither");
    if (state)
    {
        const Report report =
            perform("tarn_qtn_mirror_set_telnet_enable", {"enable=" + switchText(*state), "pid=" + *processId});
        if (!isDone(report))
            return failed(console, report);
    }
    const Report report = perform("tarn_qtn_mirror_get_telnet_status");
    if (!isDone(report))
        return failed(console, report);
    return write(console, "telnet",
                 {{"status", "telnet status", outputNumber(report, "status")},
                  {"references", "references", outputNumber(report, "ref_cnt")}});
}

} // namespace tarn::ctl
