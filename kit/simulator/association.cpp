// How clients choose access points, what their links carry, and what is counted of them.
#include "lists.h"
#include "model.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace tarn::simulator
{

namespace
{

constexpr std::uint64_t kPacketBytes = 1000;
constexpr std::uint64_t kPacketOverhead = 100; // us: preamble, spaces between frames, acknowledgement

// Clients commonly prefer the bands in which less is sent.
std::int32_t preference(Band band)
{
    constexpr std::int32_t kPreference[] = {0, 10, 12}; // dB
    return kPreference[static_cast<std::size_t>(band)];
}

bool isOpen(const InterfaceSettings& settings)
{
    return settings.beaconType == "open";
}

Due returnOf(const Interface& interface, const MacAddress& address)
{
    return {Occurrence::kClientReturns, interface.radio->id, interface.id, address};
}

} // namespace

// --- Choosing ----------------------------------------------------------------------------------------------------------------

// Whether the client finds the network it looks for there, and can take part in it.
bool Model::suits(const Interface& interface, const Client& client) const
{
    const Radio& radio = *interface.radio;
    const InterfaceSettings& settings = interface.settings;
    return interface.isUp() && client.bands.count(radio.band) != 0 && settings.ssid == client.ssid &&
           (isOpen(settings) || settings.passphrase == client.passphrase) &&
           (client.phyMode != PhyMode::k11b || radio.settings.disable11b == 0) && signalAt(radio, client) >= kWeakestSignal;
}

std::int32_t Model::signalAt(const Radio& radio, const Client& client) const
{
    return chainPower(radio, 0) - client.pathLossIn(radio.band);
}

bool Model::admits(const Interface& interface, const MacAddress& address, std::size_t associated) const
{
    return interface.admits(address, associated) && !isGroupFull(interface, associated);
}

// The limit of an SSID group is one of all of the module's interfaces in it. Before a client that is new come all of their
// stations, before one that is associated those of the interfaces before its own, and that many of its own.
bool Model::isGroupFull(const Interface& interface, std::size_t associated) const
{
    const auto limit = module.groupLimits.find(interface.settings.ssidGroupId);
    if (limit == module.groupLimits.end() || limit->second == 0 || !interface.radio->onModule)
        return false;
    std::size_t before = 0;
    for (const Radio& radio : radios)
        for (const Interface& other : radio.interfaces)
        {
            if (&other == &interface && associated < interface.stations.size())
                return before + associated >= limit->second;
            if (radio.onModule && other.settings.ssidGroupId == interface.settings.ssidGroupId)
                before += other.stations.size();
        }
    return before >= limit->second;
}

std::vector<Interface*> Model::allInterfaces()
{
    std::vector<Interface*> all;
    for (Radio& radio : radios)
        for (Interface& interface : radio.interfaces)
            all.push_back(&interface);
    return all;
}

// Lets the client come to the access point that it hears best of those that take it and that it does not keep away from, unless
// it is associated already.
void Model::seek(std::size_t index, const std::vector<Interface*>& candidates)
{
    const Client& client = clients[index];
    if (client.gone || !isIdle_[index])
        return;
    Interface* best = nullptr;
    std::int32_t bestSignal = 0;
    for (Interface* const interface : candidates)
    {
        const Radio& radio = *interface->radio;
        if (!suits(*interface, client) || agenda.has(returnOf(*interface, client.address)) ||
            !admits(*interface, client.address, interface->stations.size()))
            continue;
        const std::int32_t signal = signalAt(radio, client) + preference(radio.band);
        if (best != nullptr && signal <= bestSignal)
            continue;
        best = interface;
        bestSignal = signal;
    }
    if (best != nullptr)
        associate(*best, client);
}

// In the order of the scenario. Each looks at the access points of its network only, as there may be thousands.
void Model::seekAll()
{
    std::unordered_map<std::string_view, std::vector<Interface*>> byName;
    for (Interface* const interface : allInterfaces())
        if (interface->isUp())
            byName[interface->settings.ssid].push_back(interface);
    for (std::size_t index = 0; index < clients.size(); ++index)
        if (const auto found = isIdle_[index] ? byName.find(clients[index].ssid) : byName.end(); found != byName.end())
            seek(index, found->second);
}

void Model::associate(Interface& interface, const Client& client)
{
    Station station;
    station.address = client.address;
    station.since = time;
    if (service.stoppedPolling.count(Polling::kStations) != 0)
        station.frozen = Counters{};
    ++interface.associations;
    isIdle_[clientIndex_.at(client.address)] = false;
    interface.stations.push_back(station);
    interface.radio->isStale = true;
    reportAssociation(interface, client.address, true);
}

// What follows when a station has left.
void Model::part(Interface& interface, const Station& station)
{
    interface.radio->isStale = true;
    interface.departed.add(counters(station));
    ++interface.disassociations;
    const std::size_t clientIndex = clientIndex_.at(station.address);
    isIdle_[clientIndex] = true;
    Client& client = clients[clientIndex];
    client.gone = client.patience == 0;
    if (!client.gone)
        agenda.set(returnOf(interface, client.address),
                   time + client.patience + random.upTo(static_cast<std::uint32_t>(timing.returnSpread)));
    reportAssociation(interface, station.address, false);
}

void Model::kickOut(Interface& interface, const MacAddress& address)
{
    if (!release(interface, address))
        throw Refused{ReplyStatus::kNoSuchObject, base::macText(address) + " is not associated with " + interface.name};
    settle(interface);
}

// Returns whether it was associated.
bool Model::release(Interface& interface, const MacAddress& address)
{
    const auto found = std::find_if(interface.stations.begin(), interface.stations.end(),
                                    [&](const Station& station) { return station.address == address; });
    if (found == interface.stations.end())
        return false;
    const Station station = *found;
    interface.stations.erase(found);
    part(interface, station);
    return true;
}

void Model::releaseAll(Interface& interface)
{
    const std::vector<Station> stations = std::exchange(interface.stations, {});
    for (const Station& station : stations)
        part(interface, station);
}

void Model::endWhatCannotGoOn(Radio& radio)
{
    if (radio.scan.status == ScanStatus::kRunning && radio.settings.enabled == 0)
        cancelScan(radio);
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking &&
        (radio.settings.enabled == 0 || !contains(channelsFor(radio.channelCriteria()), radio.dfsRadio.channel)))
        stopDfsRadio(radio);
}

