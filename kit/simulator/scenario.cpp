#include "scenario.h"

#include "base/join.h"
#include "embedded_files.h"
#include "json_section.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace tarn::simulator
{

namespace
{

constexpr std::size_t kRadioRoom = 8;
constexpr std::size_t kStationRoom = 128;   // of one interface
constexpr std::size_t kNeighbourRoom = 255; // of one radio

constexpr std::size_t kNameLength = 15;
constexpr std::size_t kVersionLength = 64;
constexpr std::size_t kSsidLength = 32;

void readTiming(JsonSection section, Timing& timing)
{
    section.readSeconds("scanSeconds", timing.scan);
    section.readSeconds("wpsWindowSeconds", timing.wpsWindow);
    section.readSeconds("downloadSeconds", timing.download);
    section.readSeconds("radarCheckSeconds", timing.radarCheck);
    section.readSeconds("productionSeconds", timing.production);
    section.readSeconds("reassociationSeconds", timing.reassociation);
    section.finish();
}

void readModule(JsonSection section, Module& module)
{
    section.read("firmwareVersion", module.firmwareVersion, kVersionLength);
    section.read("mauiVersion", module.mauiVersion, kVersionLength);
    section.read("smartWiFiVersion", module.smartWiFiVersion, kVersionLength);
    section.read("smartWiFiDaemonVersion", module.smartWiFiDaemonVersion, kVersionLength);
    section.read("temperatureExternal", module.temperatureExternal, 0, 150);
    section.read("temperatureInternal", module.temperatureInternal, 0, 150);
    section.read("temperatureBaseband", module.temperatureBaseband, 0, 150);
    section.readTexts("bootParameters", module.bootParameters, 128);
    section.read("scripts", module.scripts, kSsidLength);
    section.read("missingFiles", module.missingFiles, 256);
    section.readSettings(module.settings);
}

Station readStation(JsonSection section)
{
    Station station;
    section.require("address");
    section.read("address", station.address);
    section.readSigned("rssi", station.rssi, -100, 0);
    section.read("txMcs", station.txMcs, 0, 11);
    section.read("rxMcs", station.rxMcs, 0, 11);
    section.read("txRate", station.txRate, 1, 10000);
    section.read("rxRate", station.rxRate, 1, 10000);
    section.read("chains", station.chains, 1, 4);
    section.read("phyMode", station.phyMode, 7);
    section.read("packetRate", station.packetRate, 0, 100000);
    section.finish();
    return station;
}

Neighbour readNeighbour(JsonSection section, Band band)
{
    Neighbour neighbour;
    neighbour.band = band;
    section.require("bssid");
    section.read("bssid", neighbour.bssid);
    section.read("ssid", neighbour.ssid, kSsidLength);
    section.require("channel");
    section.read("channel", neighbour.channel, 1, 233);
    section.read("bandwidth", neighbour.bandwidth, 20, 160);
    section.readSigned("rssi", neighbour.rssi, -100, 0);
    section.read("security", neighbour.security, 15);
    section.finish();
    return neighbour;
}

void readInterface(JsonSection section, Interface& interface)
{
    section.require("name");
    section.read("name", interface.name, kNameLength);
    if (interface.name.empty())
        section.reject("name", "a text of 1 to 15 characters");
    section.require("bssid");
    section.read("bssid", interface.bssid);
    section.read("macFilter", interface.macFilter, kMacFilterRoom);
    section.read("blocked", interface.blocked, kBlockListRoom);
    for (JsonSection& each : section.sections("stations"))
        interface.away.push_back(readStation(std::move(each)));
    if (interface.away.size() > kStationRoom)
        section.reject("stations", "at most " + std::to_string(kStationRoom));
    section.readSettings(interface.settings);
}

// The lowest of those it may have, so that a scenario need not say it.
void chooseChannel(JsonSection& section, Radio& radio)
{
    const std::vector<std::uint32_t> channels = Model::allowedChannels(radio);
    if (channels.empty())
        section.reject("bandwidth", std::string("a bandwidth that the ") + toString(radio.band) + " band has channels of");
    const std::uint32_t channel = radio.settings.number("channel");
    if (std::find(channels.begin(), channels.end(), channel) != channels.end())
        return;
    if (!section.has("channel"))
        return radio.settings.set("channel", channels.front());
    const std::string expected = base::join(channels, " ");
    section.reject("channel", "one of " + expected + ", the channels of the " + toString(radio.band) + " band at " +
                                  std::to_string(radio.settings.number("bandwidth")) + " MHz in country " +
                                  radio.settings.text("country"));
}

void readRadio(JsonSection section, Radio& radio)
{
    section.require("name");
    section.read("name", radio.name, kNameLength);
    section.require("band");
    std::string band;
    section.read("band", band, 6);
    if (!parseBand(band, radio.band))
        section.reject("band", "one of 2.4GHz, 5GHz, 6GHz");
    section.read("onModule", radio.onModule);
    section.read("supportsWds", radio.supportsWds);
    section.read("supportsRoaming", radio.supportsRoaming);
    section.read("chains", radio.chains, 1, 4);
    section.read("temperature", radio.temperature, 0, 150);
    section.readSigned("noise", radio.noise, -110, -50);
    section.readSigned("maximumPower", radio.maximumPower, 10, 36);
    section.read("channelLoad", radio.channelLoad, 0, 100);
    section.read("driverVersion", radio.driverVersion, kVersionLength);
    for (JsonSection& each : section.sections("neighbours"))
        radio.neighbours.push_back(readNeighbour(std::move(each), radio.band));
    if (radio.neighbours.size() > kNeighbourRoom)
        section.reject("neighbours", "at most " + std::to_string(kNeighbourRoom));
    for (JsonSection& each : section.sections("interfaces"))
    {
        Interface& interface = radio.interfaces.emplace_back();
        interface.id = static_cast<std::uint32_t>(radio.interfaces.size());
        interface.radio = &radio;
        readInterface(std::move(each), interface);
    }
    if (radio.interfaces.empty() || radio.interfaces.size() > kInterfaceRoom)
        section.reject("interfaces", "1 to " + std::to_string(kInterfaceRoom) + " of them");
    section.readSettings(radio.settings);
    chooseChannel(section, radio);
}

void readSmartWiFi(JsonSection section, SmartWiFi& smartWiFi)
{
    section.read("slaves", smartWiFi.slaves, 32);
    for (JsonSection& each : section.sections("domains"))
    {
        SteeringDomain& domain = smartWiFi.domains.emplace_back();
        std::string id;
        each.require("id");
        each.read("id", id, 4);
        const auto parsed = parseMobilityDomain(id);
        const auto isThat = [&](const SteeringDomain& other) { return &other != &domain && parsed && other.id == *parsed; };
        if (!parsed || std::any_of(smartWiFi.domains.begin(), smartWiFi.domains.end(), isThat))
            each.reject("id", "a mobility domain, four hexadecimal digits, that no other domain has");
        domain.id = *parsed;
        each.read("nonSteer", domain.nonSteer, kNonSteerRoom);
        each.readSettings(domain.settings);
    }
    if (smartWiFi.domains.size() > kDomainRoom)
        section.reject("domains", "at most " + std::to_string(kDomainRoom));
    section.finish();
}

// A name or an address stands for one thing in the whole gateway.
void checkUnique(const Model& model, const std::string& fileName)
{
    std::set<std::string> names;
    std::set<MacAddress> addresses;
    const auto once = [&](bool isNew, const std::string& what)
    {
        if (!isNew)
            throw ScenarioError(fileName + ": " + what + " stands there twice; expected it once in the whole gateway");
    };
    for (const Radio& radio : model.radios)
        for (const Interface& interface : radio.interfaces)
        {
            once(names.insert(interface.name).second, "the interface name " + interface.name);
            once(addresses.insert(interface.bssid).second, "the address " + base::macText(interface.bssid));
            for (const Station& station : interface.away)
                once(addresses.insert(station.address).second, "the address " + base::macText(station.address));
        }
}

} // namespace

void readScenario(std::string_view text, const std::string& fileName, Model& model)
{
    const Json file = parseJson(text, fileName);
    if (!file.is_object())
        throw ScenarioError(fileName + ": expected an object, { ... }");
    JsonSection section(file, fileName + ": ");
    section.require("scenario");
    std::uint32_t version = 0;
    section.read("scenario", version, 1, 1);
    std::string description;
    section.read("description", description, 1000);
    section.read("supportsWfaAlliance", model.supportsWfaAlliance);
    if (auto timing = section.section("timing"))
        readTiming(std::move(*timing), model.timing);
    if (auto service = section.section("service"))
        service->readSettings(model.service);
    if (auto module = section.section("module"))
        readModule(std::move(*module), model.module);
    for (JsonSection& each : section.sections("radios"))
    {
        Radio& radio = model.radios.emplace_back();
        radio.id = static_cast<std::uint32_t>(model.radios.size());
        readRadio(std::move(each), radio);
    }
    const auto isOnModule = [](const Radio& radio) { return radio.onModule; };
    if (model.radios.size() > kRadioRoom || std::none_of(model.radios.begin(), model.radios.end(), isOnModule))
        section.reject("radios", "1 to " + std::to_string(kRadioRoom) + " of them, at least one with \"onModule\": true");
    if (auto smartWiFi = section.section("smartWiFi"))
        readSmartWiFi(std::move(*smartWiFi), model.smartWiFi);
    section.finish();
    checkUnique(model, fileName);
}

void readScenarioFile(const std::string& path, Model& model)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file.is_open() || !(text << file.rdbuf()))
        throw ScenarioError(path + ": cannot be read, or is empty; expected a scenario file");
    readScenario(text.str(), path, model);
}

void readDefaultScenario(Model& model)
{
    readScenario(base::embeddedText(embeddedFiles(), "default.json"), "default.json", model);
}

} // namespace tarn::simulator
