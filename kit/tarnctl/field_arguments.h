// Fields of records on the command line: argument.field=value.
#pragma once

#include "arguments.h"

#include <map>
#include <string>
#include <vector>

namespace tarn::ctl
{

// "cfg" of "cfg.channel", or the name itself.
std::string argumentOf(const std::string& name);

// The assignments to fields of one argument.
std::vector<Assignment> fieldsGiven(const FunctionParameter& parameter, const std::vector<Assignment>& assignments);

// All of these throw UsageError if there is no layout.

// Sets the fields in the argument's bytes, which are there in full. Throws UsageError if the layout has no such field, or if
// the value does not fit.
void setFields(const LibraryFunction& function, PreparedArgument& argument, const std::vector<Assignment>& fields);

// The arguments that select the given fields, as far as the layout says so, each with the bits of these fields.
std::map<std::string, std::uint32_t> selections(const LibraryFunction& function, const std::vector<Assignment>& assignments);

// Whether another argument selects the fields of this one.
bool isSelected(const LibraryFunction& function, const FunctionParameter& parameter);

// A number by one of its names; false if the layout has none for this argument. Throws UsageError for another name.
bool setNumberByName(const LibraryFunction& function, PreparedArgument& argument, const std::string& text);

} // namespace tarn::ctl
