// What radios do: changes of their settings, radar, and what follows from the air.
#include "base/join.h"
#include "lists.h"
#include "model.h"

#include <algorithm>

namespace tarn::simulator
{

void Model::change(Radio& radio, const Changes<RadioSettings>& changes)
{
    apply(radio, changed(radio, changes));
}

void Model::change(const std::vector<Radio*>& changing, const Changes<RadioSettings>& changes)
{
    std::vector<RadioSettings> settings;
    settings.reserve(changing.size());
    for (const Radio* const radio : changing)
        settings.push_back(changed(*radio, changes));
    for (std::size_t i = 0; i < changing.size(); ++i)
        takeOver(*changing[i], std::move(settings[i]));
    settle(changing);
}

// What the settings would be. Throws Refused if they do not fit.
RadioSettings Model::changed(const Radio& radio, const Changes<RadioSettings>& changes) const
{
    RadioSettings changed = radio.settings;
    changes.applyTo(changed);
    if (changes.has(&RadioSettings::channel) && !changes.has(&RadioSettings::autoChannel))
        changed.autoChannel = 0;
    const bool isOfChannel = changes.has(&RadioSettings::channel) || changes.has(&RadioSettings::autoChannel) ||
                             changes.has(&RadioSettings::bandwidth) || changes.has(&RadioSettings::country) ||
                             changes.has(&RadioSettings::tdwrChannels);
    const bool keepsChannel = radio.silenced && !isOfChannel; // though it cannot be used
    if (changed.autoChannel != 0 && !keepsChannel)
        changed.channel = quietestChannel(radio, changed);
    if (const std::vector<std::uint32_t> channels = radio.channelsWith(changed);
        !keepsChannel && !contains(channels, changed.channel))
        throw Refused{ReplyStatus::kInvalidValue, "channel " + std::to_string(changed.channel) + "; radio " + radio.name +
                                                      " has " + base::join(channels, " ") + " at " +
                                                      std::to_string(changed.bandwidth) + " MHz"};
    if (!isModeOf(radio.band, phyModeOf(changed.phyMode)))
        throw Refused{ReplyStatus::kInvalidValue,
                      "PHY mode " + changed.phyMode + "; the " + toString(radio.band) + " band does not have it"};
    return changed;
}

void Model::apply(Radio& radio, RadioSettings changed)
{
    takeOver(radio, std::move(changed));
    settle(radio);
}

// Of settings that fit, with the events of what changes with them; but for the stations.
void Model::takeOver(Radio& radio, RadioSettings changed)
{
    const RadioSettings before = std::exchange(radio.settings, std::move(changed));
    const RadioSettings& now = radio.settings;
    const bool hasMoved = before.channel != now.channel || before.bandwidth != now.bandwidth;
    if (before.channel != now.channel)
        publishRadio("EVT_RADIO_OPR_CHANNEL_CHANGED", radio);
    if (before.bandwidth != now.bandwidth)
        publishRadio("EVT_RADIO_OPR_BANDWIDTH_CHANGED", radio);
    if (hasMoved || before.enabled != now.enabled || before.weatherCac != now.weatherCac)
    {
        radio.silenced = radio.silenced && !hasMoved;
        beginRadarCheck(radio);
    }
    reportReadiness(radio, before.enabled != now.enabled);
}

// The quietest channel is the one on which others send least; the first of several.
std::uint32_t Model::quietestChannel(const Radio& radio, const RadioSettings& settings) const
{
    const std::vector<std::uint32_t> channels = radio.channelsWith(settings);
    if (channels.empty())
        throw Refused{ReplyStatus::kInvalidValue, "radio " + radio.name + " has no channel left to choose"};
    const auto loadOn = [&](std::uint32_t channel) { return air.load(radio.band, channel, settings.bandwidth); };
    return *std::min_element(channels.begin(), channels.end(),
                             [&](std::uint32_t left, std::uint32_t right) { return loadOn(left) < loadOn(right); });
}

void Model::publishRadio(const char* event, const Radio& radio) const
{
    Record data(layout.record(event));
    fill(data, radio);
    publishEvent(event, data);
}

// Its switch and its readiness have one event.
void Model::reportReadiness(Radio& radio, bool isSwitched)
{
    const bool isReady = radio.isReady();
    if (isSwitched || ready_[radio.id - 1] != isReady)
        publishRadio("EVT_RADIO_STATUS_CHANGED", radio);
    ready_[radio.id - 1] = isReady;
}

// A level is a percentage of the maximum power: half of it is 3 dB less. A back-off holds for its channel and bandwidth.
std::int32_t Model::chainPower(const Radio& radio, std::uint32_t chain) const
{
    const RadioSettings& settings = radio.settings;
    if (chain >= radio.chains || settings.enabled == 0)
        return 0;
    constexpr std::int32_t kCap = 20; // dBm
    std::int32_t power = radio.maximumPower;
    if (radio.onModule && module.settings.transmitPowerCap != 0)
        power = std::min(power, kCap);
    const auto backoff = radio.powerBackoffs.find(settings.channel);
    if (backoff != radio.powerBackoffs.end() &&
        (backoff->second.bandwidth == 0 || 10u << backoff->second.bandwidth == settings.bandwidth))
        power -= static_cast<std::int32_t>(backoff->second.decibels);
    switch (settings.transmitPower)
    {
    case 75:
        return power - 1;
    case 50:
        return power - 3;
    case 25:
        return power - 6;
    case 12:
        return power - 9;
    default:
        return power;
    }
}

// --- Radar -------------------------------------------------------------------------------------------------------------------

// A channel availability check lasts a minute, and ten where weather radars may be (ETSI EN 301 893, 4.2.6; 47 CFR 15.407).
Milliseconds Model::checkDuration(const Radio& radio, std::uint32_t channel, std::uint32_t bandwidth) const
{
    const std::vector<std::uint32_t> block = blockOf(radio.band, channel, bandwidth);
    const bool isWeather =
        std::any_of(block.begin(), block.end(),
                    [&](std::uint32_t each) { return isWeatherChannel(radio.band, each) && radio.needsRadarCheck(each); });
    return isWeather && radio.settings.weatherCac != 0 ? timing.weatherRadarCheck : timing.radarCheck;
}

void Model::beginRadarCheck(Radio& radio)
{
    const RadioSettings& settings = radio.settings;
    const Milliseconds duration = checkDuration(radio, settings.channel, settings.bandwidth);
    radio.checking = settings.enabled != 0 && !radio.silenced && duration > 0 && radio.needsRadarCheckWith(settings);
    if (radio.checking)
        agenda.set({Occurrence::kRadarCheckEnds, radio.id}, time + duration);
    else
        agenda.cancel({Occurrence::kRadarCheckEnds, radio.id});
}

void Model::endRadarCheck(Radio& radio)
{
    radio.checking = false;
    for (const std::uint32_t channel : blockOf(radio.band, radio.settings.channel, radio.settings.bandwidth))
        radio.checkedChannels.insert(channel);
    reportReadiness(radio, false);
    settle(radio);
}

void Model::startDfsRadio(Radio& radio, std::uint32_t channel)
{
    if (radio.settings.enabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff, "radio " + radio.name + " is switched off"};
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking)
        throw Refused{ReplyStatus::kBusy, "the second receiver checks channel " + std::to_string(radio.dfsRadio.channel)};
    std::vector<std::uint32_t> unchecked = radio.allowedChannels();
    const auto needsNoCheck = [&](std::uint32_t candidate) { return !radio.needsRadarCheck(candidate); };
    unchecked.erase(std::remove_if(unchecked.begin(), unchecked.end(), needsNoCheck), unchecked.end());
    if (channel == 0 && unchecked.empty())
        throw Refused{ReplyStatus::kNotThere, "there is no channel left to check"};
    if (channel != 0 && (!isRadarChannel(radio.band, channel) || !contains(radio.allowedChannels(), channel)))
        throw Refused{ReplyStatus::kInvalidValue,
                      "channel " + std::to_string(channel) + " is no radar channel of radio " + radio.name};
    radio.dfsRadio.status = DfsRadioStatus::kChecking;
    radio.dfsRadio.channel = channel != 0 ? channel : unchecked.front();
    agenda.set({Occurrence::kDfsRadioEnds, radio.id},
               time + checkDuration(radio, radio.dfsRadio.channel, radio.settings.bandwidth));
}

