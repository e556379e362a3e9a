#include "model.h"

#include "lists.h"

#include <algorithm>
#include <limits>

namespace tarn::simulator
{

namespace
{

constexpr std::uint64_t kPacketBytes = 1000;
constexpr Milliseconds kNeverAgain = std::numeric_limits<Milliseconds>::max();

std::vector<std::uint32_t> channelsWith(const Radio& radio, const Settings& settings)
{
    std::vector<std::uint32_t> channels = channelsFor(Model::channelCriteria(radio, settings));
    const auto inactive = [&](std::uint32_t channel) { return radio.inactiveChannels.count(channel) != 0; };
    channels.erase(std::remove_if(channels.begin(), channels.end(), inactive), channels.end());
    return channels;
}

bool names(const Changes& changes, const char* property)
{
    return std::any_of(changes.begin(), changes.end(), [&](const auto& change) { return change.first == property; });
}

bool isInterfaceName(const std::string& name)
{
    const auto isOdd = [](char character) { return character <= ' ' || character > '~' || character == '/'; };
    return !name.empty() && name.size() <= 15 && std::none_of(name.begin(), name.end(), isOdd);
}

} // namespace

Model::Model(const Clock& clock, GatewayLayout layoutInUse)
    : layout(std::move(layoutInUse)), clock_(clock), started_(clock.now())
{
}

void Model::start()
{
    started_ = now();
    for (Radio& radio : radios)
        radio.checkedChannels.insert(radio.settings.number("channel")); // as if checked long ago
    advance();
}

Milliseconds Model::now() const
{
    return clock_.now();
}

std::uint32_t Model::secondsSinceStart() const
{
    return static_cast<std::uint32_t>((now() - started_) / 1000);
}

// --- Finding -----------------------------------------------------------------------------------------------------------------

Radio& Model::radio(std::uint32_t id)
{
    if (id == 0 || id > radios.size())
        throw Refused{ReplyStatus::kNoSuchObject};
    return radios[id - 1];
}

Interface& Model::interfaceOf(std::uint32_t radioId, std::uint32_t interfaceId)
{
    Radio& owner = radio(radioId);
    if (interfaceId == 0 || interfaceId > owner.interfaces.size())
        throw Refused{ReplyStatus::kNoSuchObject};
    return owner.interfaces[interfaceId - 1];
}

Interface& Model::moduleInterface(const std::string& name)
{
    for (Radio& radio : radios)
        for (Interface& interface : radio.interfaces)
            if (radio.onModule && interface.name == name)
                return interface;
    throw Refused{ReplyStatus::kNoSuchObject};
}

bool Model::hasInterface(const std::string& name) const
{
    for (const Radio& radio : radios)
        for (const Interface& interface : radio.interfaces)
            if (interface.name == name)
                return true;
    return false;
}

Radio& Model::moduleRadio()
{
    for (Radio& radio : radios)
        if (radio.onModule)
            return radio;
    throw Refused{ReplyStatus::kNoSuchObject};
}

Station& Model::station(Interface& interface, const MacAddress& address)
{
    for (Station& station : interface.stations)
        if (station.address == address)
            return station;
    throw Refused{ReplyStatus::kNoSuchObject};
}

SteeringDomain& Model::steeringDomain(const MobilityDomain& id)
{
    for (SteeringDomain& domain : smartWiFi.domains)
        if (domain.id == id)
            return domain;
    throw Refused{ReplyStatus::kNoSuchObject};
}

// --- Changing ----------------------------------------------------------------------------------------------------------------

void Model::change(Settings& settings, const Changes& changes)
{
    Settings changed = settings;
    for (const auto& [name, value] : changes)
        changed.set(name, value);
    settings = std::move(changed);
}

void Model::change(Radio& radio, const Changes& changes)
{
    Settings changed = radio.settings;
    change(changed, changes);
    if (names(changes, "channel") && !names(changes, "autoChannel"))
        changed.set("autoChannel", 0u);
    if (changed.number("autoChannel") != 0)
        changed.set("channel", quietestChannel(radio, changed));
    if (!contains(channelsWith(radio, changed), changed.number("channel")))
        throw Refused{ReplyStatus::kInvalidValue};

    const Settings before = std::exchange(radio.settings, std::move(changed));
    const auto differs = [&](const char* name) { return before.value(name) != radio.settings.value(name); };
    const auto publishChange = [&](const char* event, const char* name)
    {
        Record data(layout.record(event));
        data.setNumber("radioId", radio.id);
        data.setNumber(name, radio.settings.number(name));
        publishEvent(event, data);
    };
    if (differs("channel"))
    {
        publishChange("EVT_RADIO_OPR_CHANNEL_CHANGED", "channel");
        beginRadarCheck(radio);
    }
    if (differs("bandwidth"))
        publishChange("EVT_RADIO_OPR_BANDWIDTH_CHANGED", "bandwidth");
    if (differs("enabled"))
    {
        publishChange("EVT_RADIO_STATUS_CHANGED", "enabled");
        beginRadarCheck(radio);
    }
}

void Model::change(Interface& interface, const Changes& changes)
{
    change(interface.settings, changes);
}

void Model::changeSecurity(Interface& interface, const Changes& changes)
{
    if (interface.settings.number("securityDeferMode") == 0)
        return change(interface, changes);
    Settings trial = interface.settings; // a value that cannot be applied later is refused now
    change(trial, changes);
    interface.deferredSecurity.insert(interface.deferredSecurity.end(), changes.begin(), changes.end());
}

void Model::applySecurity(Interface& interface)
{
    change(interface, std::exchange(interface.deferredSecurity, {}));
}

Interface& Model::createInterface(const std::string& name, bool enabled)
{
    Radio& radio = moduleRadio();
    if (!isInterfaceName(name))
        throw Refused{ReplyStatus::kInvalidValue};
    if (hasInterface(name))
        throw Refused{ReplyStatus::kAlreadyThere};
    if (radio.interfaces.size() >= kInterfaceRoom)
        throw Refused{ReplyStatus::kFull};

    Interface& interface = radio.interfaces.emplace_back();
    interface.id = static_cast<std::uint32_t>(radio.interfaces.size());
    interface.name = name;
    interface.radio = &radio;
    interface.bssid = radio.interfaces.front().bssid;
    interface.bssid[0] = static_cast<std::uint8_t>(interface.bssid[0] | 2); // locally administered
    interface.bssid[5] = static_cast<std::uint8_t>(interface.bssid[5] + interface.id - 1);
    interface.settings.set("enabled", enabled ? 1u : 0u);
    if (stoppedPolling.count(Polling::kInterfaces) != 0)
        interface.frozen = Counters{};
    return interface;
}

void Model::kickOut(Interface& interface, const MacAddress& address)
{
    for (std::size_t i = 0; i < interface.stations.size(); ++i)
        if (interface.stations[i].address == address)
            return part(interface, i);
    throw Refused{ReplyStatus::kNoSuchObject};
}

void Model::stopPolling(Polling what, bool stop)
{
    for (const Polling kind : {Polling::kRadios, Polling::kInterfaces, Polling::kStations})
    {
        if (what != Polling::kAll && what != kind)
            continue;
        const bool isStopped = stoppedPolling.count(kind) != 0;
        if (isStopped == stop)
            continue;
        const auto freeze = [&](auto& object)
        { object.frozen = stop ? std::optional<Counters>(counters(object)) : std::nullopt; };
        for (Radio& radio : radios)
        {
            if (kind == Polling::kRadios)
                freeze(radio);
            for (Interface& interface : radio.interfaces)
            {
                if (kind == Polling::kInterfaces)
                    freeze(interface);
                for (Station& station : interface.stations)
                    if (kind == Polling::kStations)
                        freeze(station);
            }
        }
        if (stop)
            stoppedPolling.insert(kind);
        else
            stoppedPolling.erase(kind);
    }
}

void Model::addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room)
{
    if (!base::isIndividual(address))
        throw Refused{ReplyStatus::kInvalidValue};
    if (contains(list, address))
        throw Refused{ReplyStatus::kAlreadyThere};
    if (list.size() >= room)
        throw Refused{ReplyStatus::kFull};
    list.push_back(address);
}

