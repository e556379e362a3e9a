#include "scenario.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "contract/contract.h"
#include "description.h"
#include "embedded_files.h"
#include "lists.h"
#include "security_kind.h"

#include <algorithm>
#include <set>

namespace tarn::simulator
{

namespace
{

using base::JsonObject;
using base::JsonValue;

// --- What must hold between values -------------------------------------------------------------------------------------------

// What a radio has where its scenario does not say it: what is usual in its band, and the lowest channel. The channel that it
// starts with counts as checked for radar.
void checkRadio(JsonObject& object, Radio& radio)
{
    RadioSettings& settings = radio.settings;
    const JsonValue mode = object["phyMode"];
    if (!mode && radio.band != Band::k5)
        settings.phyMode = radio.band == Band::k2 ? "11n" : "11ax";
    if (!isModeOf(radio.band, phyModeOf(settings.phyMode)))
        mode.fail(std::string("a PHY mode of the ") + toString(radio.band) + " band");
    const JsonValue bandwidth = object["bandwidth"];
    if (!bandwidth && radio.band == Band::k2)
        settings.bandwidth = 20;
    const std::vector<std::uint32_t> channels = // one that radar has silenced keeps its channel
        radio.silenced ? channelsFor(radio.channelCriteria()) : radio.allowedChannels();
    const JsonValue channel = object["channel"];
    if (channels.empty())
        bandwidth.fail(std::string("a bandwidth that the ") + toString(radio.band) + " band has channels of");
    if (!contains(channels, settings.channel) && channel)
        channel.fail("one of " + base::join(channels, " ") + ", the channels of the " + toString(radio.band) + " band at " +
                     std::to_string(settings.bandwidth) + " MHz in country " + settings.country);
    if (!contains(channels, settings.channel))
        settings.channel = channels.front();
    if (!object["checkedChannels"])
        for (const std::uint32_t each : blockOf(radio.band, settings.channel, settings.bandwidth))
            radio.checkedChannels.insert(each);
}

// Where a scenario does not say these, they are the usual ones.
void checkSecurity(JsonObject& object, InterfaceSettings& settings)
{
    const SecurityKind& kind = securityKind(settings.beaconType);
    const auto check = [&](const char* key, std::string& value, const std::vector<std::string>& choices)
    {
        const JsonValue given = object[key];
        if (!given)
            value = choices.front();
        else if (!contains(choices, value))
            given.fail("one of " + base::join(choices) + ", with beaconType " + settings.beaconType);
    };
    check("authenticationMode", settings.authenticationMode, kind.authentication);
    check("encryptionModes", settings.encryptionModes, kind.encryption);
}

// A name or an address belongs to one thing in the whole gateway and around it.
class UniqueThings
{
public:
    void checkInterface(JsonObject& object)
    {
        const JsonValue name = object["name"];
        if (!isInterfaceName(name.text()))
            name.fail("a name of printable ASCII without spaces or slashes");
        if (!names_.insert(name.text()).second)
            name.fail("a name that no other interface of the gateway has");
        checkAddress(object["bssid"]);
    }

    void checkAddress(const JsonValue& value)
    {
        if (!addresses_.insert(addressIn(value)).second)
            value.fail("an address that nothing else in the scenario has");
    }

