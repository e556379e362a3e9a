// `tarnctl describe`: what one function takes, sends, checks and gives back.
#include "tarnctl/arguments.h"
#include "tarnctl/catalogue.h"
#include "tarnctl/message_fields.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

struct DescribeOptions
{
    std::string name;
};

void declareDescribe(Syntax& syntax, DescribeOptions& options)
{
    syntax.text("NAME", options.name, "The function's name");
}

std::string typeOf(const FunctionParameter& parameter)
{
    switch (parameter.form)
    {
    case Form::kNumber:
        return "u" + std::to_string(8 * parameter.width);
    case Form::kText:
        return "text";
    case Form::kBytes:
        return "bytes";
    case Form::kRecord:
        return parameter.record;
    case Form::kAddress:
        break;
    }
    return "address";
}

const char* directionOf(const FunctionParameter& parameter)
{
    if (parameter.isInput && parameter.isOutput)
        return "in, out";
    return parameter.isInput ? "in" : "out";
}

const char* nullText(Null null)
{
    switch (null)
    {
    case Null::kRefused:
        return "refused";
    case Null::kAllowed:
        return "allowed";
    case Null::kUnguarded:
        return "unchecked";
    case Null::kImpossible:
        break;
    }
    return "no pointer";
}

std::string sizeText(const FunctionParameter& parameter)
{
    if (!parameter.sizeArgument.empty())
        return "see " + parameter.sizeArgument;
    if (parameter.size != 0)
        return std::to_string(parameter.size);
    return parameter.form == Form::kNumber ? std::to_string(parameter.width) : "-";
}

std::string conditionText(const contract::Check& check)
{
    return check.argument + " is " + (check.when == contract::When::kZero ? "0" : contract::toString(check.when));
}

struct CheckLine
{
    std::string condition;
    std::string message;
};

// In the order in which they are made.
std::vector<CheckLine> checksOf(const LibraryFunction& function)
{
    std::vector<CheckLine> checks;
    if (function.kind == FunctionKind::kLocal)
        return checks;
    checks.push_back({"the caller id is null", "handle is NULL"});
    const char* const invalid = "the caller id is not 1 to 31 characters, the first of them printable ASCII";
    checks.push_back({invalid, function.kind == FunctionKind::kEvent ? "id is invalid" : function.row.contract->invalidCaller});
    if (function.kind == FunctionKind::kEvent)
        checks.push_back({"evt is not 1 to 5", "evt is invalid"});
    else
        for (const contract::Check& check : function.row.command->checks)
            checks.push_back({conditionText(check), check.message});
    return checks;
}

// --- For a person -----------------------------------------------------------------------------------------------------------

void writeHead(const Console& console, const LibraryFunction& function)
{
    console.out << function.name << "\n  " << function.description << "\n\n";
    Table table;
    table.add({"group", function.group});
    if (function.kind != FunctionKind::kLocal)
        table.add({"service", function.service});
    if (function.kind == FunctionKind::kCommand)
    {
        const contract::Command& command = *function.row.command;
        const contract::Result& result = function.row.contract->result;
        table.add({"command", std::to_string(command.command)});
        table.add({"effect", std::string(contract::toString(command.effect)) +
                                 (command.effectReason.empty() ? "" : "; " + command.effectReason)});
        table.add({"wait", std::to_string(command.wait) + " s"});
        table.add({"length", std::to_string(command.length)});
        table.add({"reply status", "at offset " + std::to_string(command.statusOffset())});
        table.add({"result", "the reply status; " + std::to_string(result.rejected) + " for a refused argument, " +
                                 std::to_string(result.failed) + " for a failed IPC call, " + std::to_string(result.timedOut) +
                                 " for a time-out"});
    }
    if (!function.note.empty())
        table.add({"note", function.note});
    table.write(console.out);
}

void writeParameters(const Console& console, const LibraryFunction& function)
{
    console.out << (function.parameters.empty() ? "\nNo arguments.\n" : "\nArguments\n");
    Table table("  ");
    if (!function.parameters.empty())
        table.add({"name", "type", "direction", "size", "null", "content"});
    for (const FunctionParameter& parameter : function.parameters)
        table.add({parameter.name, typeOf(parameter), directionOf(parameter), sizeText(parameter), nullText(parameter.null),
                   parameter.content});
    table.write(console.out);
}

