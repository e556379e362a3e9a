#include "sparkline.h"

#include <algorithm>
#include <array>

namespace tarn::ctl
{

std::string sparkline(const std::deque<std::int64_t>& numbers, std::int64_t low, std::int64_t high, bool hasUtf8)
{
    constexpr std::array<const char*, 8> kBlocks = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    constexpr std::array<const char*, 8> kAscii = {"_", ".", "-", "~", "=", "+", "*", "#"};
    const std::array<const char*, 8>& levels = hasUtf8 ? kBlocks : kAscii;
    std::string line;
    for (const std::int64_t number : numbers)
    {
        const std::int64_t inRange = std::clamp(number, low, high) - low;
        line += levels.at(static_cast<std::size_t>(inRange * static_cast<std::int64_t>(levels.size() - 1) / (high - low)));
    }
    return line;
}

} // namespace tarn::ctl
