#include "scenario.h"

#include "base/join.h"
#include "base/json_reader.h"
#include "description.h"
#include "embedded_files.h"
#include "lists.h"

#include <set>

namespace tarn::simulator
{

namespace
{

using base::JsonObject;
using base::JsonValue;

// --- What must hold between values -------------------------------------------------------------------------------------------

// A radio whose channel is not given takes the lowest it may have. The one that it starts with counts as checked for radar.
void checkChannel(JsonObject& object, Radio& radio)
{
    const std::vector<std::uint32_t> channels = radio.allowedChannels();
    const JsonValue channel = object["channel"];
    if (channels.empty())
        object["bandwidth"].fail(std::string("a bandwidth that the ") + toString(radio.band) + " band has channels of");
    if (!contains(channels, radio.settings.channel) && channel)
        channel.fail("one of " + base::join(channels, " ") + ", the channels of the " + toString(radio.band) + " band at " +
                     std::to_string(radio.settings.bandwidth) + " MHz in country " + radio.settings.country);
    if (!contains(channels, radio.settings.channel))
        radio.settings.channel = channels.front();
    if (!object["checkedChannels"])
        radio.checkedChannels.insert(radio.settings.channel);
}

// A name or an address belongs to one thing in the whole gateway.
class UniqueThings
{
public:
    void checkInterface(JsonObject& object)
    {
        const JsonValue name = object["name"];
        if (!names_.insert(name.text()).second)
            name.fail("a name that no other interface of the gateway has");
        checkAddress(object["bssid"]);
        for (const char* list : {"stations", "away"})
            if (const JsonValue stations = object[list])
                for (JsonObject& station : stations.objects())
                    checkAddress(station["address"]);
    }

private:
    void checkAddress(const JsonValue& value)
    {
        if (!addresses_.insert(value.parsed([](const std::string& text) { return base::parseMacAddress(text); }, "")).second)
            value.fail("an address that nothing else in the gateway has");
    }

    std::set<std::string> names_;
    std::set<MacAddress> addresses_;
};

void checkRadios(const JsonValue& radios, Model& model)
{
    UniqueThings things;
    bool hasModule = false;
    std::size_t index = 0;
    for (JsonObject& object : radios.objects())
    {
        Radio& radio = model.radios[index++];
        for (JsonObject& interface : object["interfaces"].objects())
            things.checkInterface(interface);
        for (Neighbour& neighbour : radio.neighbours)
            neighbour.band = radio.band;
        checkChannel(object, radio);
        hasModule = hasModule || radio.onModule;
    }
    if (!hasModule)
        radios.fail("at least one with \"onModule\": true");
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
        if (what == Occurrence::kDownloadEnds || what == Occurrence::kProductionEnds)
            continue;
        const std::size_t radioId = numberIn(object["radio"], model.radios.size(), "the number of a radio");
        if (what == Occurrence::kWpsWindowCloses || what == Occurrence::kStationReturns)
            numberIn(object["interface"], model.radios[radioId - 1].interfaces.size(),
                     "the number of an interface of radio " + std::to_string(radioId));
    }
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
    checkRadios(file["radios"], model);
    if (const JsonValue due = file["due"])
        checkDue(due, model);
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