void writeChecks(const Console& console, const LibraryFunction& function)
{
    const std::vector<CheckLine> checks = checksOf(function);
    if (checks.empty())
        return;
    console.out << "\nChecks, in this order\n";
    Table table("  ");
    for (const CheckLine& check : checks)
        table.add({check.condition, inQuotes(check.message)});
    table.write(console.out);
}

std::string directionOf(const MessageField& field)
{
    if (field.role == FieldRole::kReserved)
        return "";
    return toString(field.role == FieldRole::kStatus ? FieldRole::kOutput : field.role);
}

std::string contentOf(const MessageField& field)
{
    if (field.role == FieldRole::kReserved)
        return "zero";
    return field.parameter == nullptr ? "the service's own result" : field.parameter->content;
}

void writeLayout(const Console& console, const LibraryFunction& function)
{
    if (function.kind != FunctionKind::kCommand)
        return;
    console.out << "\nMessage\n";
    Table table("  ");
    table.add({"offset", "size", "field", "direction", "content"});
    for (const MessageField& field : messageFields(function))
        table.add({std::to_string(field.offset), (field.isUpperBound ? "up to " : "") + std::to_string(field.size), field.name,
                   directionOf(field), contentOf(field)});
    table.write(console.out);
}

// --- For a program ----------------------------------------------------------------------------------------------------------

Json parameterDocument(const FunctionParameter& parameter)
{
    Json document = {{"name", parameter.name},       {"type", typeOf(parameter)},        {"input", parameter.isInput},
                     {"output", parameter.isOutput}, {"null", nullText(parameter.null)}, {"content", parameter.content}};
    if (!parameter.sizeArgument.empty())
        document["size_argument"] = parameter.sizeArgument;
    else if (parameter.form != Form::kAddress)
        document["size"] = parameter.size != 0 ? parameter.size : parameter.width;
    if (parameter.isSigned)
        document["signed"] = true;
    if (parameter.wire != nullptr)
        document["encoding"] = contract::toString(parameter.wire->encoding);
    return document;
}

Json fieldDocument(const MessageField& field)
{
    return {{"offset", field.offset}, {"size", field.size}, {"name", field.name}, {"role", toString(field.role)}};
}

Json functionDocument(const LibraryFunction& function)
{
    Json document = Console::document("describe");
    document["name"] = function.name;
    document["service"] = function.service.empty() ? Json(nullptr) : Json(function.service);
    document["group"] = function.group;
    document["description"] = function.description;
    document["note"] = function.note;
    document["arguments"] = Json::array();
    for (const FunctionParameter& parameter : function.parameters)
        document["arguments"].push_back(parameterDocument(parameter));
    document["checks"] = Json::array();
    for (const CheckLine& check : checksOf(function))
        document["checks"].push_back({{"when", check.condition}, {"message", check.message}});
    if (function.kind != FunctionKind::kCommand)
        return document;

    const contract::Command& command = *function.row.command;
    document["command"] = command.command;
    document["effect"] = contract::toString(command.effect);
    document["effect_reason"] = command.effectReason;
    document["wait"] = command.wait;
    document["length"] = command.length;
    document["status_offset"] = command.statusOffset();
    document["fields"] = Json::array();
    for (const MessageField& field : messageFields(function))
        document["fields"].push_back(fieldDocument(field));
    return document;
}

ExitCode describe(const Console& console, const DescribeOptions& options)
{
    const LibraryFunction& function = functionNamed(options.name);
    if (console.json)
    {
        console.write(functionDocument(function));
        return ExitCode::kSuccess;
    }
    writeHead(console, function);
    writeParameters(console, function);
    writeChecks(console, function);
    writeLayout(console, function);
    return ExitCode::kSuccess;
}

} // namespace

void addDescribe(Verbs& verbs)
{
    verbs.add("describe", "Shows what a function takes, checks, sends and gives back", &declareDescribe, &describe,
              &functionNames);
}

} // namespace tarn::ctl
