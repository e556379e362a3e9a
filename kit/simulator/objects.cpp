#include "objects.h"

#include "lists.h"

#include <algorithm>

namespace tarn::simulator
{

bool isWpsPin(const std::string& text)
{
    if (text.size() != 8 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    int sum = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        sum += (text[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

// --- Interfaces --------------------------------------------------------------------------------------------------------------

bool Interface::isUp() const
{
    return settings.enabled != 0 && radio->isReady();
}

bool Interface::isPrimary() const
{
    return id == 1;
}

bool Interface::admits(const MacAddress& address, std::size_t associated) const
{
    if (!isUp())
        return false;
    if (settings.assocLimit != 0 && associated >= settings.assocLimit)
        return false;
    const bool isListed = contains(macFilter, address);
    switch (static_cast<MacFilterMode>(settings.macFilterMode))
    {
    case MacFilterMode::kAllow:
        return isListed;
    case MacFilterMode::kDeny:
        return !isListed;
    case MacFilterMode::kOff:
        break;
    }
    return true;
}

std::uint32_t Interface::radioId() const
{
    return radio->id;
}

std::uint32_t Interface::ssidId() const
{
    return id;
}

std::uint32_t Interface::stationNumber() const
{
    return count(stations);
}

WpsStatus Interface::windowStatus() const
{
    return window.status;
}

WpsMethod Interface::windowMethod() const
{
    return window.method;
}

Station& Interface::station(const MacAddress& address)
{
    for (Station& each : stations)
        if (each.address == address)
            return each;
    throw Refused{ReplyStatus::kNoSuchObject};
}

// --- Radios ------------------------------------------------------------------------------------------------------------------

std::uint32_t Radio::radioId() const
{
    return id;
}

bool Radio::isReady() const
{
    return settings.enabled != 0 && !checking;
}

bool Radio::needsRadarCheck(std::uint32_t channel) const
{
    return isRadarChannel(band, channel) && checkedChannels.count(channel) == 0;
}

ChannelCriteria Radio::channelCriteria() const
{
    return criteriaWith(settings);
}

ChannelCriteria Radio::criteriaWith(const RadioSettings& other) const
{
    ChannelCriteria criteria;
    criteria.band = band;
    criteria.country = other.country;
    criteria.bandwidth = other.bandwidth;
    criteria.withWeatherChannels = other.tdwrChannels != 0;
    return criteria;
}

std::vector<std::uint32_t> Radio::allowedChannels() const
{
    return channelsWith(settings);
}

std::vector<std::uint32_t> Radio::channelsWith(const RadioSettings& other) const
{
    std::vector<std::uint32_t> channels = channelsFor(criteriaWith(other));
    const auto isInactive = [&](std::uint32_t channel) { return inactiveChannels.count(channel) != 0; };
    channels.erase(std::remove_if(channels.begin(), channels.end(), isInactive), channels.end());
    return channels;
}

// The one with the fewest neighbours on it, the lowest of several.
std::uint32_t Radio::quietestChannel(const RadioSettings& other) const
{
    const std::vector<std::uint32_t> channels = channelsWith(other);
    if (channels.empty())
        throw Refused{ReplyStatus::kInvalidValue};
    const auto neighboursOn = [&](std::uint32_t channel)
    {
        const auto isThere = [&](const Neighbour& neighbour) { return neighbour.channel == channel; };
        return std::count_if(neighbours.begin(), neighbours.end(), isThere);
    };
    return *std::min_element(channels.begin(), channels.end(),
                             [&](std::uint32_t left, std::uint32_t right) { return neighboursOn(left) < neighboursOn(right); });
}

std::uint32_t Radio::secondaryChannelOf(std::uint32_t channel) const
{
    const auto found = secondaryChannels.find(channel);
    return found != secondaryChannels.end() ? found->second : secondaryOf(band, channel);
}

std::uint32_t Radio::secondaryChannel() const
{
    return secondaryChannelOf(settings.channel);
}

// The strongest station's, and 1 dB less on every further chain.
std::int32_t Radio::chainRssi(std::uint32_t chain) const
{
    std::int32_t strongest = noise;
    for (const Interface& interface : interfaces)
        for (const Station& station : interface.stations)
            strongest = std::max(strongest, station.rssi);
    return chain >= chains ? noise : std::max(noise, strongest - static_cast<std::int32_t>(chain));
}

std::uint32_t Radio::maximumRate() const
{
    std::uint32_t perStream = 54; // at 20 MHz
    if (settings.phyMode == "11ax")
        perStream = 150;
    else if (settings.phyMode == "11ac")
        perStream = 108;
    return perStream * chains * settings.bandwidth / 20;
}

std::uint32_t Radio::interfaceNumber() const
{
    return count(interfaces);
}

std::uint32_t Radio::stationNumber() const
{
    std::uint32_t number = 0;
    for (const Interface& interface : interfaces)
        number += interface.stationNumber();
    return number;
}

ScanStatus Radio::scanStatus() const
{
    return scan.status;
}

} // namespace tarn::simulator
