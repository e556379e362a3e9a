#include "channels.h"

#include "lists.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

using Channels = std::vector<std::uint32_t>;

// Runs of 20 MHz channels, within which wider ones are formed.
struct Run
{
    std::uint32_t first;
    std::uint32_t count;
};

constexpr Run kRuns5[] = {{36, 8}, {100, 12}, {149, 5}};
constexpr Run kRun6 = {1, 59};

const Run* runOf(Band band, std::uint32_t channel)
{
    const auto holds = [&](const Run& run)
    { return channel >= run.first && (channel - run.first) % 4 == 0 && (channel - run.first) / 4 < run.count; };
    if (band == Band::k6)
        return holds(kRun6) ? &kRun6 : nullptr;
    const Run* found = std::find_if(std::begin(kRuns5), std::end(kRuns5), holds);
    return found == std::end(kRuns5) ? nullptr : found;
}

void append(Channels& channels, std::uint32_t first, std::uint32_t last, std::uint32_t step)
{
    for (std::uint32_t channel = first; channel <= last; channel += step)
        channels.push_back(channel);
}

// The 20 MHz channels of a band in a country.
Channels permitted(Band band, const std::string& country)
{
    Channels channels;
    if (country != "us" && country != "eu" && country != "jp")
        return channels;
    switch (band)
    {
    case Band::k2:
        append(channels, 1, country == "us" ? 11 : 13, 1);
        break;
    case Band::k5:
        append(channels, 36, 64, 4);
        append(channels, 100, country == "eu" ? 140 : 144, 4);
        if (country == "us")
            append(channels, 149, 165, 4);
        break;
    case Band::k6:
        append(channels, 1, country == "us" ? 233 : 93, 4);
        break;
    }
    return channels;
}

// Whether the channel is part of a wider one of which every 20 MHz channel is permitted.
bool widens(Band band, std::uint32_t channel, std::uint32_t bandwidth, const Channels& channels)
{
    if (bandwidth == 20)
        return true;
    if (band == Band::k2)
        return bandwidth == 40 && contains(channels, secondaryOf(band, channel));
    const Run* run = runOf(band, channel);
    const std::uint32_t width = bandwidth / 20;
    const std::uint32_t block = (channel - run->first) / 4 / width * width;
    for (std::uint32_t i = block; i < block + width; ++i)
        if (i >= run->count || !contains(channels, run->first + i * 4))
            return false;
    return true;
}

} // namespace

const char* toString(Band band)
{
    return kBandNames[static_cast<std::size_t>(band)];
}

std::vector<std::uint32_t> channelsFor(const ChannelCriteria& criteria)
{
    if (criteria.bandwidth != 20 && criteria.bandwidth != 40 && criteria.bandwidth != 80 && criteria.bandwidth != 160)
        return {};
    Channels channels = permitted(criteria.band, criteria.country);
    const auto without = [&](auto unwanted)
    { channels.erase(std::remove_if(channels.begin(), channels.end(), unwanted), channels.end()); };
    if (!criteria.withRadarChannels)
        without([&](std::uint32_t channel) { return isRadarChannel(criteria.band, channel); });
    if (!criteria.withWeatherChannels && criteria.band == Band::k5)
        without([](std::uint32_t channel) { return isWeatherChannel(Band::k5, channel); });
    const Channels all = channels;
    without([&](std::uint32_t channel) { return !widens(criteria.band, channel, criteria.bandwidth, all); });
    return channels;
}

std::vector<std::uint32_t> blockOf(Band band, std::uint32_t channel, std::uint32_t bandwidth)
{
    const Run* const run = band == Band::k2 ? nullptr : runOf(band, channel);
    if (band == Band::k2 && bandwidth == 40 && secondaryOf(band, channel) != 0)
        return {channel, secondaryOf(band, channel)};
    if (run == nullptr || bandwidth <= 20)
        return {channel};
    const std::uint32_t width = bandwidth / 20;
    const std::uint32_t first = (channel - run->first) / 4 / width * width;
    std::vector<std::uint32_t> block;
    for (std::uint32_t i = first; i < std::min(first + width, run->count); ++i)
        block.push_back(run->first + i * 4);
    return block;
}

bool overlap(Band band, std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t otherChannel,
             std::uint32_t otherBandwidth)
{
    const std::vector<std::uint32_t> other = blockOf(band, otherChannel, otherBandwidth);
    const std::uint32_t reach = band == Band::k2 ? 4 : 0;
    for (const std::uint32_t each : blockOf(band, channel, bandwidth))
        for (const std::uint32_t heard : other)
            if (std::max(each, heard) - std::min(each, heard) <= reach)
                return true;
    return false;
}

bool isWeatherChannel(Band band, std::uint32_t channel)
{
    return band == Band::k5 && channel >= 120 && channel <= 128;
}

bool isRadarChannel(Band band, std::uint32_t channel)
{
    return band == Band::k5 && channel >= 52 && channel <= 144 && runOf(band, channel) != nullptr;
}

std::uint32_t secondaryOf(Band band, std::uint32_t channel)
{
    if (band == Band::k2 && (channel == 0 || channel > 13))
        return 0;
    if (band == Band::k2)
        return channel <= 7 ? channel + 4 : channel - 4;
    const Run* run = runOf(band, channel);
    if (run == nullptr)
        return 0;
    const std::uint32_t index = (channel - run->first) / 4;
    const std::uint32_t other = index % 2 == 0 ? index + 1 : index - 1;
    return other < run->count ? run->first + other * 4 : 0;
}

} // namespace tarn::simulator
