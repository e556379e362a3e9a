#include "rates.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace tarn::simulator
{

namespace
{

// One modulation and coding scheme: data bits of a subcarrier and symbol, in twelfths, and the signal-to-noise ratio in dB that
// 20 MHz of it need. Bits and coding are those of IEEE 802.11-2020, 21.5, and 802.11ax, 27.5; the ratios follow the minimum
// sensitivities of 21.3.18.1 with a usual noise figure.
struct Scheme
{
    std::uint32_t twelfthBits;
    std::int32_t signalToNoise;
};

constexpr Scheme kSchemes[] = {{6, 3},   {12, 6},  {18, 9},  {24, 12}, {36, 15}, {48, 19},
                               {54, 20}, {60, 21}, {72, 26}, {80, 28}, {90, 31}, {100, 33}};

// OFDM without MCS (IEEE 802.11-2020, 17.3): Mbit/s and dB.
struct LegacyRate
{
    std::uint32_t rate;
    std::int32_t signalToNoise;
};

constexpr LegacyRate kOfdmRates[] = {{6, 3}, {9, 4}, {12, 6}, {18, 8}, {24, 11}, {36, 15}, {48, 19}, {54, 21}};
constexpr LegacyRate kDsssRates[] = {{1, 1}, {2, 2}, {5, 4}, {11, 7}}; // 5 is 5.5

template <std::size_t size>
LinkRate legacyRate(const LegacyRate (&rates)[size], std::int32_t signalToNoise)
{
    LinkRate result;
    result.rate = rates[0].rate;
    for (const LegacyRate& each : rates)
        if (signalToNoise >= each.signalToNoise)
            result.rate = each.rate;
    return result;
}

// A width's place in the tables: 20, 40, 80, 160 MHz.
std::uint32_t widthIndex(const LinkConditions& conditions)
{
    const std::uint32_t widest = conditions.mode == PhyMode::k11n ? 40 : 160;
    const std::uint32_t width = std::min(conditions.bandwidth, widest);
    std::uint32_t index = 0;
    while (index < 3 && 40u << index <= width)
        ++index;
    return index;
}

// Data subcarriers (802.11-2020, 19.3.6 and 21.3.7; 802.11ax, 27.3.10) by width.
constexpr std::uint32_t kSubcarriers[] = {52, 108, 234, 468};
constexpr std::uint32_t kSubcarriersAx[] = {234, 468, 980, 1960};

// The symbol's time in tenths of a microsecond, guard interval included.
std::uint32_t symbolTime(const LinkConditions& conditions)
{
    if (conditions.mode == PhyMode::k11ax)
        return conditions.hasShortGuardInterval ? 136 : 144;
    return conditions.hasShortGuardInterval ? 36 : 40;
}

} // namespace

const char* toString(PhyMode mode)
{
    return kPhyModeNames[static_cast<std::size_t>(mode)];
}

PhyMode phyModeOf(const std::string& name)
{
    const auto* const found = std::find(std::begin(kPhyModeNames), std::end(kPhyModeNames), name);
    if (found == std::end(kPhyModeNames))
        throw std::logic_error("no PHY mode " + name);
    return static_cast<PhyMode>(found - std::begin(kPhyModeNames));
}

bool isModeOf(Band band, PhyMode mode)
{
    switch (mode)
    {
    case PhyMode::k11b:
    case PhyMode::k11g:
        return band == Band::k2;
    case PhyMode::k11a:
    case PhyMode::k11ac:
        return band == Band::k5;
    case PhyMode::k11n:
        return band != Band::k6;
    case PhyMode::k11ax:
        break;
    }
    return true;
}

PhyMode commonMode(Band band, PhyMode one, PhyMode other)
{
    auto mode = std::min(one, other);
    while (mode != PhyMode::k11b && !isModeOf(band, mode))
        mode = static_cast<PhyMode>(static_cast<std::uint32_t>(mode) - 1);
    return mode;
}

LinkRate rateOf(const LinkConditions& conditions)
{
    if (conditions.mode == PhyMode::k11b)
        return legacyRate(kDsssRates, conditions.signalToNoise);
    if (conditions.mode < PhyMode::k11n)
        return legacyRate(kOfdmRates, conditions.signalToNoise);

    const std::uint32_t width = widthIndex(conditions);
    const std::int32_t widthLoss = static_cast<std::int32_t>(width) * 3; // the noise of twice the width is 3 dB more
    constexpr std::uint32_t kHighestMcs[] = {0, 0, 0, 7, 9, 11};         // of the modes, in their order
    const std::uint32_t modesHighest = kHighestMcs[static_cast<std::size_t>(conditions.mode)];
    LinkRate result;
    for (std::uint32_t mcs = 0; mcs <= std::min(modesHighest, conditions.highestMcs); ++mcs)
        if (conditions.signalToNoise - widthLoss >= kSchemes[mcs].signalToNoise)
            result.mcs = mcs;
    const std::uint32_t subcarriers = conditions.mode == PhyMode::k11ax ? kSubcarriersAx[width] : kSubcarriers[width];
    result.rate = subcarriers * kSchemes[result.mcs].twelfthBits * conditions.streams * 10 / (12 * symbolTime(conditions));
    return result;
}

} // namespace tarn::simulator
