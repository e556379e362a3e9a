#include "scenario.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "embedded_files.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

namespace tarn::simulator
{

namespace
{

using base::JsonObject;
using base::JsonValue;

constexpr std::size_t kRadioRoom = 8;
constexpr std::size_t kStationRoom = 128;   // of one interface
constexpr std::size_t kNeighbourRoom = 255; // of one radio

constexpr std::size_t kNameLength = 15;
constexpr std::size_t kVersionLength = 64;
constexpr std::size_t kSsidLength = 32;

// --- Values of several kinds of objects --------------------------------------------------------------------------------------

MacAddress readAddress(const JsonValue& value)
{
    const auto parse = [](const std::string& text)
    {
        const std::optional<MacAddress> address = base::parseMacAddress(text);
        return address && base::isIndividual(*address) ? address : std::nullopt;
    };
    return value.parsed(parse, "a MAC address such as 02:00:00:00:01:05, no group address");
}

// None if there is no such list.
std::vector<MacAddress> readAddresses(const JsonValue& list, std::size_t most)
{
    std::vector<MacAddress> addresses;
    if (!list)
        return addresses;
    for (const JsonValue& element : list.elements(most))
    {
        const MacAddress address = readAddress(element);
        if (std::find(addresses.begin(), addresses.end(), address) != addresses.end())
            element.fail("an address that is not in the list yet");
        addresses.push_back(address);
    }
    return addresses;
}

std::vector<std::string> readTexts(const JsonValue& list, std::size_t longest)
{
    std::vector<std::string> texts;
    if (list)
        for (const JsonValue& element : list.elements())
            texts.push_back(element.text(longest));
    return texts;
}

void readSeconds(const JsonValue& value, std::uint64_t& milliseconds)
{
    if (value)
        milliseconds = static_cast<std::uint64_t>(value.real(0, 86400, "seconds") * 1000);
}

std::optional<Value> settingOf(const JsonValue& value, const Property& property)
{
    const std::string* const text = value.textOrNull();
    const std::optional<std::int64_t> number = value.integerOrNull();
    std::optional<Value> setting;
    if (property.isText() && text != nullptr)
        setting = *text;
    else if (!property.isText() && number && *number >= 0 && *number <= std::numeric_limits<std::uint32_t>::max())
        setting = static_cast<std::uint32_t>(*number);
    return setting && property.accepts(*setting) ? setting : std::nullopt;
}

// Those that are there.
void readSettings(JsonObject& object, Settings& settings)
{
    for (const Property& property : settings.properties())
    {
        const JsonValue value = object[property.name];
        if (!value)
            continue;
        const std::optional<Value> setting = settingOf(value, property);
        if (!setting)
            value.fail(property.expected);
        settings.set(property.name, *setting);
    }
}

// --- Objects without others --------------------------------------------------------------------------------------------------

void readTiming(JsonObject object, Timing& timing)
{
    readSeconds(object["scanSeconds"], timing.scan);
    readSeconds(object["wpsWindowSeconds"], timing.wpsWindow);
    readSeconds(object["downloadSeconds"], timing.download);
    readSeconds(object["radarCheckSeconds"], timing.radarCheck);
    readSeconds(object["productionSeconds"], timing.production);
    readSeconds(object["reassociationSeconds"], timing.reassociation);
    object.finish();
}

void readService(JsonObject object, Settings& service)
{
    readSettings(object, service);
    object.finish();
}

void readModule(JsonObject object, Module& module)
{
    object.read("firmwareVersion", module.firmwareVersion, kVersionLength);
    object.read("mauiVersion", module.mauiVersion, kVersionLength);
    object.read("smartWiFiVersion", module.smartWiFiVersion, kVersionLength);
    object.read("smartWiFiDaemonVersion", module.smartWiFiDaemonVersion, kVersionLength);
    object.read("temperatureExternal", module.temperatureExternal, 0, 150);
    object.read("temperatureInternal", module.temperatureInternal, 0, 150);
    object.read("temperatureBaseband", module.temperatureBaseband, 0, 150);
    if (const JsonValue parameters = object["bootParameters"])
        for (const auto& [name, value] : parameters.members())
            module.bootParameters[name] = value.text(128);
    module.scripts = readTexts(object["scripts"], kSsidLength);
    module.missingFiles = readTexts(object["missingFiles"], 256);
    readSettings(object, module.settings);
    object.finish();
}

Neighbour readNeighbour(JsonObject& object, Band band)
{
    Neighbour neighbour;
    neighbour.band = band;
    neighbour.bssid = readAddress(object["bssid"]);
    object.read("ssid", neighbour.ssid, kSsidLength);
    neighbour.channel = object["channel"].number(1u, 233u);
    object.read("bandwidth", neighbour.bandwidth, 20, 160);
    object.read("rssi", neighbour.rssi, -100, 0);
    object.read("security", neighbour.security, 15);
    object.finish();
    return neighbour;
}

// The lowest of those it may have, so that a scenario need not say it.
void chooseChannel(JsonObject& object, Radio& radio)
{
    const std::vector<std::uint32_t> channels = Model::allowedChannels(radio);
    if (channels.empty())
        object["bandwidth"].fail(std::string("a bandwidth that the ") + toString(radio.band) + " band has channels of");
    if (std::find(channels.begin(), channels.end(), radio.settings.number("channel")) != channels.end())
        return;
    const JsonValue channel = object["channel"];
    if (!channel)
        return radio.settings.set("channel", channels.front());
    channel.fail("one of " + base::join(channels, " ") + ", the channels of the " + toString(radio.band) + " band at " +
                 std::to_string(radio.settings.number("bandwidth")) + " MHz in country " + radio.settings.text("country"));
}

void readDomain(JsonObject& object, SmartWiFi& smartWiFi)
{
    SteeringDomain domain;
    const auto parse = [&](const std::string& text)
    {
        const std::optional<MobilityDomain> id = parseMobilityDomain(text);
        const auto hasIt = [&](const SteeringDomain& other) { return id && other.id == *id; };
        return std::any_of(smartWiFi.domains.begin(), smartWiFi.domains.end(), hasIt) ? std::nullopt : id;
    };
    domain.id = object["id"].parsed(parse, "a mobility domain, four hexadecimal digits, that no other domain has");
    domain.nonSteer = readAddresses(object["nonSteer"], kNonSteerRoom);
    readSettings(object, domain.settings);
    object.finish();
    smartWiFi.domains.push_back(domain);
}

void readSmartWiFi(JsonObject object, SmartWiFi& smartWiFi)
{
    smartWiFi.slaves = readAddresses(object["slaves"], 32);
    if (const JsonValue domains = object["domains"])
        for (JsonObject& domain : domains.objects(0, kDomainRoom))
            readDomain(domain, smartWiFi);
    object.finish();
}

// --- The radios, with what they have -----------------------------------------------------------------------------------------

// A name or an address belongs to one thing in the whole gateway.
class RadioReader
{
public:
    void read(JsonObject& object, Radio& radio)
    {
        radio.name = object["name"].text(kNameLength);
        radio.band = object["band"].oneOf<Band>(kBandNames);
        object.read("onModule", radio.onModule);
        object.read("supportsWds", radio.supportsWds);
        object.read("supportsRoaming", radio.supportsRoaming);
        object.read("chains", radio.chains, 1, 4);
        object.read("temperature", radio.temperature, 0, 150);
        object.read("noise", radio.noise, -110, -50);
        object.read("maximumPower", radio.maximumPower, 10, 36);
        object.read("channelLoad", radio.channelLoad, 0, 100);
        object.read("driverVersion", radio.driverVersion, kVersionLength);
        if (const JsonValue neighbours = object["neighbours"])
            for (JsonObject& neighbour : neighbours.objects(0, kNeighbourRoom))
                radio.neighbours.push_back(readNeighbour(neighbour, radio.band));
        for (JsonObject& interface : object["interfaces"].objects(1, kInterfaceRoom))
            readInterface(interface, radio);
        readSettings(object, radio.settings);
        object.finish();
        chooseChannel(object, radio);
    }

private:
    void readInterface(JsonObject& object, Radio& radio)
    {
        Interface& interface = radio.interfaces.emplace_back();
        interface.id = static_cast<std::uint32_t>(radio.interfaces.size());
        interface.radio = &radio;
        const JsonValue name = object["name"];
        interface.name = name.text(1, kNameLength);
        if (!names_.insert(interface.name).second)
            name.fail("a name that no other interface of the gateway has");
        interface.bssid = readUniqueAddress(object["bssid"]);
        interface.macFilter = readAddresses(object["macFilter"], kMacFilterRoom);
        interface.blocked = readAddresses(object["blocked"], kBlockListRoom);
        if (const JsonValue stations = object["stations"])
            for (JsonObject& station : stations.objects(0, kStationRoom))
                interface.away.push_back(readStation(station));
        readSettings(object, interface.settings);
        object.finish();
    }

