#include "model.h"

#include "lists.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

constexpr std::uint64_t kPacketBytes = 1000;

bool isInterfaceName(const std::string& name)
{
    const auto isOdd = [](char character) { return character <= ' ' || character > '~' || character == '/'; };
    return !name.empty() && name.size() <= 15 && std::none_of(name.begin(), name.end(), isOdd);
}

} // namespace

Model::Model(GatewayLayout layoutInUse) : layout(std::move(layoutInUse))
{
}

void Model::start()
{
    std::uint32_t radioId = 0;
    for (Radio& radio : radios)
    {
        radio.id = ++radioId;
        std::uint32_t interfaceId = 0;
        for (Interface& interface : radio.interfaces)
        {
            interface.id = ++interfaceId;
            interface.radio = &radio;
            bringIn(interface);
        }
        settle(radio);
    }
}

// The stations of a scenario that are not associated yet come now.
void Model::bringIn(Interface& interface)
{
    std::vector<Station>& stations = interface.stations;
    const auto isAssociated = [](const Station& station) { return station.since.has_value(); };
    const auto first = std::stable_partition(stations.begin(), stations.end(), isAssociated);
    interface.away.insert(interface.away.begin(), first, stations.end());
    stations.erase(first, stations.end());
}

void Model::advance(Milliseconds to)
{
    for (std::optional<Milliseconds> next = agenda.next(); next && *next <= to; next = agenda.next())
    {
        time = std::max(time, *next);
        happen(agenda.take());
    }
    time = std::max(time, to);
}

void Model::happen(const Due& due)
{
    switch (due.what)
    {
    case Occurrence::kDownloadEnds:
        module.download.state =
            contains(module.missingFiles, module.download.path) ? DownloadState::kFailed : DownloadState::kDone;
        break;
    case Occurrence::kProductionEnds:
        break; // that it is not due any more is what is asked for
    case Occurrence::kScanEnds:
        endScan(radio(due.radioId));
        break;
    case Occurrence::kRadarCheckEnds:
        endRadarCheck(radio(due.radioId));
        break;
    case Occurrence::kDfsRadioEnds:
        endDfsRadioCheck(radio(due.radioId));
        break;
    case Occurrence::kWpsWindowCloses:
        setWpsWindow(interfaceOf(due.radioId, due.interfaceId), WpsStatus::kExpired);
        break;
    case Occurrence::kStationReturns:
        settle(interfaceOf(due.radioId, due.interfaceId));
        break;
    }
}

