// Where the library's sources define the exported functions. A trace must carry a line of the function that reports it.
#pragma once

#include <cstdint>
#include <string>

namespace conformance
{

struct FunctionLines
{
    std::uint32_t first; // the one with the function's name
    std::uint32_t last;  // its closing brace

    bool contain(std::uint32_t line) const
    {
        return first <= line && line <= last;
    }
};

// Throws std::runtime_error if no unit of the library defines the function.
const FunctionLines& linesOf(const std::string& function);

} // namespace conformance