void Model::stopDfsRadio(Radio& radio)
{
    if (radio.dfsRadio.status == DfsRadioStatus::kStopped)
        throw Refused{ReplyStatus::kNotThere, "the second receiver does not run"};
    radio.dfsRadio = {};
    agenda.cancel({Occurrence::kDfsRadioEnds, radio.id});
}

void Model::endDfsRadioCheck(Radio& radio)
{
    radio.dfsRadio.status = DfsRadioStatus::kReady;
    for (const std::uint32_t channel : blockOf(radio.band, radio.dfsRadio.channel, radio.settings.bandwidth))
        radio.checkedChannels.insert(channel);
}

// Each radio that listens there hears it. All of its block is left for half an hour (ETSI EN 301 893, 4.2.6; 47 CFR 15.407).
void Model::radarAppears(std::uint32_t channel)
{
    for (Radio& radio : radios)
    {
        const std::vector<std::uint32_t> block = blockOf(radio.band, radio.settings.channel, radio.settings.bandwidth);
        const std::vector<std::uint32_t> second = blockOf(radio.band, radio.dfsRadio.channel, radio.settings.bandwidth);
        const bool isHit = contains(block, channel) && !radio.silenced;
        const bool isSecondHit = radio.dfsRadio.status != DfsRadioStatus::kStopped && contains(second, channel);
        if (radio.settings.enabled == 0 || !isRadarChannel(radio.band, channel) || !(isHit || isSecondHit))
            continue;
        for (const std::uint32_t each : isHit ? block : second)
        {
            if (!isRadarChannel(radio.band, each))
                continue;
            radio.checkedChannels.erase(each);
            radio.occupiedChannels.insert(each);
            Due end{Occurrence::kNonOccupancyEnds, radio.id};
            end.channel = each;
            agenda.set(end, time + timing.nonOccupancy);
        }
        if (isSecondHit)
            stopDfsRadio(radio);
        if (isHit)
            leaveChannel(radio);
    }
}

