#include "rate.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace tarn::ctl
{

double growth(std::int64_t before, std::int64_t after, std::uint32_t size)
{
    constexpr std::uint32_t kBitsOfAByte = 8;
    const auto difference = static_cast<std::uint64_t>(after) - static_cast<std::uint64_t>(before);
    const std::uint32_t bits = size * kBitsOfAByte;
    const std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
    return static_cast<double>(bits == 0 || bits >= 64 ? difference : difference & (all >> (64 - bits)));
}

std::string shortened(double number, const std::string& unit)
{
    constexpr double kThousand = 1000;
    constexpr std::array<const char*, 4> kPrefixes = {"", "k", "M", "G"};
    std::size_t prefix = 0;
    for (; number >= kThousand && prefix + 1 < kPrefixes.size(); ++prefix)
        number /= kThousand;
    std::array<char, 32> digits = {};
    std::snprintf(digits.data(), digits.size(), prefix == 0 && number == std::floor(number) ? "%.0f" : "%.1f", number);
    return std::string(digits.data()) + " " + kPrefixes.at(prefix) + unit;
}

} // namespace tarn::ctl
