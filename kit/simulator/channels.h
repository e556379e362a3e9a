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

// The channels of 20 MHz that a wider one occupies (IEEE 802.11-2020, 21.3.14; at 2.4 GHz those in between are its own).
std::vector<std::uint32_t> blockOf(Band band, std::uint32_t channel, std::uint32_t bandwidth);

// Whether transmissions on the one are heard on the other. Neighbouring channels of 2.4 GHz are 5 MHz apart and overlap.
bool overlap(Band band, std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t otherChannel,
             std::uint32_t otherBandwidth);

bool isRadarChannel(Band band, std::uint32_t channel);
bool isWeatherChannel(Band band, std::uint32_t channel);

// The secondary channel, which makes 40 MHz of this one; 0 if it has none.
std::uint32_t secondaryOf(Band band, std::uint32_t channel);

} // namespace tarn::simulator
