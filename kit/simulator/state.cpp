#include "state.h"

#include "base/hexadecimal.h"
#include "base/quote.h"
#include "records.h"

namespace tarn::simulator
{

namespace
{

using Json = nlohmann::ordered_json;

// Bytes that a caller has set may be no UTF-8; JSON text has to be, and is ASCII here.
void add(Json& object, const Settings& settings)
{
    for (const Property& property : settings.properties())
        if (property.isText())
            object[property.name] = base::escaped(settings.text(property.name));
        else
            object[property.name] = settings.number(property.name);
}

Json list(const std::vector<MacAddress>& addresses)
{
    Json result = Json::array();
    for (const MacAddress& each : addresses)
        result.push_back(base::macText(each));
    return result;
}

Json table(const std::map<std::string, std::string>& texts)
{
    Json result = Json::object();
    for (const auto& [key, value] : texts)
        result[base::escaped(key)] = base::escaped(value);
    return result;
}

Json table(const NumberTable& numbers)
{
    Json result = Json::object();
    for (const auto& [key, value] : numbers)
        result[std::to_string(key)] = value;
    return result;
}

Json mapOf(const DscpMap& map)
{
    return {{"list", map.list}, {"valueA", map.valueA}, {"valueB", map.valueB}};
}

Json stationOf(const Model& model, const Station& station, bool isAssociated)
{
    Json object = {{"address", base::macText(station.address)}, {"rssi", station.rssi}};
    if (isAssociated)
        object["secondsAssociated"] = model.secondsAssociated(station);
    return object;
}

Json interfaceOf(const Model& model, const Interface& interface)
{
    Json object = {{"id", interface.id}, {"name", interface.name}, {"bssid", base::macText(interface.bssid)}};
    add(object, interface.settings);
    object["stations"] = Json::array();
    for (const Station& each : interface.stations)
        object["stations"].push_back(stationOf(model, each, true));
    object["away"] = Json::array();
    for (const Station& each : interface.away)
        object["away"].push_back(stationOf(model, each, false));
    object["macFilter"] = list(interface.macFilter);
    object["blocked"] = list(interface.blocked);
    object["wpsWindow"] = {{"status", static_cast<std::uint32_t>(interface.window.status)},
                           {"method", static_cast<std::uint32_t>(interface.window.method)},
                           {"pin", interface.window.pin}};
    object["savedApPin"] = interface.savedApPin;
    object["wpsParameters"] = Json::object();
    for (const auto& [id, value] : interface.wpsParameters)
        object["wpsParameters"][std::to_string(id)] = base::escaped(value);
    object["deferredSecurity"] = Json::object();
    for (const auto& [name, value] : interface.deferredSecurity)
        if (const auto* text = std::get_if<std::string>(&value))
            object["deferredSecurity"][name] = base::escaped(*text);
        else
            object["deferredSecurity"][name] = std::get<std::uint32_t>(value);
    for (const auto& [name, numbers] : interface.tables)
        object[name] = table(numbers);
    if (interface.dscpMap)
        object["dscpMap"] = mapOf(*interface.dscpMap);
    return object;
}

Json radioOf(const Model& model, const Radio& radio)
{
    Json object = {{"id", radio.id}, {"name", radio.name}, {"band", toString(radio.band)}, {"onModule", radio.onModule}};
    add(object, radio.settings);
    object["ready"] = Model::isReady(radio);
    object["scan"] = {{"status", static_cast<std::uint32_t>(radio.scan.status)},
                      {"flags", radio.scan.flags},
                      {"results", radio.scan.results.size()}};
    object["checkedChannels"] = radio.checkedChannels;
    object["dfsRadio"] = {{"status", static_cast<std::uint32_t>(radio.dfsRadio.status)}, {"channel", radio.dfsRadio.channel}};
    object["inactiveChannels"] = radio.inactiveChannels;
    object["secondaryChannels"] = table(radio.secondaryChannels);
    object["powerBackoffs"] = Json::object();
    for (const auto& [channel, backoff] : radio.powerBackoffs)
        object["powerBackoffs"][std::to_string(channel)] = {{"decibels", backoff[0]}, {"bandwidth", backoff[1]}};
    object["interfaces"] = Json::array();
    for (const Interface& each : radio.interfaces)
        object["interfaces"].push_back(interfaceOf(model, each));
    return object;
}

Json moduleOf(const Model& model)
{
    const Module& module = model.module;
    Json object = {{"firmwareVersion", base::escaped(module.firmwareVersion)}, {"initialised", module.initialised}};
    add(object, module.settings);
    object["bootParameters"] = table(module.bootParameters);
    object["customValues"] = table(module.customValues);
    object["lastScript"] = base::escaped(module.lastScript);
    object["lastScriptParameter"] = base::escaped(module.lastScriptParameter);
    object["telnetHolders"] = module.telnetHolders;
    object["download"] = {{"state", static_cast<std::uint32_t>(module.download.state)},
                          {"path", base::escaped(module.download.path)}};
    object["productionDone"] = module.productionStarted && model.now() >= module.productionDone;
    object["securityAgent"] = Json::object();
    for (const auto& [key, entry] : module.securityAgent)
        object["securityAgent"][base::escaped(key)] = entry.value;
    object["dscpTables"] = Json::object();
    for (const auto& [id, map] : module.dscpTables)
        object["dscpTables"][std::to_string(id)] = mapOf(map);
    object["groupLimits"] = table(module.groupLimits);
    object["thermalInitialised"] = module.thermalInitialised;
    object["thermalInterfaces"] = module.thermalInterfaces;
    object["files"] = table(module.files);
    return object;
}

Json smartWiFiOf(const SmartWiFi& smartWiFi)
{
    Json object = {{"propagations", smartWiFi.propagations}, {"slaves", list(smartWiFi.slaves)}, {"domains", Json::array()}};
    for (const SteeringDomain& domain : smartWiFi.domains)
    {
        Json each = {{"id", base::hexText(domain.id)}};
        add(each, domain.settings);
        each["nonSteer"] = list(domain.nonSteer);
        object["domains"].push_back(std::move(each));
    }
    return object;
}

} // namespace

nlohmann::ordered_json stateOf(const Model& model)
{
    Json service = Json::object();
    add(service, model.service);
    service["errorMask"] = model.errorMask;
    service["stoppedPolling"] = Json::array();
    for (const Polling each : model.stoppedPolling)
        service["stoppedPolling"].push_back(static_cast<std::uint32_t>(each));

    Json state = {{"secondsSinceStart", model.secondsSinceStart()}, {"service", std::move(service)}, {"radios", Json::array()}};
    for (const Radio& each : model.radios)
        state["radios"].push_back(radioOf(model, each));
    state["module"] = moduleOf(model);
    state["smartWiFi"] = smartWiFiOf(model.smartWiFi);
    return state;
}

} // namespace tarn::simulator
