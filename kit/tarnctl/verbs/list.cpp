// `tarnctl list`: which functions there are.
#include "base/join.h"
#include "base/letter_case.h"
#include "base/suggestions.h"
#include "tarnctl/catalogue.h"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

// Empty texts select everything.
struct ListOptions
{
    std::string service;
    std::string group;
    std::string text; // in the name, group or description, in letters of either case
};

void declare(CLI::App& verb, ListOptions& options)
{
    verb.add_option("--service", options.service, "Only those of a service: TARN, QTN_RPC_PROXY, QTN_MIRROR")
        ->type_name("SERVICE");
    verb.add_option("--group", options.group, "Only those of a group");
    verb.add_option("TEXT", options.text, "Only those with this text in name, group or description");
    verb.footer("Columns: service, command, group, function, description.");
}

// A service or group that does not exist is a usage error, and not a search without a result.
void checkKnown(const char* option, const std::string& wanted, std::string LibraryFunction::*member)
{
    std::vector<std::string> known;
    for (const LibraryFunction& function : catalogue())
    {
        const std::string& name = function.*member;
        if (wanted.empty() || base::lowerCase(name) == base::lowerCase(wanted))
            return;
        if (!name.empty() && std::find(known.begin(), known.end(), name) == known.end())
            known.push_back(name);
    }
    throw UsageError(std::string(option) + ": expected one of " + base::join(known, ", ", inQuotes) + "; got " +
                         inQuotes(wanted),
                     base::suggestions(wanted, known));
}

bool isSelected(const LibraryFunction& function, const ListOptions& options)
{
    const std::string text = base::lowerCase(function.name + '\n' + function.group + '\n' + function.description);
    return (options.service.empty() || base::lowerCase(function.service) == base::lowerCase(options.service)) &&
           (options.group.empty() || base::lowerCase(function.group) == base::lowerCase(options.group)) &&
           text.find(base::lowerCase(options.text)) != std::string::npos;
}

std::string commandText(const LibraryFunction& function)
{
    return function.kind == FunctionKind::kCommand ? std::to_string(function.row.command->command) : "-";
}

Json functionDocument(const LibraryFunction& function)
{
    const bool isCommand = function.kind == FunctionKind::kCommand;
    return {{"name", function.name},
            {"service", function.service.empty() ? Json(nullptr) : Json(function.service)},
            {"command", isCommand ? Json(function.row.command->command) : Json(nullptr)},
            {"group", function.group},
            {"description", function.description}};
}

ExitCode list(const Console& console, const ListOptions& options)
{
    checkKnown("--service", options.service, &LibraryFunction::service);
    checkKnown("--group", options.group, &LibraryFunction::group);

    Json functions = Json::array();
    Table table;
    for (const LibraryFunction& function : catalogue())
    {
        if (!isSelected(function, options))
            continue;
        functions.push_back(functionDocument(function));
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
    verbs.add("list", "Lists the functions of the library", &declare, &list);
}

} // namespace tarn::ctl