void Model::removeAddress(std::vector<MacAddress>& list, const MacAddress& address)
{
    const auto found = std::find(list.begin(), list.end(), address);
    if (found == list.end())
        throw Refused{ReplyStatus::kNotThere};
    list.erase(found);
}

// --- What takes time ---------------------------------------------------------------------------------------------------------

// NOLINTNEXTLINE(readability-make-member-function-const): it changes a radio of this model
void Model::startScan(Radio& radio, std::uint32_t flags)
{
    if (radio.settings.number("enabled") == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
    if (radio.scan.status == ScanStatus::kRunning)
        throw Refused{ReplyStatus::kBusy};
    radio.scan.status = ScanStatus::kRunning;
    radio.scan.ends = now() + timing.scan;
    radio.scan.flags = flags;
}

void Model::cancelScan(Radio& radio)
{
    if (radio.scan.status != ScanStatus::kRunning)
        throw Refused{ReplyStatus::kNotThere};
    radio.scan.status = ScanStatus::kCancelled;
}

void Model::openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin)
{
    if (method == WpsMethod::kPin && !isWpsPin(pin))
        throw Refused{ReplyStatus::kInvalidValue};
    if (interface.settings.number("wpsEnabled") == 0 || !isUp(interface))
        throw Refused{ReplyStatus::kSwitchedOff};
    WpsWindow& window = interface.window;
    if (window.status == WpsStatus::kOpen)
        throw Refused{ReplyStatus::kBusy};
    window.method = method;
    window.pin = method == WpsMethod::kPin ? pin : "";
    window.closes = now() + timing.wpsWindow;
    setWpsWindow(interface, WpsStatus::kOpen);
}

