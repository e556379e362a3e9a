#include "arguments.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "field_arguments.h"
#include "usage_error.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <set>

namespace tarn::ctl
{

namespace
{

std::vector<std::string> parameterNames(const LibraryFunction& function)
{
    std::vector<std::string> names;
    names.reserve(function.parameters.size());
    for (const FunctionParameter& parameter : function.parameters)
        names.push_back(parameter.name);
    return names;
}

void checkNames(const LibraryFunction& function, const std::vector<Assignment>& assignments)
{
    const std::vector<std::string> names = parameterNames(function);
    std::set<std::string> given;
    for (const Assignment& assignment : assignments)
    {
        if (function.parameter(argumentOf(assignment.name)) == nullptr)
            throw UsageError(function.name + " has no argument " + inQuotes(argumentOf(assignment.name)) + "; " +
                                 (names.empty() ? "it has none" : "it has " + base::join(names)),
                             base::suggestions(argumentOf(assignment.name), names));
        if (!given.insert(assignment.name).second)
            throw UsageError(assignment.name + ": given twice; expected once");
    }
}

// The functions call the argument that names an interface one way or the other; both are understood.
std::vector<Assignment> withOwnNames(const LibraryFunction& function, std::vector<Assignment> assignments)
{
    constexpr char kOneName[] = "ifname";
    constexpr char kOtherName[] = "intf_name";
    for (Assignment& assignment : assignments)
        for (const auto& [given, own] : {std::pair(kOneName, kOtherName), std::pair(kOtherName, kOneName)})
            if (assignment.name == given && function.parameter(given) == nullptr && function.parameter(own) != nullptr)
            {
                assignment.name = own;
                break;
            }
    return assignments;
}

bool asksForNull(const Assignment& given)
{
    return !given.isLiteral && given.value == kNullWord;
}

// A null pointer where that is a call, or a refusal to make one that would crash.
void setNull(PreparedArgument& argument)
{
    const FunctionParameter& parameter = *argument.parameter;
    if (parameter.null == Null::kImpossible)
        throw UsageError(parameter.name + ": null is for pointers, and this is passed by value; expected " +
                         expectedValue(parameter));
    if (parameter.null == Null::kUnguarded)
        throw UsageError(parameter.name + ": the library uses this pointer unchecked, so null cannot be passed; expected " +
                         (parameter.isInput ? expectedValue(parameter) : "that it is left out"));
    argument.isNull = true;
}

// Names of values begin as names do; all else is a number, or is refused as one.
void setNumber(const LibraryFunction& function, PreparedArgument& argument, const std::string& text)
{
    const FunctionParameter& parameter = *argument.parameter;
    const bool mayBeName = !text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0;
    if (mayBeName && setNumberByName(function, argument, text))
        return;
    argument.number = parseNumber(parameter.name, text, parameter.width);
    if (parameter.saysSize && argument.number > kLargestBufferSize)
        throw UsageError(parameter.name + ": expected a size of at most " + std::to_string(kLargestBufferSize) +
                         " bytes; got " + text);
}

void setText(PreparedArgument& argument, const std::string& text, std::vector<std::string>& notes)
{
    const FunctionParameter& parameter = *argument.parameter;
    const bool isCutByLibrary = parameter.wire != nullptr && parameter.wire->encoding == contract::Encoding::kText;
    const bool needsNul = parameter.wire == nullptr;
    const std::size_t most = parameter.size - (needsNul ? 1 : 0);
    if (isCutByLibrary && text.size() > parameter.size - 1)
        notes.push_back(parameter.name + " is cut to " + std::to_string(parameter.size - 1) + " characters; it has " +
                        std::to_string(text.size()));
    else if (!isCutByLibrary && text.size() > most)
        throw UsageError(parameter.name + ": expected a text of at most " + std::to_string(most) + " bytes; got " +
                         std::to_string(text.size()) + " bytes");

    argument.buffer.assign(text.begin(), text.end());
    argument.buffer.resize(isCutByLibrary ? text.size() + 1 : parameter.size);
    argument.length = text.size();
}

void setInput(const LibraryFunction& function, PreparedArgument& argument, const Assignment& given,
              std::vector<std::string>& notes)
{
    const FunctionParameter& parameter = *argument.parameter;
    if (given.isLiteral && parameter.form != Form::kText)
        throw UsageError(parameter.name + ": --text is for texts; expected " + expectedValue(parameter));
    if (asksForNull(given))
        return setNull(argument);

    switch (parameter.form)
    {
    case Form::kNumber:
        return setNumber(function, argument, given.value);
    case Form::kText:
        return setText(argument, given.value, notes);
    case Form::kBytes:
    case Form::kRecord:
        argument.buffer = parseBytes(parameter.name, given.value, parameter.size);
        argument.length = argument.buffer.size();
        return;
    case Form::kAddress:
        throw UsageError(parameter.name + ": expected null, or that it is left out; got " + inQuotes(given.value));
    }
}

void leaveOut(PreparedArgument& argument)
{
    const FunctionParameter& parameter = *argument.parameter;
    if (parameter.saysSize)
        argument.number = kUsualBufferSize;
    else if (parameter.form == Form::kAddress)
        argument.buffer.resize(1);
    else if (parameter.isInput && parameter.null == Null::kAllowed)
        argument.isNull = true;
    else if (parameter.isInput)
        throw UsageError(parameter.name + " is missing; expected " + expectedValue(parameter));
}

// Room for an output. Its size may depend on an argument after it, so this comes last.
void makeRoom(PreparedArgument& argument, const std::vector<PreparedArgument>& all)
{
    const FunctionParameter& parameter = *argument.parameter;
    argument.length = parameter.size;
    for (const PreparedArgument& other : all)
        if (!parameter.sizeArgument.empty() && other.parameter->name == parameter.sizeArgument)
            argument.length = other.number;
    argument.buffer.resize(std::max<std::size_t>(argument.length, 1)); // never a null pointer
}

// Over the bytes that are given as a whole, or over zeros.
void setFieldsOver(const LibraryFunction& function, PreparedArgument& argument, const std::vector<Assignment>& fields,
                   const Assignment* whole, std::vector<std::string>& notes)
{
    const FunctionParameter& parameter = *argument.parameter;
    if (whole != nullptr && asksForNull(*whole))
        throw UsageError(fields.front().name + ": expected no fields, as " + parameter.name + " is null");
    if (whole != nullptr)
        setInput(function, argument, *whole, notes);
    argument.buffer.resize(parameter.size);
    argument.length = parameter.size;
    setFields(function, argument, fields);
    if (whole == nullptr && !isSelected(function, parameter))
        notes.push_back(parameter.name + " is taken as a whole; fields that are not given are sent as zero");
}

PreparedArgument preparedArgument(const LibraryFunction& function, const FunctionParameter& parameter,
                                  const std::vector<Assignment>& assignments,
                                  const std::map<std::string, std::uint32_t>& selected, std::vector<std::string>& notes)
{
    PreparedArgument argument;
    argument.parameter = &parameter;
    const auto isIt = [&](const Assignment& assignment) { return assignment.name == parameter.name; };
    const auto given = std::find_if(assignments.begin(), assignments.end(), isIt);
    const Assignment* const whole = given == assignments.end() ? nullptr : &*given;
    const auto selection = selected.find(parameter.name);
    if (const std::vector<Assignment> fields = fieldsGiven(parameter, assignments); !fields.empty())
        setFieldsOver(function, argument, fields, whole, notes);
    else if (whole == nullptr && selection != selected.end())
        argument.number = selection->second;
    else if (whole == nullptr)
        leaveOut(argument);
    else if (parameter.isInput)
        setInput(function, argument, *whole, notes);
    else if (asksForNull(*whole))
        setNull(argument);
    else
        throw UsageError(parameter.name + " is an output; expected that it is left out, or null; got " +
                         inQuotes(whole->value));
    return argument;
}

} // namespace

Assignment assignment(const std::string& text, bool isLiteral)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("expected argument=value; got " + inQuotes(text));
    return {text.substr(0, equals), text.substr(equals + 1), isLiteral};
}

