// What a tester does to the gateway while it runs.
#include "lists.h"
#include "model.h"

#include <algorithm>

namespace tarn::simulator
{

void Model::replaceBy(const Model& other)
{
    std::vector<RadioSettings> before;
    before.reserve(radios.size());
    for (const Radio& radio : radios)
        before.push_back(radio.settings);
    for (const auto& field : descriptionOf<Model>().fields())
        field->copy(other, *this);
    link();
    indexClients();
    ready_.resize(radios.size());
    before.resize(radios.size());
    for (std::size_t i = 0; i < radios.size(); ++i)
    {
        Radio& radio = radios[i];
        if (before[i].channel != radio.settings.channel)
            publishRadio("EVT_RADIO_OPR_CHANNEL_CHANGED", radio);
        if (before[i].bandwidth != radio.settings.bandwidth)
            publishRadio("EVT_RADIO_OPR_BANDWIDTH_CHANGED", radio);
        reportReadiness(radio, before[i].enabled != radio.settings.enabled);
    }
    settle();
}

// --- Reset and reboot --------------------------------------------------------------------------------------------------------

void Model::loseSettings(Model& original)
{
    original.time = time;
    original.bootedAt = time;
    original.random = random;
    original.faults = faults;
    original.air = air;
    original.clients = clients;
    for (Radio& radio : original.radios)
        for (Interface& interface : radio.interfaces)
            interface.stations.clear();
    original.agenda = {};
    for (const auto& [at, due] : agenda.all())
        if (due.what == Occurrence::kRadarAppears)
            original.agenda.set(due, at);
    replaceBy(original);
}

void Model::restart(Interface& interface)
{
    std::vector<Station> stations;
    stations.swap(interface.stations);
    for (const Station& station : stations)
        reportAssociation(interface, station.address, false);
    if (interface.window.status == WpsStatus::kOpen)
        setWpsWindow(interface, WpsStatus::kCancelled);
    interface.window = {};
    interface.deferredSecurity = {};
    interface.departed = {};
    interface.associations = 0;
    interface.disassociations = 0;
    interface.frozen.reset();
}

void Model::restart(Radio& radio)
{
    for (Interface& interface : radio.interfaces)
        restart(interface);
    agenda.cancel({Occurrence::kScanEnds, radio.id});
    radio.scan = {};
    if (radio.dfsRadio.status != DfsRadioStatus::kStopped)
        stopDfsRadio(radio);
    radio.checkedChannels.clear(); // an availability check holds for the time that the radio is on
    radio.frozen.reset();
}

void Model::reboot()
{
    bootedAt = time;
    for (Radio& radio : radios)
        restart(radio);
    agenda.cancel({Occurrence::kDownloadEnds});
    agenda.cancel({Occurrence::kProductionEnds});
    module.download = {};
    module.productionStarted = false;
    module.initialised = false;
    module.thermalInitialised = false;
    module.thermalInterfaces.clear();
    module.telnetHolders.erase(module.telnetHolders.upper_bound(0), module.telnetHolders.end()); // 0 is the switch of the proxy
    service.errorMask = 0;
    service.stoppedPolling.clear();
    smartWiFi.history.clear();
    smartWiFi.snapshots = {};
    indexClients();
    for (Radio& radio : radios)
    {
        beginRadarCheck(radio);
        reportReadiness(radio, false);
    }
    settle();
}

// --- Clients -----------------------------------------------------------------------------------------------------------------

std::size_t Model::clientNumbered(const MacAddress& address) const
{
    const auto found = clientIndex_.find(address);
    if (found == clientIndex_.end())
        throw Refused{ReplyStatus::kNoSuchObject, base::macText(address) + " is the address of no client"};
    return found->second;
}

void Model::cancelReturns(const MacAddress& address)
{
    for (const Interface* const interface : allInterfaces())
        agenda.cancel({Occurrence::kClientReturns, interface->radio->id, interface->id, address});
}

void Model::moveClient(const MacAddress& address, std::uint32_t pathLoss)
{
    Client& client = clients[clientNumbered(address)];
    assign(client, &Client::pathLoss, pathLoss);
    client.gone = false;
    cancelReturns(address);
    settle();
}

void Model::removeClient(const MacAddress& address)
{
    const std::size_t index = clientNumbered(address);
    for (Interface* const interface : allInterfaces())
        release(*interface, address);
    cancelReturns(address);
    clients.erase(clients.begin() + static_cast<std::ptrdiff_t>(index));
    indexClients();
    settle();
}

// --- Faults ------------------------------------------------------------------------------------------------------------------

namespace
{

bool isFaultOf(const Fault& fault, const std::string& serviceId, const std::vector<std::string>& functions)
{
    return !fault.isOfEvents() && (!fault.service || *fault.service == serviceId) &&
           (!fault.function || contains(functions, *fault.function));
}

} // namespace

bool Model::hangs(const std::string& serviceId, const std::vector<std::string>& functions) const
{
    return std::any_of(faults.begin(), faults.end(),
                       [&](const Fault& fault)
                       { return fault.kind == FaultKind::kHang && isFaultOf(fault, serviceId, functions); });
}

template <typename Matches>
std::optional<Fault> Model::takeFaultThat(Matches matches)
{
    for (auto fault = faults.begin(); fault != faults.end(); ++fault)
    {
        if (!matches(*fault) || (fault->probability < 100 && random.upTo(99) >= fault->probability))
            continue;
        Fault taken = *fault;
        if (std::optional<std::uint32_t>& count = fault->count; count && --*count == 0)
            faults.erase(fault);
        return taken;
    }
    return std::nullopt;
}

std::optional<Fault> Model::takeFault(const std::string& serviceId, const std::vector<std::string>& functions)
{
    return takeFaultThat([&](const Fault& fault) { return isFaultOf(fault, serviceId, functions); });
}

std::optional<Fault> Model::takeEventFault(const std::string& event)
{
    return takeFaultThat([&](const Fault& fault) { return fault.isOfEvents() && (!fault.event || *fault.event == event); });
}

} // namespace tarn::simulator
