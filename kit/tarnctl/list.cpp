#include "list.h"

#include "base/join.h"
#include "base/letter_case.h"
#include "base/suggestions.h"
#include "catalogue.h"
#include "usage_error.h"
#include "values.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

// A service or group that does not exist is a slip, and not a search without a result.
void checkKnown(const char* option, const std::string& wanted, std::string Function::*member)
{
    std::vector<std::string> known;
    for (const Function& function : catalogue())
    {
        const std::string& each = function.*member;
        if (wanted.empty() || base::lowerCase(each) == base::lowerCase(wanted))
            return;
        if (!each.empty() && std::find(known.begin(), known.end(), each) == known.end())
            known.push_back(each);
    }
    throw UsageError(std::string(option) + ": expected one of " + base::join(known, ", ", base::inQuotes) + "; got " +
                         inQuotes(wanted),
                     base::suggestions(wanted, known));
}

bool isSelected(const Function& function, const Selection& selection)
{
    const std::string text = base::lowerCase(function.name + '\n' + function.group + '\n' + function.description);
    return (selection.service.empty() || base::lowerCase(function.service) == base::lowerCase(selection.service)) &&
           (selection.group.empty() || base::lowerCase(function.group) == base::lowerCase(selection.group)) &&
           text.find(base::lowerCase(selection.text)) != std::string::npos;
}

std::string commandText(const Function& function)
{
    return function.kind == Kind::kCommand ? std::to_string(function.row.command->command) : "-";
}

Json functionDocument(const Function& function)
{
    const bool isCommand = function.kind == Kind::kCommand;
    return {{"name", function.name},
            {"service", function.service.empty() ? Json(nullptr) : Json(function.service)},
            {"command", isCommand ? Json(function.row.command->command) : Json(nullptr)},
            {"group", function.group},
            {"description", function.description}};
}

} // namespace

ExitCode list(const Console& console, const Selection& selection)
{
    checkKnown("--service", selection.service, &Function::service);
    checkKnown("--group", selection.group, &Function::group);

    Json functions = Json::array();
    Table table;
    for (const Function& function : catalogue())
    {
        if (!isSelected(function, selection))
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

} // namespace tarn::ctl
