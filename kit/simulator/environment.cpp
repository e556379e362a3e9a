#include "environment.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

// The power of a usual client.
constexpr std::int32_t kClientPower = 15; // dBm

// Below this level a preamble does not make the channel busy (IEEE 802.11-2020, 17.3.10.6).
constexpr std::int32_t kClearChannelThreshold = -82; // dBm

} // namespace

std::int32_t Air::noise(Band band) const
{
    switch (band)
    {
    case Band::k2:
        return noise2GHz;
    case Band::k5:
        return noise5GHz;
    case Band::k6:
        break;
    }
    return noise6GHz;
}

std::vector<Neighbour> Air::neighboursIn(Band band) const
{
    std::vector<Neighbour> result;
    std::copy_if(neighbours.begin(), neighbours.end(), std::back_inserter(result),
                 [&](const Neighbour& neighbour) { return neighbour.band == band; });
    return result;
}

// Networks send independently of one another: the channel is idle while none of them sends.
std::uint32_t Air::load(Band band, std::uint32_t channel, std::uint32_t bandwidth) const
{
    constexpr std::uint64_t kWhole = 1000000;
    std::uint64_t idle = kWhole;
    for (const Neighbour& each : neighbours)
        if (each.band == band && each.rssi >= kClearChannelThreshold &&
            overlap(band, channel, bandwidth, each.channel, each.bandwidth))
            idle = idle * (100 - each.load) / 100;
    return static_cast<std::uint32_t>((kWhole - idle) * 100 / kWhole);
}

std::int32_t Client::pathLossIn(Band band) const
{
    switch (band)
    {
    case Band::k2:
        return static_cast<std::int32_t>(pathLoss);
    case Band::k5:
        return static_cast<std::int32_t>(pathLoss) + 7;
    case Band::k6:
        break;
    }
    return static_cast<std::int32_t>(pathLoss) + 8;
}

std::int32_t Client::rssiIn(Band band) const
{
    return kClientPower - pathLossIn(band);
}

} // namespace tarn::simulator