// To the quietest channel that can be used at once, or else to one that has to be checked; narrower if there is none as wide.
void Model::leaveChannel(Radio& radio)
{
    for (const std::uint32_t bandwidth : {radio.settings.bandwidth, 80u, 40u, 20u})
    {
        if (bandwidth > radio.settings.bandwidth)
            continue;
        RadioSettings changed = radio.settings;
        changed.bandwidth = bandwidth;
        std::vector<std::uint32_t> channels = radio.channelsWith(changed);
        const auto needsCheck = [&](std::uint32_t channel)
        {
            RadioSettings other = changed;
            other.channel = channel;
            return radio.needsRadarCheckWith(other);
        };
        const auto isBetter = [&](std::uint32_t left, std::uint32_t right)
        {
            const auto rank = [&](std::uint32_t channel)
            { return std::make_pair(needsCheck(channel), air.load(radio.band, channel, bandwidth)); };
            return rank(left) < rank(right);
        };
        if (channels.empty())
            continue;
        changed.channel = *std::min_element(channels.begin(), channels.end(), isBetter);
        return apply(radio, std::move(changed));
    }
    radio.silenced = true;
    radio.checking = false;
    agenda.cancel({Occurrence::kRadarCheckEnds, radio.id});
    reportReadiness(radio, false);
    settle(radio);
}

void Model::endNonOccupancy(Radio& radio, std::uint32_t channel)
{
    radio.occupiedChannels.erase(channel);
    if (radio.silenced && radio.occupiedChannels.empty())
    {
        radio.silenced = false;
        beginRadarCheck(radio);
        reportReadiness(radio, false);
        settle(radio);
    }
}

} // namespace tarn::simulator
