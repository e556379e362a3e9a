// The device service's control of the Smart WiFi steering daemon.
#include "base/hexadecimal.h"
#include "description.h"
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

void requireDaemon(const Model& model)
{
    if (model.module.settings.smartWiFiEnabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff};
}

void resetDaemon(Model& model, CommandRequest&)
{
    requireDaemon(model);
    model.smartWiFi.snapshots = {};
    model.smartWiFi.propagations = 0;
}

void getVersion(Model& model, CommandRequest& request)
{
    request.setText("version", model.module.smartWiFiVersion);
}

void getDaemonVersion(Model& model, CommandRequest& request)
{
    request.setText("version", model.module.smartWiFiDaemonVersion);
}

// An empty name unbinds.
void setBindingInterface(Model& model, CommandRequest& request)
{
    const std::string name = request.text("intf_name");
    if (!name.empty() && !model.hasInterface(name))
        throw Refused{ReplyStatus::kNoSuchObject};
    assign(model.module.settings, &ModuleSettings::smartWiFiInterface, name);
}

void getQcomm(Model& model, CommandRequest& request)
{
    const SmartWiFi& smartWiFi = model.smartWiFi;
    Record data = request.blank("data");
    fill(data, model.module);
    fill(data, smartWiFi);
    data.setNumber("slaveDevices", smartWiFi.slaves.size());
    data.setAddresses("slaveAddresses", smartWiFi.slaves);
    request.setRecord("data", data);
}

void setQcommCfg(Model& model, CommandRequest& request)
{
    request.changes<ModuleSettings>("cfg").applyTo(model.module.settings);
}

// --- Mobility domains --------------------------------------------------------------------------------------------------------

SteeringDomain& domainOf(Model& model, const CommandRequest& request)
{
    return model.steeringDomain(request.mobilityDomain("mdid"));
}

void getMdidNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.domains));
}

void getMdidAt(Model& model, CommandRequest& request)
{
    request.setMobilityDomain("mdid", elementAt(model.smartWiFi.domains, request.number("index")).id);
}

void getQsl(Model& model, CommandRequest& request)
{
    request.answer("data", domainOf(model, request));
}

// The first part creates a domain that does not exist yet.
void setQslPart1(Model& model, CommandRequest& request)
{
    std::vector<SteeringDomain>& domains = model.smartWiFi.domains;
    const MobilityDomain id = request.mobilityDomain("mdid");
    const auto changes = request.changes<SteeringSettings>("cfg");
    for (SteeringDomain& domain : domains)
        if (domain.id == id)
            return changes.applyTo(domain.settings);
    if (domains.size() >= kDomainRoom)
        throw Refused{ReplyStatus::kFull};
    SteeringDomain created;
    created.id = id;
    changes.applyTo(created.settings);
    domains.push_back(std::move(created));
}

void setQslPart2(Model& model, CommandRequest& request)
{
    SteeringDomain& domain = domainOf(model, request);
    request.changes<SteeringSettings>("cfg").applyTo(domain.settings);
}

void getNonSteerNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(domainOf(model, request).nonSteer));
}

void getNonSteerAt(Model& model, CommandRequest& request)
{
    request.setAddress("mac_addr", elementAt(domainOf(model, request).nonSteer, request.number("index")));
}

void addNonSteer(Model& model, CommandRequest& request)
{
    Model::addAddress(domainOf(model, request).nonSteer, request.address("mac_addr"), kNonSteerRoom);
}

void delNonSteer(Model& model, CommandRequest& request)
{
    Model::removeAddress(domainOf(model, request).nonSteer, request.address("mac_addr"));
}

// --- Tables, read from copies ------------------------------------------------------------------------------------------------

BssEntry ownBss(const Interface& interface)
{
    const Radio& radio = *interface.radio;
    BssEntry entry;
    entry.bssid = interface.bssid;
    entry.ssid = interface.settings.ssid;
    entry.name = interface.name;
    entry.band = radio.band;
    entry.channel = radio.settings.channel;
    entry.bandwidth = radio.settings.bandwidth;
    entry.stations = interface.stationNumber();
    entry.mobilityDomain = interface.settings.mobilityDomain;
    return entry;
}

// A slave device repeats the first network of the module's radio.
BssEntry slaveBss(const MacAddress& slave, const Interface& repeated)
{
    BssEntry entry = ownBss(repeated);
    entry.bssid = slave;
    entry.name = "";
    entry.stations = 0;
    entry.own = false;
    return entry;
}

StationEntry stationEntry(const Model& model, const Interface& interface, const Station& station)
{
    StationEntry entry;
    entry.macAddress = station.address;
    entry.bssid = interface.bssid;
    entry.ssid = interface.settings.ssid;
    entry.band = interface.radio->band;
    entry.rssi = station.rssi;
    entry.txRate = station.txRate;
    entry.rxRate = station.rxRate;
    entry.secondsAssociated = model.secondsAssociated(station);
    return entry;
}

void syncBssTable(Model& model, CommandRequest&)
{
    requireDaemon(model);
    std::vector<BssEntry>& entries = model.smartWiFi.snapshots.bssEntries;
    entries.clear();
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
            entries.push_back(ownBss(interface));
    for (const MacAddress& slave : model.smartWiFi.slaves)
        entries.push_back(slaveBss(slave, model.moduleRadio().interfaces.front()));
}

