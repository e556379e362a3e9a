// What counters tell over a time.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::ctl
{

// How much a counter of so many bytes has grown; it begins again at 0 when these are full. 0 bytes: nobody knows how many.
double growth(std::int64_t before, std::int64_t after, std::uint32_t size);

// "1.2 M" and the unit.
std::string shortened(double number, const std::string& unit);

} // namespace tarn::ctl