// Those that are sent away by one of the radios do not come to another of them which then sends them away, too.
void Model::settle(const std::vector<Radio*>& changed)
{
    for (Radio* const radio : changed)
    {
        radio->isStale = true;
        endWhatCannotGoOn(*radio);
        for (Interface& interface : radio->interfaces)
            dismiss(interface);
    }
    seekAll();
    refreshStale();
}

void Model::settle(Radio& radio)
{
    settle(std::vector<Radio*>{&radio});
}

void Model::settle(Interface& interface)
{
    dismiss(interface);
    seekAll();
    refreshStale();
}

void Model::settle()
{
    std::vector<Radio*> all;
    all.reserve(radios.size());
    for (Radio& radio : radios)
        all.push_back(&radio);
    settle(all);
}

// Those that may not or cannot stay leave, and the WPS window of an access point that is down closes.
void Model::dismiss(Interface& interface)
{
    if (interface.window.status == WpsStatus::kOpen && (interface.settings.wpsEnabled == 0 || !interface.isUp()))
        setWpsWindow(interface, WpsStatus::kCancelled);
    std::vector<Station>& staying = interface.stations;
    const std::vector<Station> stations = std::exchange(staying, {});
    staying.reserve(stations.size());
    for (const Station& station : stations)
    {
        staying.push_back(station); // of those that are too many, the ones that have come last leave
        if (suits(interface, clients[clientIndex_.at(station.address)]) &&
            admits(interface, station.address, staying.size() - 1))
            continue;
        staying.pop_back();
        part(interface, station);
    }
}

void Model::reportAssociation(const Interface& interface, const MacAddress& address, bool associated)
{
    std::deque<HistoryEntry>& history = smartWiFi.history;
    if (history.size() == kHistoryRoom)
        history.pop_front();
    history.push_back({secondsSinceStart(), associated ? 1u : 0u,
                       base::macText(address) + (associated ? " has come to " : " has left ") + interface.name});
    Record data(layout.record("EVT_AP_ASSOCIATED_CHANGED"));
    fill(data, interface);
    data.setAddress("macAddress", address);
    data.setNumber("associated", associated ? 1 : 0);
    publishEvent("EVT_AP_ASSOCIATED_CHANGED", data);
}

// --- Links -------------------------------------------------------------------------------------------------------------------

void Model::refreshStale()
{
    for (Radio& radio : radios)
        if (std::exchange(radio.isStale, false))
            refresh(radio);
}

// Brings up to date what follows from the air and the stations.
void Model::refresh(Radio& radio) const
{
    radio.noise = air.noise(radio.band);
    LinkConditions best; // of a link, as far as the radio decides
    best.mode = phyModeOf(radio.settings.phyMode);
    best.bandwidth = radio.settings.bandwidth;
    best.streams = radio.chains;
    best.hasShortGuardInterval = radio.settings.shortGuardInterval != 0;
    std::uint64_t airtime = 0; // us a second
    for (Interface& interface : radio.interfaces)
        for (Station& station : interface.stations)
        {
            refresh(interface, best, station);
            airtime += station.packetRate *
                       (kPacketBytes * 8 / station.txRate + kPacketBytes * 8 / station.rxRate + 2 * kPacketOverhead);
        }
    const std::uint32_t others = air.load(radio.band, radio.settings.channel, radio.settings.bandwidth);
    radio.ownLoad = static_cast<std::uint32_t>(std::min<std::uint64_t>(airtime / 10000, 100 - others));
    radio.channelLoad = others + radio.ownLoad;
}

void Model::refresh(const Interface& interface, const LinkConditions& best, Station& station) const
{
    const Radio& radio = *interface.radio;
    const Client& client = clients[clientIndex_.at(station.address)];
    LinkConditions link = best;
    link.mode = commonMode(radio.band, best.mode, client.phyMode);
    link.streams = std::min(best.streams, client.streams);

    link.signalToNoise = client.rssiIn(radio.band) - radio.noise;
    const LinkRate received = rateOf(link);
    link.signalToNoise = signalAt(radio, client) - kClientNoise;
    if (const std::string& mcs = interface.settings.mcsRate; mcs != "auto")
        link.highestMcs = static_cast<std::uint32_t>(std::stoul(mcs.substr(3)));
    const LinkRate sent = rateOf(link);

    station.rssi = client.rssiIn(radio.band);
    station.txMcs = sent.mcs;
    station.txRate = sent.rate;
    station.rxMcs = received.mcs;
    station.rxRate = received.rate;
    station.chains = link.streams;
    station.phyMode = link.mode;
    station.packetRate = client.packetRate;
}

// --- What is counted ---------------------------------------------------------------------------------------------------------

std::uint32_t Model::secondsAssociated(const Station& station) const
{
    return static_cast<std::uint32_t>((time - station.since) / 1000);
}

Counters Model::counters(const Station& station) const
{
    const std::uint64_t packets = (time - station.since) * station.packetRate / 1000;
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