void syncStations(Model& model, CommandRequest&)
{
    requireDaemon(model);
    std::vector<StationEntry>& entries = model.smartWiFi.snapshots.stations;
    entries.clear();
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
            for (const Station& station : interface.stations)
                entries.push_back(stationEntry(model, interface, station));
}

void syncRecordInfo(Model& model, CommandRequest&)
{
    requireDaemon(model);
    model.smartWiFi.snapshots.history = model.smartWiFi.history;
}

void syncSlaveDevice(Model& model, CommandRequest&)
{
    requireDaemon(model);
    model.smartWiFi.snapshots.slaves = model.smartWiFi.slaves;
}

void getBssEntryNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.bssEntries));
}

void getBssEntryAt(Model& model, CommandRequest& request)
{
    request.answer("data", elementAt(model.smartWiFi.snapshots.bssEntries, request.number("index")));
}

void getStationNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.stations));
}

void getStationAt(Model& model, CommandRequest& request)
{
    request.answer("data", elementAt(model.smartWiFi.snapshots.stations, request.number("index")));
}

void getRecordInfoNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.history));
}

void getRecordInfoAt(Model& model, CommandRequest& request)
{
    const HistoryEntry& entry = elementAt(model.smartWiFi.snapshots.history, request.number("index"));
    request.setNumber("status", entry.status);
    request.answer("data", entry);
}

void getSlaveDeviceNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.slaves));
}

void getSlaveDeviceAt(Model& model, CommandRequest& request)
{
    request.setAddress("data", elementAt(model.smartWiFi.snapshots.slaves, request.number("index")));
}

// --- The configuration as a whole --------------------------------------------------------------------------------------------

void doCfgPropagation(Model& model, CommandRequest&)
{
    requireDaemon(model);
    ++model.smartWiFi.propagations;
}

// A file of the simulated gateway, not of the machine that runs it.
void getCfgToFile(Model& model, CommandRequest& request)
{
    const std::string path = request.text("path");
    std::map<std::string, std::string>& files = model.module.files;
    if (path.empty() || path[0] != '/')
        throw Refused{ReplyStatus::kInvalidValue};
    requireRoom(files, path);
    std::string text;
    for (const SteeringDomain& domain : model.smartWiFi.domains)
    {
        text += "[" + base::hexText(domain.id) + "]\n";
        const Json settings = object<SteeringSettings>()->write(domain.settings);
        for (const auto& [name, value] : settings.items())
            text += name + "=" + (value.is_string() ? value.get<std::string>() : value.dump()) + "\n";
    }
    files[path] = text;
}

} // namespace

void addSmartWiFiHandlers(HandlerTable& table)
{
    table.add("TarnResetQuantennaSmartWiFiDaemon", resetDaemon);
    table.add("TarnGetQuantennaSmartWiFiVersion", getVersion);
    table.add("TarnGetQuantennaSmartWiFiDaemonVersion", getDaemonVersion);
    table.add("TarnSetQuantennaSmartWiFiBindingInterface", setBindingInterface);
    table.add("TarnGetQuantennaSmartWiFiQcomm", getQcomm);
    table.add("TarnSetQuantennaSmartWiFiQcommCfg", setQcommCfg);
    table.add("TarnGetQuantennaSmartWiFiQslMdidNumber", getMdidNumber);
    table.add("TarnGetQuantennaSmartWiFiQslMdidAt", getMdidAt);
    table.add("TarnGetQuantennaSmartWiFiQsl", getQsl);
    table.add("TarnSetQuantennaSmartWiFiQslPart1Cfg", setQslPart1);
    table.add("TarnSetQuantennaSmartWiFiQslPart2Cfg", setQslPart2);
    table.add("TarnGetQuantennaSmartWiFiNonSteerNumber", getNonSteerNumber);
    table.add("TarnGetQuantennaSmartWiFiNonSteerAt", getNonSteerAt);
    table.add("TarnAddQuantennaSmartWiFiNonSteer", addNonSteer);
    table.add("TarnDelQuantennaSmartWiFiNonSteer", delNonSteer);
    table.add("TarnSyncQuantennaSmartWiFiBSSTable", syncBssTable);
    table.add("TarnGetQuantennaSmartWiFiBSSEntryNumber", getBssEntryNumber);
    table.add("TarnGetQuantennaSmartWiFiBSSEntryAt", getBssEntryAt);
    table.add("TarnSyncQuantennaSmartWiFiAssoiated", syncStations);
    table.add("TarnGetQuantennaSmartWiFiAssoiatedNumber", getStationNumber);
    table.add("TarnGetQuantennaSmartWiFiAssoiatedAt", getStationAt);
    table.add("TarnSyncQuantennaSmartWiFiRecordInfo", syncRecordInfo);
    table.add("TarnGetQuantennaSmartWiFiRecordInfoNumber", getRecordInfoNumber);
    table.add("TarnGetQuantennaSmartWiFiRecordInfoAt", getRecordInfoAt);
    table.add("TarnSyncQuantennaSmartWiFiSlaveDevice", syncSlaveDevice);
    table.add("TarnGetQuantennaSmartWiFiSlaveDeviceNumber", getSlaveDeviceNumber);
    table.add("TarnGetQuantennaSmartWiFiSlaveDeviceAt", getSlaveDeviceAt);
    table.add("TarnDoQuantennaSmartWiFiCfgPropagation", doCfgPropagation);
    table.add("TarnGetQuantennaSmartWiFiCfgToFile", getCfgToFile);
}

} // namespace tarn::simulator