    static MacAddress addressIn(const JsonValue& value)
    {
        return value.parsed([](const std::string& text) { return base::parseMacAddress(text); }, "a MAC address");
    }

private:
    std::set<std::string> names_;
    std::set<MacAddress> addresses_;
};

void checkRadios(const JsonValue& radios, Model& model, UniqueThings& things)
{
    bool hasModule = false;
    std::size_t index = 0;
    for (JsonObject& object : radios.objects())
    {
        Radio& radio = model.radios[index++];
        std::size_t interfaceIndex = 0;
        for (JsonObject& interface : object["interfaces"].objects())
        {
            things.checkInterface(interface);
            checkSecurity(interface, radio.interfaces[interfaceIndex++].settings);
        }
        checkRadio(object, radio);
        hasModule = hasModule || radio.onModule;
    }
    if (!hasModule)
        radios.fail("at least one with \"onModule\": true");
}

// Its channel has to be one of its band, wherever it comes from.
void checkNeighbours(const JsonValue& list, const Model& model, UniqueThings& things)
{
    std::size_t index = 0;
    for (JsonObject& object : list.objects())
    {
        const Neighbour& neighbour = model.air.neighbours[index++];
        things.checkAddress(object["bssid"]);
        const auto has = [&](const char* country) {
            return contains(channelsFor({neighbour.band, country, neighbour.bandwidth, true, true}), neighbour.channel);
        };
        if (!has("us") && !has("eu") && !has("jp"))
            object["channel"].fail("a channel of the " + std::string(toString(neighbour.band)) + " band at " +
                                   std::to_string(neighbour.bandwidth) + " MHz");
    }
}

// A station is a client, and associated once.
void checkStations(const JsonValue& radios, const Model& model)
{
    std::set<MacAddress> clients;
    for (const Client& client : model.clients)
        clients.insert(client.address);
    for (JsonObject& radio : radios.objects())
        for (JsonObject& interface : radio["interfaces"].objects())
            if (const JsonValue stations = interface["stations"])
                for (JsonObject& station : stations.objects())
                    if (const JsonValue address = station["address"]; clients.erase(UniqueThings::addressIn(address)) == 0)
                        address.fail("the address of one of the clients, which is not associated yet");
}

// Each of them is due to an object that there is.
void checkDue(const JsonValue& list, const Model& model)
{
    const auto numberIn = [](const JsonValue& value, std::size_t most, const std::string& expected)
    {
        const std::int64_t number = value.integerOrNull().value_or(0);
        if (number < 1 || number > static_cast<std::int64_t>(most))
            value.fail(expected + ", from 1 to " + std::to_string(most));
        return static_cast<std::size_t>(number);
    };
    for (JsonObject& object : list.objects())
    {
        const Occurrence what = object["what"].oneOf<Occurrence>(kOccurrenceNames);
        if (what == Occurrence::kRadarAppears &&
            !isRadarChannel(Band::k5, static_cast<std::uint32_t>(object["channel"].integerOrNull().value_or(0))))
            object["channel"].fail("a channel of 20 MHz at 5 GHz on which there can be radar, from 52 to 144");
        if (what == Occurrence::kDownloadEnds || what == Occurrence::kProductionEnds || what == Occurrence::kRadarAppears)
            continue;
        const std::size_t radioId = numberIn(object["radio"], model.radios.size(), "the number of a radio");
        if (what == Occurrence::kWpsWindowCloses || what == Occurrence::kClientReturns)
            numberIn(object["interface"], model.radios[radioId - 1].interfaces.size(),
                     "the number of an interface of radio " + std::to_string(radioId));
        if (what == Occurrence::kClientReturns)
        {
            const MacAddress address = UniqueThings::addressIn(object["address"]);
            const auto isIt = [&](const Client& client) { return client.address == address; };
            if (std::none_of(model.clients.begin(), model.clients.end(), isIt))
                object["address"].fail("the address of one of the clients");
        }
    }
}

// It names what there is, and has the keys of its kind only.
void checkFault(JsonObject& object, const Fault& fault)
{
    const auto is = [&](FaultKind kind) { return fault.kind == kind; };
    const auto belongs = [&](const char* key, bool isOfKind, const char* kinds)
    {
        if (const JsonValue value = object[key]; value && !isOfKind)
            value.fail("the key " + std::string(key) + " with " + kinds + " only");
    };
    belongs("count", !is(FaultKind::kHang), "what does not last");
    belongs("milliseconds", is(FaultKind::kDelay) || is(FaultKind::kEventLate), "delay and eventLate");
    belongs("status", is(FaultKind::kStatus) || is(FaultKind::kIpcStatus), "status and ipcStatus");
    belongs("losesSettings", is(FaultKind::kDie) || is(FaultKind::kRestart), "die and restart");
    if (is(FaultKind::kHang) && fault.probability != 100)
        object["probability"].fail("100, as a service hangs until the fault is taken away");
    if (is(FaultKind::kStatus) && !fault.status)
        object["status"].fail("a status");
    if (is(FaultKind::kIpcStatus) && (!fault.status || *fault.status < 1 || *fault.status > 21 || *fault.status == 7))
        object["status"].fail("an IPC status from 1 to 21, but 7, which is noAnswer");

    if (fault.service && fault.isOfEvents())
        object["service"].fail("the key event with a fault of events");
    if (fault.function && (fault.isOfEvents() || !contract::find(*fault.function)))
        object["function"].fail("the name of a function, with a fault of requests");
    const auto& events = contract::findService("TARN")->events;
    const auto isIt = [&](const contract::Event& event) { return event.name == *fault.event; };
    if (fault.event && (!fault.isOfEvents() || std::none_of(events.begin(), events.end(), isIt)))
        object["event"].fail("the name of an event, with a fault of events");
}

void checkFaults(const JsonValue& list, const Model& model)
{
    std::size_t index = 0;
    for (JsonObject& object : list.objects())
        checkFault(object, model.faults[index++]);
}

void checkDomains(const JsonValue& domains)
{
    std::set<std::string> ids;
    for (JsonObject& domain : domains.objects())
        if (const JsonValue id = domain["id"]; !ids.insert(id.text()).second)
            id.fail("a mobility domain that is not in the list yet");
}

void read(const base::JsonDocument& document, Model& model)
{
    JsonObject file = document.root().object();
    object<Model>()->read(document.root(), model);
    UniqueThings things;
    checkRadios(file["radios"], model, things);
    if (const JsonValue air = file["air"])
        if (const JsonValue neighbours = air.object()["neighbours"])
            checkNeighbours(neighbours, model, things);
    if (const JsonValue clients = file["clients"])
        for (JsonObject& client : clients.objects())
            things.checkAddress(client["address"]);
    checkStations(file["radios"], model);
    if (const JsonValue due = file["due"])
        checkDue(due, model);
    if (const JsonValue faults = file["faults"])
        checkFaults(faults, model);
    if (const JsonValue smartWiFi = file["smartWiFi"])
        if (const JsonValue domains = smartWiFi.object()["domains"])
            checkDomains(domains);
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

Json scenarioOf(const Model& model)
{
    return object<Model>()->write(model);
}

Json scenarioSchema()
{
    Json schema = {{"$schema", "http://json-schema.org/draft-07/schema#"}, {"title", "A scenario of tarn-gateway"}};
    schema.update(object<Model>()->schema());
    return schema;
}

} // namespace tarn::simulator
