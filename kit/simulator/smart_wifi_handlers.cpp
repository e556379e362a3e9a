// The device service's control of the Smart WiFi steering daemon.
#include "base/hexadecimal.h"
#include "handlers.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

void requireDaemon(const Model& model)
{
    if (model.module.settings.number("smartWiFiEnabled") == 0)
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
    model.module.settings.set("smartWiFiInterface", name);
}

void getQcomm(Model& model, CommandRequest& request)
{
    const SmartWiFi& smartWiFi = model.smartWiFi;
    Record data = request.blank("data");
    data.fill(model.module.settings);
    data.setNumber("propagations", smartWiFi.propagations);
    data.setNumber("slaveDevices", smartWiFi.slaves.size());
    data.setAddresses("slaveAddresses", smartWiFi.slaves);
    request.setRecord("data", data);
}

void setQcommCfg(Model& model, CommandRequest& request)
{
    Model::change(model.module.settings, request.changes("cfg"));
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
    Record data = request.blank("data");
    data.fill(domainOf(model, request).settings);
    request.setRecord("data", data);
}

// The first part creates a domain that does not exist yet.
void setQslPart1(Model& model, CommandRequest& request)
{
    std::vector<SteeringDomain>& domains = model.smartWiFi.domains;
    const MobilityDomain id = request.mobilityDomain("mdid");
    const Changes changes = request.changes("cfg");
    for (SteeringDomain& domain : domains)
        if (domain.id == id)
            return Model::change(domain.settings, changes);
    if (domains.size() >= kDomainRoom)
        throw Refused{ReplyStatus::kFull};
    SteeringDomain created;
    created.id = id;
    Model::change(created.settings, changes);
    domains.push_back(std::move(created));
}

void setQslPart2(Model& model, CommandRequest& request)
{
    SteeringDomain& domain = domainOf(model, request);
    Model::change(domain.settings, request.changes("cfg"));
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

Record ownBss(const Model& model, const Interface& interface)
{
    Record entry(model.layout.record("TarnQuantennaSmartWiFiBSSEntryData"));
    const MobilityDomain domain = mobilityDomainOf(interface);
    entry.setAddress("bssid", interface.bssid);
    entry.setText("ssid", interface.settings.text("ssid"));
    entry.setText("name", interface.name);
    entry.setText("band", toString(interface.radio->band));
    entry.setNumber("channel", interface.radio->settings.number("channel"));
    entry.setNumber("bandwidth", interface.radio->settings.number("bandwidth"));
    entry.setNumber("stations", interface.stations.size());
    entry.setNumber("own", 1);
    entry.setBlock("mobilityDomain", domain.data(), domain.size());
    return entry;
}

// A slave device repeats the first network of the module's radio.
Record slaveBss(const Model& model, const MacAddress& slave, const Interface& repeated)
{
    Record entry = ownBss(model, repeated);
    entry.setAddress("bssid", slave);
    entry.setText("name", "");
    entry.setNumber("stations", 0);
    entry.setNumber("own", 0);
    return entry;
}

Record stationEntry(const Model& model, const Interface& interface, const Station& station)
{
    Record entry(model.layout.record("TarnQuantennaSmartWiFiAssoiatedData"));
    entry.setAddress("macAddress", station.address);
    entry.setAddress("bssid", interface.bssid);
    entry.setText("ssid", interface.settings.text("ssid"));
    entry.setText("band", toString(interface.radio->band));
    entry.setSigned("rssi", station.rssi);
    entry.setNumber("txRate", station.txRate);
    entry.setNumber("rxRate", station.rxRate);
    entry.setNumber("secondsAssociated", model.secondsAssociated(station));
    return entry;
}

void syncBssTable(Model& model, CommandRequest&)
{
    requireDaemon(model);
    std::vector<Record>& entries = model.smartWiFi.snapshots.bssEntries;
    entries.clear();
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
            entries.push_back(ownBss(model, interface));
    for (const MacAddress& slave : model.smartWiFi.slaves)
        entries.push_back(slaveBss(model, slave, model.moduleRadio().interfaces.front()));
}

void syncStations(Model& model, CommandRequest&)
{
    requireDaemon(model);
    std::vector<Record>& entries = model.smartWiFi.snapshots.stations;
    entries.clear();
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
            for (const Station& station : interface.stations)
                entries.push_back(stationEntry(model, interface, station));
}

void syncRecordInfo(Model& model, CommandRequest&)
{
    requireDaemon(model);
    auto& entries = model.smartWiFi.snapshots.history;
    entries.clear();
    for (const HistoryEntry& event : model.history)
    {
        Record entry(model.layout.record("TarnQuantennaSmartWiFiRecordInfoData"));
        entry.setNumber("secondsSinceStart", event.time / 1000);
        entry.setText("text", event.text);
        entries.emplace_back(event.status, std::move(entry));
    }
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
    request.setRecord("data", elementAt(model.smartWiFi.snapshots.bssEntries, request.number("index")));
}

void getStationNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.stations));
}

void getStationAt(Model& model, CommandRequest& request)
{
    request.setRecord("data", elementAt(model.smartWiFi.snapshots.stations, request.number("index")));
}

void getRecordInfoNumber(Model& model, CommandRequest& request)
{
    request.setNumber("number", count(model.smartWiFi.snapshots.history));
}

void getRecordInfoAt(Model& model, CommandRequest& request)
{
    const auto& [status, entry] = elementAt(model.smartWiFi.snapshots.history, request.number("index"));
    request.setNumber("status", status);
    request.setRecord("data", entry);
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

void appendLines(std::string& text, const Settings& settings)
{
    for (const Property& property : settings.properties())
    {
        const std::string value =
            property.isText() ? settings.text(property.name) : std::to_string(settings.number(property.name));
        text += property.name + "=" + value + "\n";
    }
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
        appendLines(text, domain.settings);
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
