#include "model.h"

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
    ChannelCriteria criteria;
    criteria.band = radio.band;
    criteria.country = settings.text("country");
    criteria.bandwidth = settings.number("bandwidth");
    criteria.withWeatherChannels = settings.number("tdwrChannels") != 0;
    std::vector<std::uint32_t> channels = channelsFor(criteria);
    const auto inactive = [&](std::uint32_t channel) { return radio.inactiveChannels.count(channel) != 0; };
    channels.erase(std::remove_if(channels.begin(), channels.end(), inactive), channels.end());
    return channels;
}

bool contains(const std::vector<std::uint32_t>& channels, std::uint32_t channel)
{
    return std::find(channels.begin(), channels.end(), channel) != channels.end();
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

Model::Model(const Clock& clock) : clock_(clock), started_(clock.now())
{
}

void Model::start()
{
    started_ = now();
    for (Radio& each : radios)
        each.checkedChannels.insert(each.settings.number("channel")); // it has been at work for long
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
    for (Radio& each : radios)
        for (Interface& interface : each.interfaces)
            if (each.onModule && interface.name == name)
                return interface;
    throw Refused{ReplyStatus::kNoSuchObject};
}

Radio& Model::moduleRadio()
{
    for (Radio& each : radios)
        if (each.onModule)
            return each;
    throw Refused{ReplyStatus::kNoSuchObject};
}

Station& Model::station(Interface& interface, const MacAddress& address)
{
    for (Station& each : interface.stations)
        if (each.address == address)
            return each;
    throw Refused{ReplyStatus::kNoSuchObject};
}

Station& Model::stationAt(Interface& interface, std::uint32_t index)
{
    if (index >= interface.stations.size())
        throw Refused{ReplyStatus::kNoSuchObject};
    return interface.stations[index];
}

SteeringDomain& Model::steeringDomain(const MobilityDomain& id)
{
    for (SteeringDomain& each : smartWiFi.domains)
        if (each.id == id)
            return each;
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
    const auto tellOf = [&](const char* event, const char* name)
    {
        Record data(layout(event));
        data.setNumber("radioId", radio.id);
        data.setNumber(name, radio.settings.number(name));
        tell(event, data);
    };
    if (differs("channel"))
    {
        tellOf("EVT_RADIO_OPR_CHANNEL_CHANGED", "channel");
        beginRadarCheck(radio);
    }
    if (differs("bandwidth"))
        tellOf("EVT_RADIO_OPR_BANDWIDTH_CHANGED", "bandwidth");
    if (differs("enabled"))
    {
        tellOf("EVT_RADIO_STATUS_CHANGED", "enabled");
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
    for (const Radio& each : radios)
        for (const Interface& interface : each.interfaces)
            if (interface.name == name)
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
    for (const Polling each : {Polling::kRadios, Polling::kInterfaces, Polling::kStations})
    {
        if (what != Polling::kAll && what != each)
            continue;
        const bool isStopped = stoppedPolling.count(each) != 0;
        if (isStopped == stop)
            continue;
        const auto freeze = [&](auto& object)
        { object.frozen = stop ? std::optional<Counters>(counters(object)) : std::nullopt; };
        for (Radio& radio : radios)
        {
            if (each == Polling::kRadios)
                freeze(radio);
            for (Interface& interface : radio.interfaces)
            {
                if (each == Polling::kInterfaces)
                    freeze(interface);
                for (Station& station : interface.stations)
                    if (each == Polling::kStations)
                        freeze(station);
            }
        }
        if (stop)
            stoppedPolling.insert(each);
        else
            stoppedPolling.erase(each);
    }
}

void Model::addAddress(std::vector<MacAddress>& list, const MacAddress& address, std::size_t room)
{
    if (!base::isIndividual(address))
        throw Refused{ReplyStatus::kInvalidValue};
    if (std::find(list.begin(), list.end(), address) != list.end())
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
    if (interface.settings.number("wpsEnabled") == 0 || interface.settings.number("enabled") == 0 || !isReady(*interface.radio))
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

void Model::startDfsRadio(Radio& radio, std::uint32_t channel)
{
    if (radio.settings.number("enabled") == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking)
        throw Refused{ReplyStatus::kBusy};
    std::vector<std::uint32_t> unchecked = allowedChannels(radio);
    const auto needsNoCheck = [&](std::uint32_t each)
    { return !isRadarChannel(radio.band, each) || radio.checkedChannels.count(each) != 0; };
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
    for (Radio& each : radios)
        settle(each);
    Download& download = module.download;
    if (download.state == DownloadState::kRunning && now() >= download.ends)
    {
        const auto& missing = module.missingFiles;
        const bool fails = std::find(missing.begin(), missing.end(), download.path) != missing.end();
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
        const bool works = interface.settings.number("wpsEnabled") != 0 && interface.settings.number("enabled") != 0 &&
                           isReady(*interface.radio);
        if (!works)
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

bool Model::admits(const Interface& interface, const Station& station, std::size_t associated) const
{
    if (!isReady(*interface.radio) || interface.settings.number("enabled") == 0)
        return false;
    const std::uint32_t limit = interface.settings.number("assocLimit");
    if (limit != 0 && associated >= limit)
        return false;
    const auto& filter = interface.macFilter;
    const bool listed = std::find(filter.begin(), filter.end(), station.address) != filter.end();
    switch (static_cast<MacFilterMode>(interface.settings.number("macFilterMode")))
    {
    case MacFilterMode::kAllow:
        return listed;
    case MacFilterMode::kDeny:
        return !listed;
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
    tellStation(interface, interface.stations.back(), true);
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
    tellStation(interface, station, false);
    interface.away.push_back(std::move(station));
}

void Model::setWpsWindow(Interface& interface, WpsStatus status)
{
    interface.window.status = status;
    Record data(layout("EVT_AP_WPS_WIN_STATUS_CHANGED"));
    data.setNumber("radioId", interface.radio->id);
    data.setNumber("apId", interface.id);
    data.setNumber("status", static_cast<std::uint32_t>(status));
    tell("EVT_AP_WPS_WIN_STATUS_CHANGED", data);
}

void Model::beginRadarCheck(Radio& radio)
{
    const std::uint32_t channel = radio.settings.number("channel");
    radio.checking = radio.settings.number("enabled") != 0 && isRadarChannel(radio.band, channel) &&
                     radio.checkedChannels.count(channel) == 0 && timing.radarCheck > 0;
    radio.checkEnds = now() + timing.radarCheck;
}

void Model::tell(const char* event, const Record& data) const
{
    if (publish)
        publish(event, data);
}

void Model::tellStation(const Interface& interface, const Station& station, bool associated)
{
    history.push_back({now() - started_, associated ? 1u : 0u,
                       base::macText(station.address) + (associated ? " has come to " : " has left ") + interface.name});
    if (history.size() > kHistoryRoom)
        history.pop_front();
    Record data(layout("EVT_AP_ASSOCIATED_CHANGED"));
    data.setNumber("radioId", interface.radio->id);
    data.setNumber("apId", interface.id);
    data.setAddress("macAddress", station.address);
    data.setNumber("associated", associated ? 1 : 0);
    tell("EVT_AP_ASSOCIATED_CHANGED", data);
}

// --- What follows from the state ---------------------------------------------------------------------------------------------

bool Model::isReady(const Radio& radio)
{
    return radio.settings.number("enabled") != 0 && !radio.checking;
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

// Each level halves the power of the one before it, more or less: 3 dB.
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

// The strongest station's, a little less on each chain than on the one before.
std::int32_t Model::chainRssi(const Radio& radio, std::uint32_t chain) const
{
    std::int32_t strongest = radio.noise;
    for (const Interface& interface : radio.interfaces)
        for (const Station& station : interface.stations)
            strongest = std::max(strongest, station.rssi);
    return chain >= radio.chains ? radio.noise : std::max(radio.noise, strongest - static_cast<std::int32_t>(chain));
}

std::uint32_t Model::maximumRate(const Radio& radio) const
{
    const std::uint32_t perStream = radio.settings.text("phyMode") == "11ax"   ? 150
                                    : radio.settings.text("phyMode") == "11ac" ? 108
                                                                               : 54;
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

Counters Model::polled(const Radio& radio) const
{
    return radio.frozen ? *radio.frozen : counters(radio);
}

Counters Model::polled(const Interface& interface) const
{
    return interface.frozen ? *interface.frozen : counters(interface);
}

Counters Model::polled(const Station& station) const
{
    return station.frozen ? *station.frozen : counters(station);
}

} // namespace tarn::simulator