std::uint32_t Model::secondsSinceStart() const
{
    return static_cast<std::uint32_t>(time / 1000);
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

SteeringDomain& Model::steeringDomain(const MobilityDomain& id)
{
    for (SteeringDomain& domain : smartWiFi.domains)
        if (domain.id == id)
            return domain;
    throw Refused{ReplyStatus::kNoSuchObject};
}

// --- Changing ----------------------------------------------------------------------------------------------------------------

void Model::change(Radio& radio, const Changes<RadioSettings>& changes)
{
    RadioSettings changed = radio.settings;
    changes.applyTo(changed);
    if (changes.has(&RadioSettings::channel) && !changes.has(&RadioSettings::autoChannel))
        changed.autoChannel = 0;
    if (changed.autoChannel != 0)
        changed.channel = radio.quietestChannel(changed);
    if (!contains(radio.channelsWith(changed), changed.channel))
        throw Refused{ReplyStatus::kInvalidValue};

    const RadioSettings before = std::exchange(radio.settings, std::move(changed));
    const auto publishChange = [&](const char* event)
    {
        Record data(layout.record(event));
        fill(data, radio);
        publishEvent(event, data);
    };
    if (before.channel != radio.settings.channel)
    {
        publishChange("EVT_RADIO_OPR_CHANNEL_CHANGED");
        beginRadarCheck(radio);
    }
    if (before.bandwidth != radio.settings.bandwidth)
        publishChange("EVT_RADIO_OPR_BANDWIDTH_CHANGED");
    if (before.enabled != radio.settings.enabled)
    {
        publishChange("EVT_RADIO_STATUS_CHANGED");
        beginRadarCheck(radio);
    }
    settle(radio);
}

void Model::change(Interface& interface, const Changes<InterfaceSettings>& changes)
{
    changes.applyTo(interface.settings);
    settle(interface);
}

void Model::changeSecurity(Interface& interface, const Changes<InterfaceSettings>& changes)
{
    if (interface.settings.securityDeferMode == 0)
        change(interface, changes);
    else
        interface.deferredSecurity.add(changes);
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
    interface.settings.enabled = enabled ? 1 : 0;
    if (service.stoppedPolling.count(Polling::kInterfaces) != 0)
        interface.frozen = Counters{};
    return interface;
}

void Model::kickOut(Interface& interface, const MacAddress& address)
{
    for (std::size_t i = 0; i < interface.stations.size(); ++i)
        if (interface.stations[i].address == address)
        {
            part(interface, i);
            return settle(interface); // somebody else may take the place
        }
    throw Refused{ReplyStatus::kNoSuchObject};
}

void Model::stopPolling(Polling what, bool stop)
{
    for (const Polling kind : {Polling::kRadios, Polling::kInterfaces, Polling::kStations})
    {
        if (what != Polling::kAll && what != kind)
            continue;
        const bool isStopped = service.stoppedPolling.count(kind) != 0;
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
            service.stoppedPolling.insert(kind);
        else
            service.stoppedPolling.erase(kind);
    }
}

void Model::add(Interface& interface, std::vector<MacAddress> Interface::*list, const MacAddress& address, std::size_t room)
{
    addAddress(interface.*list, address, room);
    settle(interface);
}

void Model::remove(Interface& interface, std::vector<MacAddress> Interface::*list, const MacAddress& address)
{
    removeAddress(interface.*list, address);
    settle(interface);
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

void Model::startScan(Radio& radio, std::uint32_t flags)
{
    if (radio.settings.enabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
    if (radio.scan.status == ScanStatus::kRunning)
        throw Refused{ReplyStatus::kBusy};
    radio.scan.status = ScanStatus::kRunning;
    agenda.set({Occurrence::kScanEnds, radio.id}, time + timing.scan);
    radio.scan.flags = flags;
}

void Model::openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin)
{
    if (method == WpsMethod::kPin && !isWpsPin(pin))
        throw Refused{ReplyStatus::kInvalidValue};
    if (interface.settings.wpsEnabled == 0 || !interface.isUp())
        throw Refused{ReplyStatus::kSwitchedOff};
    WpsWindow& window = interface.window;
    if (window.status == WpsStatus::kOpen)
        throw Refused{ReplyStatus::kBusy};
    window.method = method;
    window.pin = method == WpsMethod::kPin ? pin : "";
    agenda.set({Occurrence::kWpsWindowCloses, interface.radio->id, interface.id}, time + timing.wpsWindow);
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
    agenda.set({Occurrence::kDownloadEnds}, time + timing.download);
}

void Model::startProduction()
{
    if (agenda.has({Occurrence::kProductionEnds}))
        throw Refused{ReplyStatus::kBusy};
    module.productionStarted = true;
    agenda.set({Occurrence::kProductionEnds}, time + timing.production);
}

void Model::startDfsRadio(Radio& radio, std::uint32_t channel)
{
    if (radio.settings.enabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking)
        throw Refused{ReplyStatus::kBusy};
    std::vector<std::uint32_t> unchecked = radio.allowedChannels();
    const auto needsNoCheck = [&](std::uint32_t candidate) { return !radio.needsRadarCheck(candidate); };
    unchecked.erase(std::remove_if(unchecked.begin(), unchecked.end(), needsNoCheck), unchecked.end());
    if (channel == 0 && unchecked.empty())
        throw Refused{ReplyStatus::kNotThere};
    if (channel != 0 && (!isRadarChannel(radio.band, channel) || !contains(radio.allowedChannels(), channel)))
        throw Refused{ReplyStatus::kInvalidValue};
    radio.dfsRadio.status = DfsRadioStatus::kChecking;
    radio.dfsRadio.channel = channel != 0 ? channel : unchecked.front();
    agenda.set({Occurrence::kDfsRadioEnds, radio.id}, time + timing.radarCheck);
}

bool Model::isProductionDone() const
{
    return module.productionStarted && !agenda.has({Occurrence::kProductionEnds});
}

void Model::cancelScan(Radio& radio)
{
    if (radio.scan.status != ScanStatus::kRunning)
        throw Refused{ReplyStatus::kNotThere};
    radio.scan.status = ScanStatus::kCancelled;
    agenda.cancel({Occurrence::kScanEnds, radio.id});
}

void Model::endScan(Radio& radio)
{
    radio.scan.status = ScanStatus::kDone;
    radio.scan.results = radio.neighbours;
}

void Model::stopDfsRadio(Radio& radio)
{
    if (radio.dfsRadio.status == DfsRadioStatus::kStopped)
        throw Refused{ReplyStatus::kNotThere};
    radio.dfsRadio = {};
    agenda.cancel({Occurrence::kDfsRadioEnds, radio.id});
}

void Model::endDfsRadioCheck(Radio& radio)
{
    radio.dfsRadio.status = DfsRadioStatus::kReady;
    radio.checkedChannels.insert(radio.dfsRadio.channel);
}

void Model::endRadarCheck(Radio& radio)
{
    radio.checking = false;
    radio.checkedChannels.insert(radio.settings.channel);
    settle(radio);
}

std::uint32_t Model::wpsSecondsLeft(const Interface& interface) const
{
    const std::optional<Milliseconds> closes = agenda.time({Occurrence::kWpsWindowCloses, interface.radio->id, interface.id});
    return closes ? static_cast<std::uint32_t>((*closes - time + 999) / 1000) : 0;
}

void Model::settle(Radio& radio)
{
    if (radio.scan.status == ScanStatus::kRunning && radio.settings.enabled == 0)
        cancelScan(radio);
    for (Interface& interface : radio.interfaces)
        settle(interface);
}

void Model::settle(Interface& interface)
{
    if (interface.window.status == WpsStatus::kOpen && (interface.settings.wpsEnabled == 0 || !interface.isUp()))
        setWpsWindow(interface, WpsStatus::kCancelled);
    for (std::size_t i = 0; i < interface.stations.size();)
        if (interface.admits(interface.stations[i].address, i))
            ++i;
        else
            part(interface, i);
    for (std::size_t i = 0; i < interface.away.size();)
        if (isWaiting(interface, interface.away[i]) && interface.admits(interface.away[i].address, interface.stations.size()))
        {
            const auto place = interface.away.begin() + static_cast<std::ptrdiff_t>(i);
            Station station = std::move(*place);
            interface.away.erase(place);
            associate(interface, std::move(station));
        }
        else
            ++i;
}

// Whether the station would come if it were admitted.
bool Model::isWaiting(const Interface& interface, const Station& station) const
{
    return !station.staysAway && !agenda.has({Occurrence::kStationReturns, interface.radio->id, interface.id, station.address});
}

void Model::associate(Interface& interface, Station station)
{
    station.since = time;
    if (service.stoppedPolling.count(Polling::kStations) != 0)
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
    station.since.reset();
    station.staysAway = timing.reassociation == 0;
    if (!station.staysAway)
        agenda.set({Occurrence::kStationReturns, interface.radio->id, interface.id, station.address},
                   time + timing.reassociation + random.upTo(static_cast<std::uint32_t>(timing.reassociationSpread)));
    station.frozen.reset();
    reportAssociation(interface, station, false);
    interface.away.push_back(std::move(station));
}

void Model::setWpsWindow(Interface& interface, WpsStatus status)
{
    interface.window.status = status;
    if (status != WpsStatus::kOpen)
        agenda.cancel({Occurrence::kWpsWindowCloses, interface.radio->id, interface.id});
    Record data(layout.record("EVT_AP_WPS_WIN_STATUS_CHANGED"));
    fill(data, interface);
    data.setNumber("status", static_cast<std::uint32_t>(status));
    publishEvent("EVT_AP_WPS_WIN_STATUS_CHANGED", data);
}

void Model::beginRadarCheck(Radio& radio)
{
    radio.checking = radio.settings.enabled != 0 && timing.radarCheck > 0 && radio.needsRadarCheck(radio.settings.channel);
    if (radio.checking)
        agenda.set({Occurrence::kRadarCheckEnds, radio.id}, time + timing.radarCheck);
    else
        agenda.cancel({Occurrence::kRadarCheckEnds, radio.id});
}

void Model::publishEvent(const char* event, const Record& data) const
{
    if (publish)
        publish(event, data);
}

void Model::reportAssociation(const Interface& interface, const Station& station, bool associated)
{
    std::vector<HistoryEntry>& history = smartWiFi.history;
    if (history.size() == kHistoryRoom)
        history.erase(history.begin());
    history.push_back({secondsSinceStart(), associated ? 1u : 0u,
                       base::macText(station.address) + (associated ? " has come to " : " has left ") + interface.name});
    Record data(layout.record("EVT_AP_ASSOCIATED_CHANGED"));
    fill(data, interface);
    data.setAddress("macAddress", station.address);
    data.setNumber("associated", associated ? 1 : 0);
    publishEvent("EVT_AP_ASSOCIATED_CHANGED", data);
}

// --- What follows from the state ---------------------------------------------------------------------------------------------

// A level is a percentage of the maximum power: half of it is 3 dB less.
std::int32_t Model::chainPower(const Radio& radio, std::uint32_t chain) const
{
    if (chain >= radio.chains || radio.settings.enabled == 0)
        return 0;
    constexpr std::int32_t kCap = 20; // dBm
    const std::int32_t most =
        radio.onModule && module.settings.transmitPowerCap != 0 ? std::min(radio.maximumPower, kCap) : radio.maximumPower;
    switch (radio.settings.transmitPower)
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

std::uint32_t Model::secondsAssociated(const Station& station) const
{
    return static_cast<std::uint32_t>((time - station.since.value_or(time)) / 1000);
}

Counters Model::counters(const Station& station) const
{
    const std::uint64_t packets = (time - station.since.value_or(time)) * station.packetRate / 1000;
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
