#include "saving.h"

#include "base/join.h"
#include "base/suggestions.h"
#include "usage_error.h"
#include "values.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace tarn::ctl
{

namespace
{

bool canBeSaved(const FunctionParameter& parameter)
{
    const bool isWritten = parameter.wire == nullptr || parameter.wire->encoding != contract::Encoding::kNothing;
    return parameter.isOutput && isWritten && parameter.form != Form::kNumber;
}

std::vector<std::string> savableNames(const LibraryFunction& function)
{
    std::vector<std::string> names;
    for (const FunctionParameter& parameter : function.parameters)
        if (canBeSaved(parameter))
            names.push_back(parameter.name);
    return names;
}

Bytes savedBytes(const PreparedArgument& output)
{
    if (output.parameter->form != Form::kText)
        return output.content();
    const std::string text = textOf(output.content());
    return Bytes(text.begin(), text.end());
}

void saveOne(const PreparedArgument& output, const std::string& path)
{
    const Bytes bytes = savedBytes(output);
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
    file.close();
    if (!file)
        throw std::runtime_error("the call was made, but file " + path + " cannot be written: " + std::strerror(errno));
}

} // namespace

Saving savingOf(const LibraryFunction& function, const PreparedArguments& arguments, const std::string& text)
{
    const Assignment given = assignment(text, true);
    const std::vector<std::string> names = savableNames(function);
    const bool isKnown = std::find(names.begin(), names.end(), given.name) != names.end();
    if (!isKnown || given.value.empty())
    {
        const std::string expected = base::join(names, " or ", [](const std::string& name) { return name + "=FILE"; });
        throw UsageError("--save: expected " +
                             (expected.empty() ? "nothing, " + function.name + " has no output but numbers" : expected) +
                             "; got " + inQuotes(text),
                         base::suggestions(given.name, names));
    }
    for (const PreparedArgument& argument : arguments.all)
        if (argument.parameter->name == given.name && argument.isNull)
            throw UsageError("--save: " + given.name + " is left out of the call");
    return {given.name, given.value};
}

void save(const Report& report, const std::vector<Saving>& savings)
{
    for (const Saving& saving : savings)
        saveOne(report.argument(saving.argument), saving.path);
}

} // namespace tarn::ctl
