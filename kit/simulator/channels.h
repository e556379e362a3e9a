// The channels of the bands: which a country permits at a bandwidth, which are subject to radar checks, and which is the
// secondary channel of which.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::simulator
{

enum class Band
{
    k2,
    k5,
    k6
};

inline constexpr const char* kBandNames[] = {"2.4GHz", "5GHz", "6GHz"};

const char* toString(Band band);

// Bandwidths are in MHz.
struct ChannelCriteria
{
    Band band = Band::k5;
    std::string country; // "us", "eu", "jp"; none of these has no channels
    std::uint32_t bandwidth = 20;
    bool withRadarChannels = true;
    bool withWeatherChannels = true; // 120 to 128, those of terminal weather radars
};

// In ascending order; empty if none meets the criteria.
std::vector<std::uint32_t> channelsFor(const ChannelCriteria& criteria);

bool isRadarChannel(Band band, std::uint32_t channel);

// The secondary channel, which makes 40 MHz of this one; 0 if it has none.
std::uint32_t secondaryOf(Band band, std::uint32_t channel);

} // namespace tarn::simulator
