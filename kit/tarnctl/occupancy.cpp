#include "occupancy.h"

#include "listing.h"
#include "table.h"
#include "terminal_text.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn::ctl
{

namespace
{

constexpr std::int64_t kChannelWidth = 20;   // MHz
constexpr std::int64_t kNumbersAChannel = 4; // channel numbers are 5 MHz apart
constexpr std::int64_t kLast2GHzChannel = 14;
constexpr std::size_t kGaps = 4;          // columns between name, line and signal
constexpr std::size_t kLeastColumns = 24; // of the line, however narrow the terminal is
constexpr std::size_t kSignalColumns = 9;

// The first channel of the block of 20 MHz channels from which wider ones are made up.
std::int64_t blockStart(Band band, std::int64_t channel)
{
    if (band == Band::k6GHz)
        return 1;
    constexpr std::array<std::int64_t, 3> kStarts = {149, 100, 36};
    const auto* const start =
        std::find_if(kStarts.begin(), kStarts.end(), [channel](std::int64_t first) { return channel >= first; });
    return start == kStarts.end() ? channel : *start;
}

// Wider channels of 2.4 GHz reach to the side where there is room.
Coverage coverageIn2GHz(std::int64_t channel, std::int64_t bandwidth)
{
    constexpr std::int64_t kHalf = kNumbersAChannel / 2;
    constexpr std::int64_t kLastThatReachesUp = 7;
    const std::int64_t more = std::max<std::int64_t>(bandwidth / kChannelWidth - 1, 0) * kNumbersAChannel;
    if (channel <= kLastThatReachesUp)
        return {channel - kHalf, channel + kHalf + more};
    return {channel - kHalf - more, channel + kHalf};
}

// The axis: from which channel number to which, and how many of them a column of the terminal has.
struct Axis
{
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t step = 1; // channel numbers a column
    std::int64_t zoom = 1; // or columns a channel number

    std::size_t columns() const
    {
        return columnOf(last + 1);
    }

    std::size_t columnOf(std::int64_t channel) const
    {
        return static_cast<std::size_t>((channel - first) * zoom / step);
    }
};

Axis axisOf(Band band, const std::vector<Network>& networks, std::size_t room)
{
    Axis axis = {networks.front().channel, networks.front().channel, 1, 1};
    for (const Network& network : networks)
    {
        const Coverage covered = coverageOf(band, network.channel, network.bandwidth);
        axis.first = std::min(axis.first, covered.first);
        axis.last = std::max(axis.last, covered.last);
    }
    constexpr std::int64_t kMostZoom = 3;
    for (axis.zoom = kMostZoom; axis.zoom > 1 && axis.columns() > room;)
        --axis.zoom;
    while (axis.columns() > room)
        axis.step *= 2;
    return axis;
}

// The numbers of the channels where they begin, as far as there is room between them.
std::string scaleOf(Band band, const Axis& axis)
{
    std::string scale;
    for (std::int64_t channel = axis.first; channel <= axis.last; ++channel)
    {
        const std::size_t column = axis.columnOf(channel);
        if (!isChannel(band, channel) || (!scale.empty() && column < scale.size() + 1))
            continue;
        scale.resize(column, ' ');
        scale += std::to_string(channel);
    }
    return scale;
}

std::string repeated(const char* mark, std::size_t times)
{
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += mark;
    return text;
}

// The stronger, the darker.
const char* markOf(const Network& network, bool hasUtf8)
{
    constexpr std::int64_t kStrong = -60;
    constexpr std::int64_t kMedium = -75;
    if (network.isOwn)
        return "=";
    if (network.signal >= kStrong)
        return hasUtf8 ? "█" : "#";
    if (network.signal >= kMedium)
        return hasUtf8 ? "▓" : "+";
    return hasUtf8 ? "░" : ":";
}

std::string signalText(const Network& network)
{
    return network.isOwn ? "own" : std::to_string(network.signal) + " dBm";
}

Tone toneOf(const Network& network)
{
    return network.isOwn ? Tone::kStrong : signalTone(numberCell(network.signal, "dBm"));
}

} // namespace

Coverage coverageOf(Band band, std::int64_t channel, std::int64_t bandwidth)
{
    if (band == Band::k2GHz)
        return coverageIn2GHz(channel, bandwidth);
    const std::int64_t numbers = std::max<std::int64_t>(bandwidth / kChannelWidth, 1) * kNumbersAChannel;
    const std::int64_t start = blockStart(band, channel);
    const std::int64_t first = start + (channel - start) / numbers * numbers;
    return {first, first + numbers - 1};
}

bool isChannel(Band band, std::int64_t channel)
{
    constexpr std::int64_t kLastOfLowerPart = 64;
    constexpr std::int64_t kFirstOfUpperPart = 100;
    if (band == Band::k2GHz)
        return channel >= 1 && channel <= kLast2GHzChannel;
    if (band == Band::k5GHz && channel > kLastOfLowerPart && channel < kFirstOfUpperPart)
        return false;
    return (channel - blockStart(band, channel)) % kNumbersAChannel == 0;
}

Band bandOf(const std::string& word, std::int64_t channel)
{
    if (word.rfind("2.4", 0) == 0)
        return Band::k2GHz;
    if (word.rfind('6', 0) == 0)
        return Band::k6GHz;
    return word.rfind('5', 0) != 0 && channel <= kLast2GHzChannel ? Band::k2GHz : Band::k5GHz;
}

const char* toString(Band band)
{
    constexpr std::array<const char*, 3> kNames = {"2.4 GHz", "5 GHz", "6 GHz"};
    return kNames.at(static_cast<std::size_t>(band));
}

std::int64_t frequencyOf(Band band, std::int64_t channel)
{
    constexpr std::int64_t kChannelDistance = 5; // MHz
    constexpr std::int64_t kOf2GHzChannel14 = 2484;
    constexpr std::int64_t kOf6GHzChannel2 = 5935; // below channel 1
    constexpr std::array<std::int64_t, 3> kOfChannel0 = {2407, 5000, 5950};
    if (band == Band::k2GHz && channel == kLast2GHzChannel)
        return kOf2GHzChannel14;
    if (band == Band::k6GHz && channel == 2)
        return kOf6GHzChannel2;
    return kOfChannel0.at(static_cast<std::size_t>(band)) + channel * kChannelDistance;
}

void writeOccupancy(const Console& console, Band band, std::vector<Network> networks)
{
    if (networks.empty())
        return;
    std::stable_sort(networks.begin(), networks.end(),
                     [](const Network& one, const Network& other)
                     { return one.isOwn != other.isOwn ? one.isOwn : !one.isOwn && one.signal > other.signal; });
    std::size_t taken = std::string(toString(band)).size();
    for (const Network& network : networks)
        taken = std::max(taken, columnsOf(network.name));
    taken += kSignalColumns + kGaps;
    const Axis axis = axisOf(band, networks, std::max(console.terminal.width, taken + kLeastColumns) - taken);

    Table table;
    table.add({{toString(band), Tone::kStrong}, {scaleOf(band, axis), Tone::kFaint}});
    for (const Network& network : networks)
    {
        const Coverage covered = coverageOf(band, network.channel, network.bandwidth);
        const std::size_t begin = axis.columnOf(covered.first);
        const char* const mark = markOf(network, console.terminal.knowsUtf8);
        const std::size_t columns = std::max<std::size_t>(axis.columnOf(covered.last + 1) - begin, 1);
        const std::string line = std::string(begin, ' ') + repeated(mark, columns);
        table.add({network.name, {line, toneOf(network)}, {signalText(network), toneOf(network), true}});
    }
    table.write(console.out, console.colours);
}

} // namespace tarn::ctl