void Model::cancelWpsWindow(Interface& interface)
{
    if (interface.window.status != WpsStatus::kOpen)
        throw Refused{ReplyStatus::kNotThere};
    setWpsWindow(interface, WpsStatus::kCancelled);
}

void Model::startDownload(const std::string& path)
{
    Download& download = module.download;
    if (download.state == DownloadState::kRunning)
        throw Refused{ReplyStatus::kBusy};
    download.state = DownloadState::kRunning;
    download.path = path;
    download.ends = now() + timing.download;
}

void Model::startProduction()
{
    if (module.productionStarted && now() < module.productionDone)
        throw Refused{ReplyStatus::kBusy};
    module.productionStarted = true;
    module.productionDone = now() + timing.production;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes a radio of this model
void Model::startDfsRadio(Radio& radio, std::uint32_t channel)
{
    if (radio.settings.number("enabled") == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking)
        throw Refused{ReplyStatus::kBusy};
    std::vector<std::uint32_t> unchecked = allowedChannels(radio);
    const auto needsNoCheck = [&](std::uint32_t candidate) { return !needsRadarCheck(radio, candidate); };
    unchecked.erase(std::remove_if(unchecked.begin(), unchecked.end(), needsNoCheck), unchecked.end());
    if (channel == 0 && unchecked.empty())
        throw Refused{ReplyStatus::kNotThere};
    if (channel != 0 && (!isRadarChannel(radio.band, channel) || !contains(allowedChannels(radio), channel)))
        throw Refused{ReplyStatus::kInvalidValue};
    radio.dfsRadio.status = DfsRadioStatus::kChecking;
    radio.dfsRadio.channel = channel != 0 ? channel : unchecked.front();
    radio.dfsRadio.ends = now() + timing.radarCheck;
}

void Model::stopDfsRadio(Radio& radio)
{
    if (radio.dfsRadio.status == DfsRadioStatus::kStopped)
        throw Refused{ReplyStatus::kNotThere};
    radio.dfsRadio = {};
}

void Model::advance()
{
    for (Radio& radio : radios)
        settle(radio);
    Download& download = module.download;
    if (download.state == DownloadState::kRunning && now() >= download.ends)
    {
        const bool fails = contains(module.missingFiles, download.path);
        download.state = fails ? DownloadState::kFailed : DownloadState::kDone;
    }
}

void Model::settle(Radio& radio)
{
    if (radio.scan.status == ScanStatus::kRunning && radio.settings.number("enabled") == 0)
        radio.scan.status = ScanStatus::kCancelled;
    if (radio.scan.status == ScanStatus::kRunning && now() >= radio.scan.ends)
    {
        radio.scan.status = ScanStatus::kDone;
        radio.scan.results = radio.neighbours;
    }
    if (radio.checking && now() >= radio.checkEnds)
    {
        radio.checking = false;
        radio.checkedChannels.insert(radio.settings.number("channel"));
    }
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking && now() >= radio.dfsRadio.ends)
    {
        radio.dfsRadio.status = DfsRadioStatus::kReady;
        radio.checkedChannels.insert(radio.dfsRadio.channel);
    }
    for (Interface& interface : radio.interfaces)
        settle(interface);
}

