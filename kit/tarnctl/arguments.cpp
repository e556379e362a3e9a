#include "arguments.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "usage_error.h"

#include <algorithm>

namespace tarn::ctl
{

namespace
{

constexpr char kNullWord[] = "null";

std::vector<std::string> parameterNames(const Function& function)
{
    std::vector<std::string> names;
    for (const Parameter& parameter : function.parameters)
        names.push_back(parameter.name);
    return names;
}

void checkNames(const Function& function, const std::vector<Assignment>& assignments)
{
    const std::vector<std::string> names = parameterNames(function);
    for (auto each = assignments.begin(); each != assignments.end(); ++each)
    {
        if (function.parameter(each->name) == nullptr)
            throw UsageError(function.name + " has no argument " + inQuotes(each->name) + "; " +
                                 (names.empty() ? "it has none" : "it has " + base::join(names)),
                             base::suggestions(each->name, names));
        const bool isRepeated =
            std::any_of(assignments.begin(), each, [&](const Assignment& earlier) { return earlier.name == each->name; });
        if (isRepeated)
            throw UsageError(each->name + ": given twice; expected once");
    }
}

bool asksForNull(const Assignment& given)
{
    return !given.isLiteral && given.value == kNullWord;
}

// A null pointer where that is a call, or a refusal to make one that would crash.
void setNull(Argument& argument)
{
    const Parameter& parameter = *argument.parameter;
    if (parameter.null == Null::kImpossible)
        throw UsageError(parameter.name + ": null is for pointers, and this is passed by value; expected " +
                         expectedValue(parameter));
    if (parameter.null == Null::kUnguarded)
        throw UsageError(parameter.name + ": the library uses this pointer unchecked, so null cannot be passed; expected " +
                         (parameter.isInput ? expectedValue(parameter) : "that it is left out"));
    argument.isNull = true;
}

void setNumber(Argument& argument, const std::string& text)
{
    const Parameter& parameter = *argument.parameter;
    argument.number = parseNumber(parameter.name, text, parameter.width);
    if (parameter.saysSize && argument.number > kLargestBufferSize)
        throw UsageError(parameter.name + ": expected a size of at most " + std::to_string(kLargestBufferSize) +
                         " bytes; got " + text);
}

void setText(Argument& argument, const std::string& text, std::vector<std::string>& notes)
{
    const Parameter& parameter = *argument.parameter;
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

void setInput(Argument& argument, const Assignment& given, std::vector<std::string>& notes)
{
    const Parameter& parameter = *argument.parameter;
    if (given.isLiteral && parameter.form != Form::kText)
        throw UsageError(parameter.name + ": --text is for texts; expected " + expectedValue(parameter));
    if (asksForNull(given))
        return setNull(argument);

    switch (parameter.form)
    {
    case Form::kNumber:
        return setNumber(argument, given.value);
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

void leaveOut(Argument& argument)
{
    const Parameter& parameter = *argument.parameter;
    if (parameter.saysSize)
        argument.number = kUsualBufferSize;
    else if (parameter.form == Form::kAddress)
        argument.buffer.resize(1);
    else if (parameter.isInput && parameter.null == Null::kAllowed)
        argument.isNull = true;
    else if (parameter.isInput)
        throw UsageError(parameter.name + " is missing; expected " + expectedValue(parameter));
}

// Room for an output. Its size may hang on an argument that stands behind it, so this comes last.
void makeRoom(Argument& argument, const std::vector<Argument>& all)
{
    const Parameter& parameter = *argument.parameter;
    argument.length = parameter.size;
    for (const Argument& other : all)
        if (!parameter.sizeArgument.empty() && other.parameter->name == parameter.sizeArgument)
            argument.length = other.number;
    argument.buffer.resize(std::max<std::size_t>(argument.length, 1)); // never a null pointer
}

} // namespace

Assignment assignment(const std::string& text, bool isLiteral)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("expected argument=value; got " + inQuotes(text));
    return {text.substr(0, equals), text.substr(equals + 1), isLiteral};
}

Bytes Argument::content() const
{
    return Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
}

std::vector<calling::ArgumentValue> Arguments::values()
{
    std::vector<calling::ArgumentValue> values;
    for (Argument& argument : all)
        values.push_back({argument.number, argument.isNull || argument.buffer.empty() ? nullptr : argument.buffer.data()});
    return values;
}

Arguments prepare(const Function& function, const std::vector<Assignment>& assignments)
{
    checkNames(function, assignments);

    Arguments arguments;
    for (const Parameter& parameter : function.parameters)
    {
        Argument argument;
        argument.parameter = &parameter;
        const auto given = std::find_if(assignments.begin(), assignments.end(),
                                        [&](const Assignment& each) { return each.name == parameter.name; });
        if (given == assignments.end())
            leaveOut(argument);
        else if (parameter.isInput)
            setInput(argument, *given, arguments.notes);
        else if (asksForNull(*given))
            setNull(argument);
        else
            throw UsageError(parameter.name + " is an output; expected that it is left out, or null; got " +
                             inQuotes(given->value));
        arguments.all.push_back(std::move(argument));
    }
    for (Argument& argument : arguments.all)
        if (argument.parameter->isOutput && !argument.parameter->isInput && !argument.isNull)
            makeRoom(argument, arguments.all);
    return arguments;
}

std::string expectedValue(const Parameter& parameter)
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
