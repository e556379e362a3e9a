// Outputs into files: what one call reads, another can be given with @file.
#pragma once

#include "call.h"

#include <string>
#include <vector>

namespace tarn::ctl
{

struct Saving
{
    std::string argument;
    std::string path;
};

// From "argument=file". Throws UsageError if there is no such output, it is a number, or it is left out of the call.
Saving savingOf(const LibraryFunction& function, const PreparedArguments& arguments, const std::string& text);

// Writes the outputs' bytes, of a text those before its NUL. Throws std::runtime_error if a file cannot be written.
// For a report that has a reply.
void save(const Report& report, const std::vector<Saving>& savings);

} // namespace tarn::ctl
