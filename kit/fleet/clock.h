/* Time since any one moment, in milliseconds. It never goes back and knows no date, as gateways do not at boot. */
#pragma once

#include <cstdint>
#include <ctime>

namespace tarn::fleet
{

inline std::uint64_t monotonicMilliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
}

} // namespace tarn::fleet
