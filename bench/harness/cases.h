// Calls that stay in one process: they are timed, and what they take of instructions and allocations is counted.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench
{

// Makes one call. `record` is the caller's: where a read leaves what it got, or a write takes it from; at least kRecordSize
// bytes, at an address that is a multiple of 4.
using Call = std::uint32_t (*)(void* record);

constexpr std::size_t kRecordSize = 9600;

struct Case
{
    std::string name; // what/length
    Call call;
};

// Times the cases as the options of Google Benchmark say. With the one option --count, the cases are called instead: a line for
// each says its name and how often one call allocated memory, and callgrind, if it watches, writes a call's instructions to a
// file for each.
int runCases(int argc, char** argv, const std::vector<Case>& cases);

} // namespace bench
