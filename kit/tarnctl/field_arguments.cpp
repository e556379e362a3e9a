#include "field_arguments.h"

#include "base/join.h"
#include "fields.h"
#include "layout/encode.h"
#include "usage_error.h"

namespace tarn::ctl
{

namespace
{

// Throws UsageError if there is none.
const layout::Layout& layoutOf(const std::string& field)
{
    const LayoutInUse* const inUse = layoutInUse();
    if (inUse == nullptr)
        throw UsageError(field + ": there is no layout that says where this field is; " + kHowToGiveALayout);
    return inUse->layout;
}

std::string pathIn(const Assignment& given)
{
    return given.name.substr(argumentOf(given.name).size() + 1);
}

// Of one that may be the field of an array, "entries[0].name": "entries".
std::string fieldOf(const std::string& path)
{
    return path.substr(0, path.find('['));
}

} // namespace

std::string argumentOf(const std::string& name)
{
    return name.substr(0, name.find('.'));
}

std::vector<Assignment> fieldsGiven(const FunctionParameter& parameter, const std::vector<Assignment>& assignments)
{
    std::vector<Assignment> fields;
    for (const Assignment& given : assignments)
        if (given.name != parameter.name && argumentOf(given.name) == parameter.name)
            fields.push_back(given);
    return fields;
}

void setFields(const LibraryFunction& function, PreparedArgument& argument, const std::vector<Assignment>& fields)
{
    const FunctionParameter& parameter = *argument.parameter;
    const std::string first = fields.front().name;
    if (!parameter.isInput || (parameter.form != Form::kRecord && parameter.form != Form::kBytes))
        throw UsageError(first + ": " + parameter.name + " has no fields to set; expected " + expectedValue(parameter));
    const layout::Structure* const structure = structureOf(function, parameter);
    if (structure == nullptr)
        throw UsageError(first + ": the layout " + layoutOf(first).title() + " does not tell what is in it; expected " +
                         expectedValue(parameter));
    for (const Assignment& field : fields)
        try
        {
            layout::encode(*structure, pathIn(field), field.value, argument.buffer);
        }
        catch (const layout::EncodeError& error)
        {
            const std::string text = error.what();
            const bool isOfRecord = text.rfind(structure->name + " ", 0) == 0; // else it begins with the field's path
            throw UsageError(parameter.name + (isOfRecord ? ": " : ".") + text, error.suggestions);
        }
}

std::map<std::string, std::uint32_t> selections(const LibraryFunction& function, const std::vector<Assignment>& assignments)
{
    std::map<std::string, std::uint32_t> bits;
    for (const FunctionParameter& parameter : function.parameters)
        for (const Assignment& field : fieldsGiven(parameter, assignments))
        {
            const layout::Selection* const selection = layoutOf(field.name).selectionOf(function.name, parameter.name);
            if (selection == nullptr)
                continue;
            std::uint32_t& selected = bits[selection->argument];
            if (const std::optional<std::uint32_t> bit = selection->bit(fieldOf(pathIn(field))))
                selected |= 1u << *bit;
        }
    return bits;
}

bool isSelected(const LibraryFunction& function, const FunctionParameter& parameter)
{
    return layoutOf(parameter.name).selectionOf(function.name, parameter.name) != nullptr;
}

bool setNumberByName(const LibraryFunction& function, PreparedArgument& argument, const std::string& text)
{
    const FunctionParameter& parameter = *argument.parameter;
    const layout::Meaning* const meaning = meaningOf(function, parameter);
    if (meaning == nullptr || (meaning->values == nullptr && meaning->flags.empty()))
        return false;
    try
    {
        argument.number = static_cast<std::uint32_t>(layout::numberOf(parameter.name, *meaning, parameter.width, false, text));
        return true;
    }
    catch (const layout::EncodeError& error)
    {
        throw UsageError(error.what(), error.suggestions);
    }
}

} // namespace tarn::ctl
