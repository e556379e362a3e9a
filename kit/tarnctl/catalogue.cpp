#include "catalogue.h"

#include "base/suggestions.h"
#include "local_functions.h"
#include "usage_error.h"
#include "values.h"

#include <algorithm>
#include <set>

namespace tarn::ctl
{

namespace
{

Form formOf(contract::Type type)
{
    switch (type)
    {
    case contract::Type::kText:
        return Form::kText;
    case contract::Type::kBytes:
        return Form::kBytes;
    case contract::Type::kRecord:
        return Form::kRecord;
    case contract::Type::kU32:
    case contract::Type::kU16:
    case contract::Type::kU8:
        break;
    }
    return Form::kNumber;
}

std::uint32_t widthOf(contract::Type type)
{
    if (type == contract::Type::kU8)
        return 1;
    return type == contract::Type::kU16 ? 2 : 4;
}

Null nullOf(const contract::Command& command, const contract::Argument& argument)
{
    if (!argument.isPointer())
        return Null::kImpossible;
    if (argument.optional)
        return Null::kAllowed;
    const bool isChecked = std::any_of(command.checks.begin(), command.checks.end(),
                                       [&](const contract::Check& check) { return check.argument == argument.name; });
    return isChecked ? Null::kRefused : Null::kUnguarded;
}

std::string contentOfNumber(const contract::Argument& argument)
{
    switch (argument.encoding)
    {
    case contract::Encoding::kId:
        return "counts from 1, sent less one";
    case contract::Encoding::kInverted:
        return "a flag, sent turned round: 1 for 0, else 0";
    case contract::Encoding::kByte:
        return "sent as a single byte";
    default:
        return widthOf(argument.type) == 4 ? "sent as it is" : "sent as a whole word";
    }
}

std::string contentOfOutput(const contract::Argument& argument)
{
    if (argument.encoding == contract::Encoding::kNothing)
        return "taken and checked, but never written";
    if (!argument.sizeArgument.empty())
        return argument.type == contract::Type::kText ? "cut to " + argument.sizeArgument + " less one characters"
                                                      : argument.sizeArgument + " bytes, zeros behind the message's end";
    if (argument.encoding == contract::Encoding::kText)
        return "at most " + std::to_string(argument.size - 1) + " characters";
    if (argument.encoding == contract::Encoding::kWords)
        return std::to_string(argument.size / 4) + " words";
    if (argument.isSigned)
        return "as the service wrote it, may be negative";
    if (argument.type == contract::Type::kBytes && argument.size == kMacAddressSize)
        return "a MAC address";
    if (argument.type == contract::Type::kText)
        return "as the service wrote it, terminated or not";
    return "as the service wrote it";
}

std::string contentOfInput(const contract::Argument& argument)
{
    if (argument.encoding == contract::Encoding::kText)
        return "cut to " + std::to_string(argument.size - 1) + " characters";
    if (argument.type == contract::Type::kText)
        return "sent as " + std::to_string(argument.size) + " bytes, NULs behind the text";
    if (argument.type == contract::Type::kBytes && argument.size == kMacAddressSize)
        return "a MAC address";
    return "sent as it is";
}

std::string contentOf(const contract::Command& command, const contract::Argument& argument)
{
    if (argument.encoding == contract::Encoding::kSize)
    {
        for (const contract::Argument& other : command.arguments)
            if (other.sizeArgument == argument.name)
                return "bytes of the buffer for " + other.name + ", not sent";
        return "not sent";
    }
    if (argument.direction == contract::Direction::kOut)
        return contentOfOutput(argument);
    return argument.isNumber() ? contentOfNumber(argument) : contentOfInput(argument);
}

FunctionParameter parameterOf(const contract::Command& command, const contract::Argument& argument)
{
    FunctionParameter parameter;
    parameter.name = argument.name;
    parameter.form = formOf(argument.type);
    parameter.isInput = argument.direction == contract::Direction::kIn;
    parameter.isOutput = argument.direction == contract::Direction::kOut;
    parameter.width = widthOf(argument.type);
    parameter.isSigned = argument.isSigned;
    parameter.size = argument.size;
    parameter.sizeArgument = argument.sizeArgument;
    parameter.saysSize = argument.encoding == contract::Encoding::kSize;
    parameter.record = argument.record;
    parameter.null = nullOf(command, argument);
    parameter.content = contentOf(command, argument);
    parameter.wire = &argument;
    return parameter;
}

LibraryFunction functionOf(const contract::Row& row)
{
    LibraryFunction function;
    function.kind = FunctionKind::kCommand;
    function.name = row.command->function;
    function.service = row.contract->service;
    function.group = row.command->group;
    function.description = row.command->description;
    function.note = row.command->note;
    function.row = row;
    for (const contract::Argument& argument : row.command->arguments)
        function.parameters.push_back(parameterOf(*row.command, argument));
    return function;
}

} // namespace

const FunctionParameter* LibraryFunction::parameter(std::string_view parameterName) const
{
    for (const FunctionParameter& parameter : parameters)
        if (parameter.name == parameterName)
            return &parameter;
    return nullptr;
}

const std::vector<LibraryFunction>& catalogue()
{
    static const std::vector<LibraryFunction> kEveryFunction = []
    {
        std::vector<LibraryFunction> functions;
        for (const contract::Row& row : contract::rows())
            functions.push_back(functionOf(row));
        for (LibraryFunction& function : localFunctions())
            functions.push_back(std::move(function));
        return functions;
    }();
    return kEveryFunction;
}

std::vector<std::string> functionNames()
{
    std::vector<std::string> names;
    for (const LibraryFunction& function : catalogue())
        names.push_back(function.name);
    return names;
}

std::vector<std::string> serviceNames()
{
    std::set<std::string> names;
    for (const LibraryFunction& function : catalogue())
        if (!function.service.empty())
            names.insert(function.service);
    return {names.begin(), names.end()};
}

const LibraryFunction& functionNamed(const std::string& name)
{
    for (const LibraryFunction& function : catalogue())
        if (function.name == name)
            return function;
    throw UsageError("there is no function " + inQuotes(name) + "; tarnctl list shows them all",
                     base::suggestions(name, functionNames()));
}

} // namespace tarn::ctl
