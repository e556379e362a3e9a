// The rates of IEEE 802.11: what a link carries, by its PHY mode, width, streams and signal.
#pragma once

#include "channels.h"

#include <cstdint>
#include <string>

namespace tarn::simulator
{

// In the order in which they came; each can do what those before it in its band can.
enum class PhyMode : std::uint32_t
{
    k11b,
    k11a,
    k11g,
    k11n,
    k11ac,
    k11ax
};

inline constexpr const char* kPhyModeNames[] = {"11b", "11a", "11g", "11n", "11ac", "11ax"};

const char* toString(PhyMode mode);
PhyMode phyModeOf(const std::string& name); // one of the names

// Whether the mode is defined for the band: 11a and 11ac are for 5 GHz, 11b and 11g for 2.4 GHz, 6 GHz begins with 11ax.
bool isModeOf(Band band, PhyMode mode);

// The mode that two devices of these modes have in common in a band.
PhyMode commonMode(Band band, PhyMode one, PhyMode other);

struct LinkConditions
{
    PhyMode mode = PhyMode::k11ac;
    std::uint32_t bandwidth = 20; // MHz; a mode that has no such width takes its widest one
    std::uint32_t streams = 1;
    bool hasShortGuardInterval = true;
    std::int32_t signalToNoise = 0; // dB
    std::uint32_t highestMcs = 11;
};

struct LinkRate
{
    std::uint32_t mcs = 0;
    std::uint32_t rate = 1; // Mbit/s
};

// The fastest one that the signal carries; the slowest one if it carries none.
LinkRate rateOf(const LinkConditions& conditions);

} // namespace tarn::simulator
