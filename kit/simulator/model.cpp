#include "model.h"

#include "base/join.h"
#include "base/quote.h"
#include "lists.h"
#include "security_kind.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tarn::simulator
{

Model::Model(GatewayLayout layoutInUse) : layout(std::move(layoutInUse))
{
}

void Model::start()
{
    link();
    ready_.clear();
    for (const Radio& radio : radios)
        ready_.push_back(radio.isReady());
    indexClients();
    seekAll();
    refreshStale();
}

void Model::link()
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
        }
    }
}

void Model::indexClients()
{
    isIdle_.assign(clients.size(), true);
    clientIndex_.clear();
    std::size_t index = 0;
    for (const Client& client : clients)
        clientIndex_.emplace(client.address, index++);
    for (const Radio& radio : radios)
        for (const Interface& interface : radio.interfaces)
            for (const Station& station : interface.stations)
                isIdle_[clientIndex_.at(station.address)] = false;
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
    case Occurrence::kNonOccupancyEnds:
        endNonOccupancy(radio(due.radioId), due.channel);
        break;
    case Occurrence::kRadarAppears:
        radarAppears(due.channel);
        break;
    case Occurrence::kClientReturns:
        seek(clientIndex_.at(due.address), allInterfaces());
        refreshStale();
        break;
    }
}

std::uint32_t Model::secondsSinceStart() const
{
    return static_cast<std::uint32_t>((time - bootedAt) / 1000);
}

// --- Finding -----------------------------------------------------------------------------------------------------------------

Radio& Model::radio(std::uint32_t id)
{
    if (id == 0 || id > radios.size())
        throw Refused{ReplyStatus::kNoSuchObject,
                      "radio " + std::to_string(id) + "; there are " + std::to_string(radios.size()) + ", from 1"};
    return radios[id - 1];
}

Interface& Model::interfaceOf(std::uint32_t radioId, std::uint32_t interfaceId)
{
    Radio& owner = radio(radioId);
    if (interfaceId == 0 || interfaceId > owner.interfaces.size())
        throw Refused{ReplyStatus::kNoSuchObject, "interface " + std::to_string(interfaceId) + "; radio " +
                                                      std::to_string(radioId) + " has " +
                                                      std::to_string(owner.interfaces.size()) + ", from 1"};
    return owner.interfaces[interfaceId - 1];
}

Interface& Model::moduleInterface(const std::string& name)
{
    for (Radio& radio : radios)
        for (Interface& interface : radio.interfaces)
            if (radio.onModule && interface.name == name)
                return interface;
    throw Refused{ReplyStatus::kNoSuchObject, "interface " + base::inQuotes(name) + "; the module has none of that name"};
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
    throw Refused{ReplyStatus::kNoSuchObject, "no radio is the Wi-Fi module's"};
}

SteeringDomain& Model::steeringDomain(const MobilityDomain& id)
{
    for (SteeringDomain& domain : smartWiFi.domains)
        if (domain.id == id)
            return domain;
    throw Refused{ReplyStatus::kNoSuchObject, "there is no such mobility domain"};
}

// --- Changing ----------------------------------------------------------------------------------------------------------------

namespace
{

// A beacon type takes its usual authentication and encryption with it, where those that there are do not belong to it; those
// that are given have to.
void fitSecurity(InterfaceSettings& settings, const Changes<InterfaceSettings>& changes)
{
    const SecurityKind& kind = securityKind(settings.beaconType);
    const auto fit = [&](std::string InterfaceSettings::*member, const std::vector<std::string>& choices)
    {
        if (contains(choices, settings.*member))
            return;
        if (changes.has(member))
            throw Refused{ReplyStatus::kInvalidValue, base::inQuotes(settings.*member) + " with beacon type " +
                                                          settings.beaconType + "; expected one of " + base::join(choices)};
        settings.*member = choices.front();
    };
    fit(&InterfaceSettings::authenticationMode, kind.authentication);
    fit(&InterfaceSettings::encryptionModes, kind.encryption);
}

} // namespace

void Model::change(Interface& interface, const Changes<InterfaceSettings>& changes)
{
    InterfaceSettings changed = interface.settings;
    changes.applyTo(changed);
    fitSecurity(changed, changes);
    if (changes.has(&InterfaceSettings::roaming) && changed.roaming != 0 && !interface.radio->supportsRoaming)
        throw Refused{ReplyStatus::kSwitchedOff, "radio " + interface.radio->name + " does not support roaming"};
    const InterfaceSettings before = std::exchange(interface.settings, std::move(changed));
    const InterfaceSettings& now = interface.settings;
    const auto network = [](const InterfaceSettings& settings)
    {
        return std::tie(settings.ssid, settings.beaconType, settings.authenticationMode, settings.encryptionModes,
                        settings.passphrase);
    };
    if (network(before) != network(now))
        releaseAll(interface); // it is another network to them
    if (before.mcsRate != now.mcsRate)
        interface.radio->isStale = true; // links depend on no other setting of an interface
    if (before.ssidGroupId != now.ssidGroupId)
        settle(); // the limit of a group is one of several interfaces
    else
        settle(interface);
}

void Model::change(const Changes<ModuleSettings>& changes)
{
    changes.applyTo(module.settings);
    if (changes.has(&ModuleSettings::transmitPowerCap))
        settle(); // clients hear it louder or less loud
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
    change(interface, interface.deferredSecurity);
    interface.deferredSecurity = {};
}

