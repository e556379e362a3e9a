// The arguments of one call: from `name=value` on the command line to what the library is given.
#pragma once

#include "catalogue.h"
#include "values.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::ctl
{

// Size that a caller's buffer has unless its size argument says otherwise, and the most that one may say. Both in bytes.
inline constexpr std::uint32_t kUsualBufferSize = 1024;
inline constexpr std::uint32_t kLargestBufferSize = 1024 * 1024;

struct Assignment
{
    std::string name;
    std::string value;
    bool isLiteral = false; // a text as it stands, even if that is "null"
};

// Splits at the first '='. Throws UsageError if there is none.
Assignment assignment(const std::string& text, bool isLiteral);

// One argument, with the memory that the library is given.
struct Argument
{
    const Parameter* parameter = nullptr;
    bool isNull = false;
    std::uint32_t number = 0;
    Bytes buffer;           // at least what the library reads or writes
    std::size_t length = 0; // bytes of it that count

    // The bytes that count.
    Bytes content() const;
};

struct Arguments
{
    std::vector<Argument> all;      // in the order of the function's parameters
    std::vector<std::string> notes; // what a user should know about them, one line each

    // Valid as long as this object.
    std::vector<calling::ArgumentValue> values();
};

// Throws UsageError for a name that is unknown, repeated, or an output's, for one that is missing, and for a value that
// does not fit.
Arguments prepare(const Function& function, const std::vector<Assignment>& assignments);

// What `describe`, and an error, say about how an input is written.
std::string expectedValue(const Parameter& parameter);

} // namespace tarn::ctl