Bytes PreparedArgument::content() const
{
    return Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
}

std::vector<std::int64_t> PreparedArgument::numbers() const
{
    std::vector<std::int64_t> numbers;
    for (std::size_t offset = 0; offset < length; offset += parameter->width)
    {
        std::uint32_t word = buffer.at(offset);
        if (parameter->width == sizeof word)
            std::memcpy(&word, &buffer.at(offset), sizeof word);
        numbers.push_back(parameter->isSigned ? std::int64_t{static_cast<std::int32_t>(word)} : word);
    }
    return numbers;
}

std::vector<calling::ArgumentValue> PreparedArguments::values()
{
    std::vector<calling::ArgumentValue> values;
    values.reserve(all.size());
    for (PreparedArgument& argument : all)
        values.push_back({argument.number, argument.isNull || argument.buffer.empty() ? nullptr : argument.buffer.data()});
    return values;
}

PreparedArguments prepare(const LibraryFunction& function, const std::vector<Assignment>& given)
{
    const std::vector<Assignment> assignments = withOwnNames(function, given);
    checkNames(function, assignments);

    PreparedArguments arguments;
    const std::map<std::string, std::uint32_t> selected = selections(function, assignments);
    for (const FunctionParameter& parameter : function.parameters)
        arguments.all.push_back(preparedArgument(function, parameter, assignments, selected, arguments.notes));
    for (PreparedArgument& argument : arguments.all)
        if (argument.parameter->isOutput && !argument.parameter->isInput && !argument.isNull)
            makeRoom(argument, arguments.all);
    return arguments;
}

std::string expectedValue(const FunctionParameter& parameter)
{
    const std::string size = std::to_string(parameter.size);
    switch (parameter.form)
    {
    case Form::kNumber:
        return "a number of " + std::to_string(8 * parameter.width) + " bits, decimal or 0x...";
    case Form::kText:
        return "a text";
    case Form::kBytes:
        return parameter.size == kMacAddressSize ? "a MAC address" : size + " bytes as hexadecimal digits, @file or zero";
    case Form::kRecord:
        return "the " + size + " bytes of a " + parameter.record + " as hexadecimal digits, @file or zero";
    case Form::kAddress:
        return "null, or that it is left out";
    }
    return "";
}

} // namespace tarn::ctl