void Model::settle(Interface& interface)
{
    if (interface.window.status == WpsStatus::kOpen)
    {
        if (interface.settings.number("wpsEnabled") == 0 || !isUp(interface))
            setWpsWindow(interface, WpsStatus::kCancelled);
        else if (now() >= interface.window.closes)
            setWpsWindow(interface, WpsStatus::kExpired);
    }

    for (std::size_t i = 0; i < interface.stations.size();)
        if (admits(interface, interface.stations[i], i))
            ++i;
        else
            part(interface, i);
    for (std::size_t i = 0; i < interface.away.size();)
        if (now() >= interface.away[i].due && admits(interface, interface.away[i], interface.stations.size()))
        {
            const auto place = interface.away.begin() + static_cast<std::ptrdiff_t>(i);
            Station station = std::move(*place);
            interface.away.erase(place);
            associate(interface, std::move(station));
        }
        else
            ++i;
}

bool Model::admits(const Interface& interface, const Station& station, std::size_t associated)
{
    if (!isUp(interface))
        return false;
    const std::uint32_t limit = interface.settings.number("assocLimit");
    if (limit != 0 && associated >= limit)
        return false;
    const bool isListed = contains(interface.macFilter, station.address);
    switch (static_cast<MacFilterMode>(interface.settings.number("macFilterMode")))
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

void Model::associate(Interface& interface, Station station)
{
    station.since = now();
    if (stoppedPolling.count(Polling::kStations) != 0)
        station.frozen = Counters{};
    ++interface.associations;
    interface.stations.push_back(std::move(station));
    reportAssociation(interface, interface.stations.back(), true);
}

void Model::part(Interface& interface, std::size_t index)
{
    const auto place = interface.stations.begin() + static_cast<std::ptrdiff_t>(index);
    Station station = std::move(*place);
    interface.stations.erase(place);
    interface.departed.add(counters(station));
    ++interface.disassociations;
    station.due = timing.reassociation == 0 ? kNeverAgain : now() + timing.reassociation;
    station.frozen.reset();
    reportAssociation(interface, station, false);
    interface.away.push_back(std::move(station));
}

void Model::setWpsWindow(Interface& interface, WpsStatus status)
{
    interface.window.status = status;
    Record data(layout.record("EVT_AP_WPS_WIN_STATUS_CHANGED"));
    data.setNumber("radioId", interface.radio->id);
    data.setNumber("apId", interface.id);
    data.setNumber("status", static_cast<std::uint32_t>(status));
    publishEvent("EVT_AP_WPS_WIN_STATUS_CHANGED", data);
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes a radio of this model
void Model::beginRadarCheck(Radio& radio)
{
    radio.checking = radio.settings.number("enabled") != 0 && timing.radarCheck > 0 &&
                     needsRadarCheck(radio, radio.settings.number("channel"));
    radio.checkEnds = now() + timing.radarCheck;
}

void Model::publishEvent(const char* event, const Record& data) const
{
    if (publish)
        publish(event, data);
}

void Model::reportAssociation(const Interface& interface, const Station& station, bool associated)
{
    history.push_back({now() - started_, associated ? 1u : 0u,
                       base::macText(station.address) + (associated ? " has come to " : " has left ") + interface.name});
    if (history.size() > kHistoryRoom)
        history.pop_front();
    Record data(layout.record("EVT_AP_ASSOCIATED_CHANGED"));
    data.setNumber("radioId", interface.radio->id);
    data.setNumber("apId", interface.id);
    data.setAddress("macAddress", station.address);
    data.setNumber("associated", associated ? 1 : 0);
    publishEvent("EVT_AP_ASSOCIATED_CHANGED", data);
}

// --- What follows from the state ---------------------------------------------------------------------------------------------

bool Model::isReady(const Radio& radio)
{
    return radio.settings.number("enabled") != 0 && !radio.checking;
}

bool Model::isUp(const Interface& interface)
{
    return interface.settings.number("enabled") != 0 && isReady(*interface.radio);
}

bool Model::needsRadarCheck(const Radio& radio, std::uint32_t channel)
{
    return isRadarChannel(radio.band, channel) && radio.checkedChannels.count(channel) == 0;
}

ChannelCriteria Model::channelCriteria(const Radio& radio, const Settings& settings)
{
    ChannelCriteria criteria;
    criteria.band = radio.band;
    criteria.country = settings.text("country");
    criteria.bandwidth = settings.number("bandwidth");
    criteria.withWeatherChannels = settings.number("tdwrChannels") != 0;
    return criteria;
}

std::vector<std::uint32_t> Model::allowedChannels(const Radio& radio)
{
    return channelsWith(radio, radio.settings);
}

// The one with the fewest neighbours on it, the lowest of several.
std::uint32_t Model::quietestChannel(const Radio& radio, const Settings& settings)
{
    const std::vector<std::uint32_t> channels = channelsWith(radio, settings);
    if (channels.empty())
        throw Refused{ReplyStatus::kInvalidValue};
    const auto neighboursOn = [&](std::uint32_t channel)
    {
        const auto isThere = [&](const Neighbour& neighbour) { return neighbour.channel == channel; };
        return std::count_if(radio.neighbours.begin(), radio.neighbours.end(), isThere);
    };
    return *std::min_element(channels.begin(), channels.end(),
                             [&](std::uint32_t left, std::uint32_t right) { return neighboursOn(left) < neighboursOn(right); });
}

std::uint32_t Model::secondaryChannel(const Radio& radio, std::uint32_t channel)
{
    const auto found = radio.secondaryChannels.find(channel);
    return found != radio.secondaryChannels.end() ? found->second : secondaryOf(radio.band, channel);
}

// A level is a percentage of the maximum power: half of it is 3 dB less.
std::int32_t Model::chainPower(const Radio& radio, std::uint32_t chain) const
{
    if (chain >= radio.chains || radio.settings.number("enabled") == 0)
        return 0;
    constexpr std::int32_t kCap = 20; // dBm
    const std::int32_t most = radio.onModule && module.settings.number("transmitPowerCap") != 0
                                  ? std::min(radio.maximumPower, kCap)
                                  : radio.maximumPower;
    switch (radio.settings.number("transmitPower"))
    {
    case 75:
        return most - 1;
    case 50:
        return most - 3;
    case 25:
        return most - 6;
    case 12:
        return most - 9;
    default:
        return most;
    }
}

// The strongest station's, and 1 dB less on every further chain.
std::int32_t Model::chainRssi(const Radio& radio, std::uint32_t chain)
{
    std::int32_t strongest = radio.noise;
    for (const Interface& interface : radio.interfaces)
        for (const Station& station : interface.stations)
            strongest = std::max(strongest, station.rssi);
    return chain >= radio.chains ? radio.noise : std::max(radio.noise, strongest - static_cast<std::int32_t>(chain));
}

std::uint32_t Model::maximumRate(const Radio& radio)
{
    const std::string& mode = radio.settings.text("phyMode");
    std::uint32_t perStream = 54; // at 20 MHz
    if (mode == "11ax")
        perStream = 150;
    else if (mode == "11ac")
        perStream = 108;
    return perStream * radio.chains * radio.settings.number("bandwidth") / 20;
}

std::uint32_t Model::secondsAssociated(const Station& station) const
{
    return static_cast<std::uint32_t>((now() - station.since) / 1000);
}

Counters Model::counters(const Station& station) const
{
    const std::uint64_t packets = (now() - station.since) * station.packetRate / 1000;
    Counters result;
    result.txPackets = packets;
    result.rxPackets = packets;
    result.txBytes = packets * kPacketBytes;
    result.rxBytes = packets * kPacketBytes;
    result.txErrors = packets / 1000;
    result.rxErrors = packets / 2000;
    result.txRetries = packets / 50;
    return result;
}

Counters Model::counters(const Interface& interface) const
{
    Counters result = interface.departed;
    for (const Station& station : interface.stations)
        result.add(counters(station));
    return result;
}

Counters Model::counters(const Radio& radio) const
{
    Counters result;
    for (const Interface& interface : radio.interfaces)
        result.add(counters(interface));
    return result;
}

} // namespace tarn::simulator
