// `tarnctl list`: which functions there are.
#include "base/join.h"
#include "base/letter_case.h"
#include "base/suggestions.h"
#include "tarnctl/catalogue.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

// What is not given selects everything.
struct ListOptions
{
    std::optional<std::string> service;
    std::optional<std::string> group;
    std::optional<std::string> text; // in the name, group or description, in letters of either case
};

void declareList(Syntax& syntax, ListOptions& options)
{
    syntax.text("--service", options.service, "Only those of a service: TARN, QTN_RPC_PROXY, QTN_MIRROR", "SERVICE");
    syntax.text("--group", options.group, "Only those of a group");
    syntax.text("TEXT", options.text, "Only those with this text in name, group or description");
    syntax.footer("Columns: service, command, group, function, description.");
}

// A service or group that does not exist is a usage error, and not a search without a result.
void checkKnown(const char* option, const std::optional<std::string>& wanted, std::string LibraryFunction::*member)
{
    if (!wanted)
        return;
    std::vector<std::string> known;
    for (const LibraryFunction& function : catalogue())
    {
        const std::string& name = function.*member;
        if (base::lowerCase(name) == base::lowerCase(*wanted))
            return;
        if (!name.empty() && std::find(known.begin(), known.end(), name) == known.end())
            known.push_back(name);
    }
    throw UsageError(std::string(option) + ": expected one of " + base::join(known, ", ", inQuotes) + "; got " +
                         inQuotes(*wanted),
                     base::suggestions(*wanted, known));
}

bool isSelected(const LibraryFunction& function, const ListOptions& options)
{
    const std::string text = base::lowerCase(function.name + '\n' + function.group + '\n' + function.description);
    return (!options.service || base::lowerCase(function.service) == base::lowerCase(*options.service)) &&
           (!options.group || base::lowerCase(function.group) == base::lowerCase(*options.group)) &&
           text.find(base::lowerCase(options.text.value_or(""))) != std::string::npos;
}

std::string commandText(const LibraryFunction& function)
{
    return function.kind == FunctionKind::kCommand ? std::to_string(function.row.command->command) : "-";
}

Json entryDocument(const LibraryFunction& function)
{
    const bool isCommand = function.kind == FunctionKind::kCommand;
    return {{"name", function.name},
            {"service", function.service.empty() ? Json(nullptr) : Json(function.service)},
            {"command", isCommand ? Json(function.row.command->command) : Json(nullptr)},
            {"group", function.group},
            {"description", function.description}};
}

ExitCode listFunctions(const Console& console, const ListOptions& options)
{
    checkKnown("--service", options.service, &LibraryFunction::service);
    checkKnown("--group", options.group, &LibraryFunction::group);

    Json functions = Json::array();
    Table table;
    for (const LibraryFunction& function : catalogue())
    {
        if (!isSelected(function, options))
            continue;
        functions.push_back(entryDocument(function));
        table.add({function.service.empty() ? "-" : function.service, commandText(function), function.group, function.name,
                   function.description});
    }

    if (functions.empty())
        return console.fail(ExitCode::kOther, "no function matches; tarnctl list without arguments shows them all");
    if (!console.json)
    {
        table.write(console.out);
        return ExitCode::kSuccess;
    }
    Json document = Console::document("list");
    document["functions"] = std::move(functions);
    console.write(document);
    return ExitCode::kSuccess;
}

} // namespace

void addList(Verbs& verbs)
{
    verbs.add("list", "Lists the functions of the library", &declareList, &listFunctions);
}

} // namespace tarn::ctl
