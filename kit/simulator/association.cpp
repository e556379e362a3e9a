// How clients choose access points, what their links carry, and what is counted of them.
#include "lists.h"
#include "model.h"

#include <algorithm>

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
    return interface.admits(address, associated) && !isGroupFull(interface, address);
}

// The limit of an SSID group is one of all of the module's interfaces in it; those that have come first may stay.
bool Model::isGroupFull(const Interface& interface, const MacAddress& address) const
{
    const auto limit = module.groupLimits.find(interface.settings.ssidGroupId);
    if (limit == module.groupLimits.end() || limit->second == 0 || !interface.radio->onModule)
        return false;
    std::uint32_t before = 0;
    for (const Radio& radio : radios)
        for (const Interface& other : radio.interfaces)
            if (radio.onModule && other.settings.ssidGroupId == interface.settings.ssidGroupId)
                for (const Station& station : other.stations)
                {
                    if (station.address == address)
                        return before >= limit->second;
                    ++before;
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
// it is associated already. Returns the radio that has another station, or null.
Radio* Model::seek(const Client& client, const std::vector<Interface*>& candidates)
{
    if (client.gone || idle_.count(clientIndex_.at(client.address)) == 0)
        return nullptr;
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
    if (best == nullptr)
        return nullptr;
    associate(*best, client);
    return best->radio;
}

// In the order of the scenario. Each looks at the access points of its network only, as there may be thousands.
void Model::seekAll()
{
    std::map<std::string, std::vector<Interface*>> byName;
    for (Interface* const interface : allInterfaces())
        byName[interface->settings.ssid].push_back(interface);
    std::set<Radio*> changed;
    for (const std::size_t index : std::vector<std::size_t>(idle_.begin(), idle_.end()))
        if (const auto found = byName.find(clients[index].ssid); found != byName.end())
            changed.insert(seek(clients[index], found->second));
    for (Radio* const radio : changed)
        if (radio != nullptr)
            refresh(*radio);
}

void Model::associate(Interface& interface, const Client& client)
{
    Station station;
    station.address = client.address;
    station.since = time;
    if (service.stoppedPolling.count(Polling::kStations) != 0)
        station.frozen = Counters{};
    ++interface.associations;
    idle_.erase(clientIndex_.at(client.address));
    interface.stations.push_back(station);
    reportAssociation(interface, client.address, true);
}

void Model::part(Interface& interface, std::size_t index)
{
    const Station station = interface.stations[index];
    interface.stations.erase(interface.stations.begin() + static_cast<std::ptrdiff_t>(index));
    interface.departed.add(counters(station));
    ++interface.disassociations;
    const std::size_t clientIndex = clientIndex_.at(station.address);
    idle_.insert(clientIndex);
    Client& client = clients[clientIndex];
    client.gone = client.patience == 0;
    if (!client.gone)
        agenda.set(returnOf(interface, client.address),
                   time + client.patience + random.upTo(static_cast<std::uint32_t>(timing.returnSpread)));
    reportAssociation(interface, station.address, false);
}

void Model::kickOut(Interface& interface, const MacAddress& address)
{
    for (std::size_t i = 0; i < interface.stations.size(); ++i)
        if (interface.stations[i].address == address)
        {
            part(interface, i);
            return settle(interface);
        }
    throw Refused{ReplyStatus::kNoSuchObject, base::macText(address) + " is not associated with " + interface.name};
}

void Model::settle(Radio& radio)
{
    if (radio.scan.status == ScanStatus::kRunning && radio.settings.enabled == 0)
        cancelScan(radio);
    if (radio.dfsRadio.status == DfsRadioStatus::kChecking &&
        (radio.settings.enabled == 0 || !contains(channelsFor(radio.channelCriteria()), radio.dfsRadio.channel)))
        stopDfsRadio(radio);
    for (Interface& interface : radio.interfaces)
        dismiss(interface);
    seekAll();
    refresh(radio);
}

void Model::settle(Interface& interface)
{
    dismiss(interface);
    seekAll();
    refresh(*interface.radio);
}

void Model::settle()
{
    for (Radio& radio : radios)
        settle(radio);
}

// Those that may not or cannot stay leave, and the WPS window of an access point that is down closes.
void Model::dismiss(Interface& interface)
{
    if (interface.window.status == WpsStatus::kOpen && (interface.settings.wpsEnabled == 0 || !interface.isUp()))
        setWpsWindow(interface, WpsStatus::kCancelled);
    for (std::size_t i = 0; i < interface.stations.size();)
    {
        const MacAddress& address = interface.stations[i].address;
        if (suits(interface, clients[clientIndex_.at(address)]) && admits(interface, address, i))
            ++i;
        else
            part(interface, i);
    }
}

void Model::reportAssociation(const Interface& interface, const MacAddress& address, bool associated)
{
    std::vector<HistoryEntry>& history = smartWiFi.history;
    if (history.size() == kHistoryRoom)
        history.erase(history.begin());
    history.push_back({secondsSinceStart(), associated ? 1u : 0u,
                       base::macText(address) + (associated ? " has come to " : " has left ") + interface.name});
    Record data(layout.record("EVT_AP_ASSOCIATED_CHANGED"));
    fill(data, interface);
    data.setAddress("macAddress", address);
    data.setNumber("associated", associated ? 1 : 0);
    publishEvent("EVT_AP_ASSOCIATED_CHANGED", data);
}

// --- Links -------------------------------------------------------------------------------------------------------------------

// Brings up to date what follows from the air and the stations.
void Model::refresh(Radio& radio)
{
    radio.noise = air.noise(radio.band);
    std::uint64_t airtime = 0; // us a second
    for (Interface& interface : radio.interfaces)
        for (Station& station : interface.stations)
        {
            refresh(interface, station);
            airtime += station.packetRate *
                       (kPacketBytes * 8 / station.txRate + kPacketBytes * 8 / station.rxRate + 2 * kPacketOverhead);
        }
    const std::uint32_t others = air.load(radio.band, radio.settings.channel, radio.settings.bandwidth);
    radio.ownLoad = static_cast<std::uint32_t>(std::min<std::uint64_t>(airtime / 10000, 100 - others));
    radio.channelLoad = others + radio.ownLoad;
}

void Model::refresh(const Interface& interface, Station& station) const
{
    const Radio& radio = *interface.radio;
    const Client& client = clients[clientIndex_.at(station.address)];
    LinkConditions link;
    link.mode = commonMode(radio.band, phyModeOf(radio.settings.phyMode), client.phyMode);
    link.bandwidth = radio.settings.bandwidth;
    link.streams = std::min(radio.chains, client.streams);
    link.hasShortGuardInterval = radio.settings.shortGuardInterval != 0;

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
