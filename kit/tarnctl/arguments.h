// The arguments of one call: from `name=value` on the command line to what the library is given.
#pragma once

#include "catalogue.h"
#include "values.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

// Default and greatest size of an output's buffer whose size is an argument of its own, in bytes.
inline constexpr std::uint32_t kUsualBufferSize = 1024;
inline constexpr std::uint32_t kLargestBufferSize = 1024 * 1024;

// A null pointer, unless the assignment is literal.
inline constexpr char kNullWord[] = "null";

struct Assignment
{
    std::string name;
    std::string value;
    bool isLiteral = false; // a text, even if it is "null"
};

// Splits at the first '='. Throws UsageError if there is none.
Assignment assignment(const std::string& text, bool isLiteral);

// One argument, with the memory that the library is given.
struct PreparedArgument
{
    const FunctionParameter* parameter = nullptr;
    bool isNull = false;
    std::uint32_t number = 0;
    Bytes buffer;           // at least what the library reads or writes
    std::size_t length = 0; // bytes of it that are content

    // The content, and the numbers that it consists of.
    Bytes content() const;
    std::vector<std::int64_t> numbers() const;
};

struct PreparedArguments
{
    std::vector<PreparedArgument> all; // in the order of the function's parameters
    std::vector<std::string> notes;    // remarks for the user, one line each

    // Valid as long as this object.
    std::vector<calling::ArgumentValue> values();
};

// The name of an interface may be given as ifname or intf_name. Throws UsageError for a name that is unknown, repeated, or an
// output's, for one that is missing, and for a value that does not fit.
PreparedArguments prepare(const LibraryFunction& function, const std::vector<Assignment>& given);

// What `describe`, and an error, say about how an input is written.
std::string expectedValue(const FunctionParameter& parameter);

} // namespace tarn::ctl