    Station readStation(JsonObject& object)
    {
        Station station;
        station.address = readUniqueAddress(object["address"]);
        object.read("rssi", station.rssi, -100, 0);
        object.read("txMcs", station.txMcs, 0, 11);
        object.read("rxMcs", station.rxMcs, 0, 11);
        object.read("txRate", station.txRate, 1, 10000);
        object.read("rxRate", station.rxRate, 1, 10000);
        object.read("chains", station.chains, 1, 4);
        object.read("phyMode", station.phyMode, 7);
        object.read("packetRate", station.packetRate, 0, 100000);
        object.finish();
        return station;
    }

    MacAddress readUniqueAddress(const JsonValue& value)
    {
        const MacAddress address = readAddress(value);
        if (!addresses_.insert(address).second)
            value.fail("an address that nothing else in the gateway has");
        return address;
    }

    std::set<std::string> names_;
    std::set<MacAddress> addresses_;
};

void readRadios(const JsonValue& radios, Model& model)
{
    RadioReader reader;
    for (JsonObject& object : radios.objects(1, kRadioRoom))
    {
        Radio& radio = model.radios.emplace_back();
        radio.id = static_cast<std::uint32_t>(model.radios.size());
        reader.read(object, radio);
    }
    const auto isOnModule = [](const Radio& radio) { return radio.onModule; };
    if (std::none_of(model.radios.begin(), model.radios.end(), isOnModule))
        radios.fail("at least one with \"onModule\": true");
}

void read(const base::JsonDocument& document, Model& model)
{
    JsonObject file = document.root().object();
    file["scenario"].number(1, 1);
    if (const JsonValue description = file["description"])
        description.text(1000);
    file.read("supportsWfaAlliance", model.supportsWfaAlliance);
    if (const JsonValue timing = file["timing"])
        readTiming(timing.object(), model.timing);
    if (const JsonValue service = file["service"])
        readService(service.object(), model.service);
    if (const JsonValue module = file["module"])
        readModule(module.object(), model.module);
    readRadios(file["radios"], model);
    if (const JsonValue smartWiFi = file["smartWiFi"])
        readSmartWiFi(smartWiFi.object(), model.smartWiFi);
    file.finish();
}

} // namespace

void readScenario(std::string_view text, const std::string& fileName, Model& model)
{
    read(base::parseJson(text, fileName), model);
}

void readScenarioFile(const std::string& path, Model& model)
{
    read(base::readJson(path, "a scenario file"), model);
}

void readDefaultScenario(Model& model)
{
    readScenario(base::embeddedText(embeddedFiles(), "default.json"), "default.json", model);
}

} // namespace tarn::simulator