Interface& Model::createInterface(const std::string& name, bool enabled)
{
    Radio& radio = moduleRadio();
    if (!isInterfaceName(name))
        throw Refused{ReplyStatus::kInvalidValue, base::inQuotes(name) + " is no name that an interface can have"};
    if (hasInterface(name))
        throw Refused{ReplyStatus::kAlreadyThere, "interface " + name + " is there already"};
    if (radio.interfaces.size() >= kInterfaceRoom)
        throw Refused{ReplyStatus::kFull, "radio " + radio.name + " has no room for another interface"};

    Interface& interface = radio.interfaces.emplace_back();
    interface.id = static_cast<std::uint32_t>(radio.interfaces.size());
    interface.name = name;
    interface.radio = &radio;
    interface.bssid = freeAddress(radio.interfaces.front().bssid);
    interface.settings.enabled = enabled ? 1 : 0;
    if (service.stoppedPolling.count(Polling::kInterfaces) != 0)
        interface.frozen = Counters{};
    settle(interface);
    return interface;
}

// The next one, locally administered, that nothing in the gateway or around it has.
MacAddress Model::freeAddress(MacAddress address) const
{
    const auto isTaken = [&]
    {
        for (const Radio& radio : radios)
            for (const Interface& interface : radio.interfaces)
                if (interface.bssid == address)
                    return true;
        const auto isIts = [&](const Neighbour& neighbour) { return neighbour.bssid == address; };
        return clientIndex_.count(address) != 0 || std::any_of(air.neighbours.begin(), air.neighbours.end(), isIts);
    };
    address[0] = static_cast<std::uint8_t>(address[0] | 2);
    while (isTaken())
        for (std::size_t i = address.size() - 1; i > 0 && ++address.at(i) == 0; --i)
        {
        }
    return address;
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
        throw Refused{ReplyStatus::kInvalidValue, base::macText(address) + " is no address of one device"};
    if (contains(list, address))
        throw Refused{ReplyStatus::kAlreadyThere, base::macText(address) + " is in the list already"};
    if (list.size() >= room)
        throw Refused{ReplyStatus::kFull, "the list has room for " + std::to_string(room)};
    list.push_back(address);
}

void Model::removeAddress(std::vector<MacAddress>& list, const MacAddress& address)
{
    const auto found = std::find(list.begin(), list.end(), address);
    if (found == list.end())
        throw Refused{ReplyStatus::kNotThere, base::macText(address) + " is not in the list"};
    list.erase(found);
}

// --- What takes time ---------------------------------------------------------------------------------------------------------

void Model::startScan(Radio& radio, std::uint32_t flags)
{
    if (radio.settings.enabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff, "radio " + radio.name + " is switched off"};
    if (radio.scan.status == ScanStatus::kRunning)
        throw Refused{ReplyStatus::kBusy, "a scan of radio " + radio.name + " is running"};
    radio.scan.status = ScanStatus::kRunning;
    agenda.set({Occurrence::kScanEnds, radio.id}, time + timing.scan);
    radio.scan.flags = flags;
}

void Model::openWpsWindow(Interface& interface, WpsMethod method, const std::string& pin)
{
    if (method == WpsMethod::kPin && !isWpsPin(pin))
        throw Refused{ReplyStatus::kInvalidValue, base::inQuotes(pin) + " is no WPS PIN of eight digits with its check digit"};
    if (interface.settings.wpsEnabled == 0 || !interface.isUp())
        throw Refused{ReplyStatus::kSwitchedOff, "WPS is switched off, or interface " + interface.name + " is down"};
    WpsWindow& window = interface.window;
    if (window.status == WpsStatus::kOpen)
        throw Refused{ReplyStatus::kBusy, "the WPS window of interface " + interface.name + " is open"};
    window.method = method;
    window.pin = method == WpsMethod::kPin ? pin : "";
    agenda.set({Occurrence::kWpsWindowCloses, interface.radio->id, interface.id}, time + timing.wpsWindow);
    setWpsWindow(interface, WpsStatus::kOpen);
}

void Model::cancelWpsWindow(Interface& interface)
{
    if (interface.window.status != WpsStatus::kOpen)
        throw Refused{ReplyStatus::kNotThere, "the WPS window of interface " + interface.name + " is not open"};
    setWpsWindow(interface, WpsStatus::kCancelled);
}

void Model::startDownload(const std::string& path)
{
    Download& download = module.download;
    if (download.state == DownloadState::kRunning)
        throw Refused{ReplyStatus::kBusy, "a download is running"};
    download.state = DownloadState::kRunning;
    download.path = path;
    agenda.set({Occurrence::kDownloadEnds}, time + timing.download);
}

void Model::startProduction()
{
    if (agenda.has({Occurrence::kProductionEnds}))
        throw Refused{ReplyStatus::kBusy, "a production test is running"};
    module.productionStarted = true;
    agenda.set({Occurrence::kProductionEnds}, time + timing.production);
}

bool Model::isProductionDone() const
{
    return module.productionStarted && !agenda.has({Occurrence::kProductionEnds});
}

void Model::cancelScan(Radio& radio)
{
    if (radio.scan.status != ScanStatus::kRunning)
        throw Refused{ReplyStatus::kNotThere, "no scan of radio " + radio.name + " is running"};
    radio.scan.status = ScanStatus::kCancelled;
    agenda.cancel({Occurrence::kScanEnds, radio.id});
}

void Model::endScan(Radio& radio) const
{
    radio.scan.status = ScanStatus::kDone;
    radio.scan.results = air.neighboursIn(radio.band);
}

std::uint32_t Model::wpsSecondsLeft(const Interface& interface) const
{
    const std::optional<Milliseconds> closes = agenda.time({Occurrence::kWpsWindowCloses, interface.radio->id, interface.id});
    return closes ? static_cast<std::uint32_t>((*closes - time + 999) / 1000) : 0;
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

void Model::publishEvent(const char* event, const Record& data) const
{
    if (publish)
        publish(event, data);
}

} // namespace tarn::simulator
