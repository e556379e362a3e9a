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

bool isInterfaceName(const std::string& name)
{
    const auto isOdd = [](char character) { return character <= ' ' || character > '~' || character == '/'; };
    return !name.empty() && name.size() <= 15 && std::none_of(name.begin(), name.end(), isOdd);
}

bool isMcsRate(const std::string& text)
{
    if (text == "auto")
        return true;
    const std::string digits = text.rfind("MCS", 0) == 0 ? text.substr(3) : "";
    return digits == "10" || digits == "11" || (digits.size() == 1 && digits[0] >= '0' && digits[0] <= '9');
}

// --- Interfaces --------------------------------------------------------------------------------------------------------------

std::string Station::phyModeName() const
{
    return toString(phyMode);
}

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
    if (!isUp() || contains(blocked, address))
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
    throw Refused{ReplyStatus::kNoSuchObject, base::macText(address) + " is not associated with " + name};
}

// --- Radios ------------------------------------------------------------------------------------------------------------------

std::uint32_t Radio::radioId() const
{
    return id;
}

bool Radio::isReady() const
{
    return settings.enabled != 0 && !checking && !silenced;
}

bool Radio::needsRadarCheck(std::uint32_t channel) const
{
    return isRadarChannel(band, channel) && checkedChannels.count(channel) == 0;
}

// While the check of weather channels is switched off, these are used without one.
bool Radio::needsRadarCheckWith(const RadioSettings& other) const
{
    const std::vector<std::uint32_t> block = blockOf(band, other.channel, other.bandwidth);
    return std::any_of(block.begin(), block.end(),
                       [&](std::uint32_t channel)
                       { return needsRadarCheck(channel) && (other.weatherCac != 0 || !isWeatherChannel(band, channel)); });
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
    const auto cannotBeUsed = [&](std::uint32_t channel)
    {
        const std::vector<std::uint32_t> block = blockOf(band, channel, other.bandwidth);
        const auto isOccupied = [&](std::uint32_t each) { return occupiedChannels.count(each) != 0; };
        return inactiveChannels.count(channel) != 0 || std::any_of(block.begin(), block.end(), isOccupied);
    };
    channels.erase(std::remove_if(channels.begin(), channels.end(), cannotBeUsed), channels.end());
    return channels;
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
    LinkConditions best;
    best.mode = phyModeOf(settings.phyMode);
    best.bandwidth = settings.bandwidth;
    best.streams = chains;
    best.hasShortGuardInterval = settings.shortGuardInterval != 0;
    best.signalToNoise = 100;
    return rateOf(best).rate;
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
