// The device service's control of the Smart WiFi steering daemon.
#include "base/hexadecimal.h"
#include "base/quote.h"
#include "description.h"
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

void requireDaemon(const Model& model)
{
    if (model.module.settings.smartWiFiEnabled == 0)
        throw Refused{ReplyStatus::kSwitchedOff, "the Smart WiFi daemon is stopped"};
}

SteeringDomain& domainOf(Model& model, const CommandRequest& request)
{
    return model.steeringDomain(request.mobilityDomain("mdid"));
}

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

} // namespace

void addSmartWiFiHandlers(HandlerTable& table)
{
    table.add({
        {"TarnResetQuantennaSmartWiFiDaemon",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             model.smartWiFi.snapshots = {};
             model.smartWiFi.propagations = 0;
         }},
        {"TarnGetQuantennaSmartWiFiVersion",
         [](Model& model, CommandRequest& request) { request.setText("version", model.module.smartWiFiVersion); }},
        {"TarnGetQuantennaSmartWiFiDaemonVersion",
         [](Model& model, CommandRequest& request) { request.setText("version", model.module.smartWiFiDaemonVersion); }},
        // An empty name unbinds.
        {"TarnSetQuantennaSmartWiFiBindingInterface",
         [](Model& model, CommandRequest& request)
         {
             const std::string name = request.text("intf_name");
             if (!name.empty() && !model.hasInterface(name))
                 throw Refused{ReplyStatus::kNoSuchObject,
                               "interface " + base::inQuotes(name) + "; there is none of that name"};
             assign(model.module.settings, &ModuleSettings::smartWiFiInterface, name);
         }},
        {"TarnGetQuantennaSmartWiFiQcomm",
         [](Model& model, CommandRequest& request)
         {
             const SmartWiFi& smartWiFi = model.smartWiFi;
             Record data = request.blank("data");
             fill(data, model.module);
             fill(data, smartWiFi);
             data.setNumber("slaveDevices", smartWiFi.slaves.size());
             data.setAddresses("slaveAddresses", smartWiFi.slaves);
             request.setRecord("data", data);
         }},
        {"TarnSetQuantennaSmartWiFiQcommCfg",
         [](Model& model, CommandRequest& request) { request.changes<ModuleSettings>("cfg").applyTo(model.module.settings); }},

        // Mobility domains.
        {"TarnGetQuantennaSmartWiFiQslMdidNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(model.smartWiFi.domains)); }},
        {"TarnGetQuantennaSmartWiFiQslMdidAt", [](Model& model, CommandRequest& request)
         { request.setMobilityDomain("mdid", elementAt(model.smartWiFi.domains, request.number("index")).id); }},
        {"TarnGetQuantennaSmartWiFiQsl",
         [](Model& model, CommandRequest& request) { request.answer("data", domainOf(model, request)); }},
        // The first part creates a domain that does not exist yet.
        {"TarnSetQuantennaSmartWiFiQslPart1Cfg",
         [](Model& model, CommandRequest& request)
         {
             std::vector<SteeringDomain>& domains = model.smartWiFi.domains;
             const MobilityDomain id = request.mobilityDomain("mdid");
             const auto changes = request.changes<SteeringSettings>("cfg");
             for (SteeringDomain& domain : domains)
                 if (domain.id == id)
                     return changes.applyTo(domain.settings);
             if (domains.size() >= kDomainRoom)
                 throw Refused{ReplyStatus::kFull, "there is room for " + std::to_string(kDomainRoom) + " mobility domains"};
             SteeringDomain created;
             created.id = id;
             changes.applyTo(created.settings);
             domains.push_back(std::move(created));
         }},
        {"TarnSetQuantennaSmartWiFiQslPart2Cfg",
         [](Model& model, CommandRequest& request)
         {
             SteeringDomain& domain = domainOf(model, request);
             request.changes<SteeringSettings>("cfg").applyTo(domain.settings);
         }},
        {"TarnGetQuantennaSmartWiFiNonSteerNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(domainOf(model, request).nonSteer)); }},
        {"TarnGetQuantennaSmartWiFiNonSteerAt", [](Model& model, CommandRequest& request)
         { request.setAddress("mac_addr", elementAt(domainOf(model, request).nonSteer, request.number("index"))); }},
        {"TarnAddQuantennaSmartWiFiNonSteer", [](Model& model, CommandRequest& request)
         { Model::addAddress(domainOf(model, request).nonSteer, request.address("mac_addr"), kNonSteerRoom); }},
        {"TarnDelQuantennaSmartWiFiNonSteer", [](Model& model, CommandRequest& request)
         { Model::removeAddress(domainOf(model, request).nonSteer, request.address("mac_addr")); }},

        // Tables, read from copies.
        {"TarnSyncQuantennaSmartWiFiBSSTable",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             std::vector<BssEntry>& entries = model.smartWiFi.snapshots.bssEntries;
             entries.clear();
             for (const Radio& radio : model.radios)
                 for (const Interface& interface : radio.interfaces)
                     entries.push_back(ownBss(interface));
             for (const MacAddress& slave : model.smartWiFi.slaves)
                 entries.push_back(slaveBss(slave, model.moduleRadio().interfaces.front()));
         }},
        {"TarnSyncQuantennaSmartWiFiAssoiated",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             std::vector<StationEntry>& entries = model.smartWiFi.snapshots.stations;
             entries.clear();
             for (const Radio& radio : model.radios)
                 for (const Interface& interface : radio.interfaces)
                     for (const Station& station : interface.stations)
                         entries.push_back(stationEntry(model, interface, station));
         }},
        {"TarnSyncQuantennaSmartWiFiRecordInfo",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             model.smartWiFi.snapshots.history = model.smartWiFi.history;
         }},
        {"TarnSyncQuantennaSmartWiFiSlaveDevice",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             model.smartWiFi.snapshots.slaves = model.smartWiFi.slaves;
         }},
        {"TarnGetQuantennaSmartWiFiBSSEntryNumber", [](Model& model, CommandRequest& request)
         { request.setNumber("number", count(model.smartWiFi.snapshots.bssEntries)); }},
        {"TarnGetQuantennaSmartWiFiBSSEntryAt", [](Model& model, CommandRequest& request)
         { request.answer("data", elementAt(model.smartWiFi.snapshots.bssEntries, request.number("index"))); }},
        {"TarnGetQuantennaSmartWiFiAssoiatedNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(model.smartWiFi.snapshots.stations)); }},
        {"TarnGetQuantennaSmartWiFiAssoiatedAt", [](Model& model, CommandRequest& request)
         { request.answer("data", elementAt(model.smartWiFi.snapshots.stations, request.number("index"))); }},
        {"TarnGetQuantennaSmartWiFiRecordInfoNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(model.smartWiFi.snapshots.history)); }},
        {"TarnGetQuantennaSmartWiFiRecordInfoAt",
         [](Model& model, CommandRequest& request)
         {
             const HistoryEntry& entry = elementAt(model.smartWiFi.snapshots.history, request.number("index"));
             request.setNumber("status", entry.status);
             request.answer("data", entry);
         }},
        {"TarnGetQuantennaSmartWiFiSlaveDeviceNumber",
         [](Model& model, CommandRequest& request) { request.setNumber("number", count(model.smartWiFi.snapshots.slaves)); }},
        {"TarnGetQuantennaSmartWiFiSlaveDeviceAt", [](Model& model, CommandRequest& request)
         { request.setAddress("data", elementAt(model.smartWiFi.snapshots.slaves, request.number("index"))); }},

        // The configuration as a whole.
        {"TarnDoQuantennaSmartWiFiCfgPropagation",
         [](Model& model, CommandRequest&)
         {
             requireDaemon(model);
             ++model.smartWiFi.propagations;
         }},
        // A file of the simulated gateway, not of the machine that runs it.
        {"TarnGetQuantennaSmartWiFiCfgToFile",
         [](Model& model, CommandRequest& request)
         {
             const std::string path = request.text("path");
             std::map<std::string, std::string>& files = model.module.files;
             if (path.empty() || path[0] != '/')
                 throw Refused{ReplyStatus::kInvalidValue, "path " + base::inQuotes(path) + "; expected one from the root, /"};
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
         }},
    });
}

} // namespace tarn::simulator
