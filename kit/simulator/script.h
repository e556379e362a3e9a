// A script: orders, each with the time at which it is carried out.
//
//     # seconds since the start, and the order
//     60    radar 52
//     61.5  station move 02:00:00:00:01:01 95
#pragma once

#include "clock.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::simulator
{

struct ScriptLine
{
    Milliseconds at = 0;
    std::string order;
    std::string place; // "evening.txt:3"
};

// Sorted by time; what is at the same time stays in its order. Throws std::runtime_error for a line that does not begin with a
// time. Empty lines, and those that begin with #, are for people.
std::vector<ScriptLine> parseScript(std::string_view text, const std::string& fileName);

} // namespace tarn::simulator
