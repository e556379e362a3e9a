// `tarnctl radios`: the gateway's radios, one a line.
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <array>

namespace tarn::ctl
{

namespace
{

// A gateway has a handful; a larger number is a fault of the service, and not to be asked about one by one.
constexpr std::int64_t kMostRadios = 64;

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

// Every radio answers every query, or refuses it with a status.
struct RadioList
{
    Table table;
    Json documents = Json::array();
    std::vector<std::string> refusals;
};

Json answerOf(const Report& report, const char* output)
{
    if (report.outcome != CallOutcome::kDone)
        return nullptr;
    if (report.argument(output).parameter->form == Form::kText)
        return report.text(output);
    return report.number(output);
}

std::string cellOf(const Json& answer)
{
    if (answer.is_null())
        return "-";
    return answer.is_string() ? inQuotes(answer.get<std::string>()) : answer.dump();
}

void addRadio(RadioList& list, std::int64_t id)
{
    std::vector<std::string> cells = {std::to_string(id)};
    Json document = {{"id", id}};
    for (const RadioQuery& query : kRadioQueries)
    {
        const Report report = perform(query.function, {"radioId=" + std::to_string(id)});
        if (!report.hasReply())
            throw CallFailure(report);
        if (report.outcome != CallOutcome::kDone)
            list.refusals.push_back("radio " + std::to_string(id) + ": " + failureText(report));
        const Json answer = answerOf(report, query.output);
        document[query.key] = answer;
        cells.push_back(cellOf(answer));
    }
    list.table.add(std::move(cells));
    list.documents.push_back(std::move(document));
}

ExitCode radios(const Console& console)
{
    const std::int64_t number = performOrFail("TarnGetRadioNum").number("number");
    if (number > kMostRadios)
        return console.fail(ExitCode::kOther, "the service claims " + std::to_string(number) + " radios; expected at most " +
                                                  std::to_string(kMostRadios));

    RadioList list;
    std::vector<std::string> titles = {"radio"};
    for (const RadioQuery& query : kRadioQueries)
        titles.emplace_back(query.title);
    list.table.add(std::move(titles));
    for (std::int64_t id = 1; id <= number; ++id)
        addRadio(list, id);

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

} // namespace

void addRadios(Verbs& verbs)
{
    verbs.add("radios", "Shows the gateway's radios", &radios);
}

} // namespace tarn::ctl
