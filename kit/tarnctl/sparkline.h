// A row of numbers as a picture that is one character high.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

namespace tarn::ctl
{

// One character a number, from the lowest at `low` and below to the highest at `high` and above.
std::string sparkline(const std::deque<std::int64_t>& numbers, std::int64_t low, std::int64_t high, bool hasUtf8);

} // namespace tarn::ctl
