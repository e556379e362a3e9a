#include "support.h"

#include "base/json_reader.h"
#include "contract/contract.h"
#include "simulator/handlers.h"
#include "simulator/layout.h"
#include "simulator/records.h"
#include "simulator/reply_status.h"
#include "simulator/scenario.h"

#include <set>

namespace simulator_test
{

using tarn::simulator::Layout;
using tarn::simulator::layouts;
using tarn::simulator::parseLayouts;
namespace contract = tarn::contract;

TEST(LayoutTest, EveryRecordOfTheContractHasOneOfItsSize)
{
    for (const contract::Contract& service : contract::all())
    {
        for (const contract::RecordType& record : service.records)
            EXPECT_EQ(tarn::simulator::layout(record.name).size, record.size) << record.name;
        for (const contract::Event& event : service.events)
            EXPECT_GT(tarn::simulator::layout(event.name).size, 0u) << event.name;
    }
}

// A layout of no record is named FUNCTION.ARGUMENT, and is as long as that argument.
TEST(LayoutTest, EveryOtherLayoutIsOfAnArgument)
{
    for (const Layout& entry : layouts())
    {
        const std::size_t dot = entry.name.find('.');
        if (dot == std::string::npos || entry.name == "tarn_qcsapi_set_params.set_params.entry")
            continue;
        const contract::Row row = contract::find(entry.name.substr(0, dot));
        ASSERT_TRUE(row) << entry.name;
        const contract::Argument* argument = row.command->argument(entry.name.substr(dot + 1));
        ASSERT_NE(argument, nullptr) << entry.name;
        EXPECT_EQ(entry.size, argument->size) << entry.name;
    }
}

// A configuration can only be taken into settings that its fields name.
TEST(LayoutTest, EveryFieldOfAConfigurationIsASetting)
{
    const std::pair<const char*, const tarn::simulator::Properties&> kOwners[] = {
        {"TarnRadioCfg", tarn::simulator::radioProperties()},
        {"TarnRadioExCfg", tarn::simulator::radioProperties()},
        {"TarnSsidIntfCfg", tarn::simulator::interfaceProperties()},
        {"TarnAccessPointCfg", tarn::simulator::interfaceProperties()},
        {"TarnAccessPointSecurityCfg", tarn::simulator::interfaceProperties()},
        {"TarnAccessPointWpsCfg", tarn::simulator::interfaceProperties()},
        {"TarnQuantennaSmartWiFiQcommCfg", tarn::simulator::moduleProperties()},
        {"TarnQuantennaSmartWiFiQslPart1Cfg", tarn::simulator::steeringProperties()},
        {"TarnQuantennaSmartWiFiQslPart2Cfg", tarn::simulator::steeringProperties()}};
    for (const auto& [name, properties] : kOwners)
    {
        const tarn::simulator::Settings settings(properties);
        for (const tarn::simulator::Field& field : tarn::simulator::layout(name).fields)
        {
            ASSERT_NE(settings.property(field.name), nullptr) << name << ' ' << field.name;
            EXPECT_EQ(field.type == tarn::simulator::FieldType::kText, settings.property(field.name)->isText()) << field.name;
        }
    }
}

// No field is left unwritten: layouts.json documents each of them.
TEST(LayoutTest, EveryFieldOfADescriptionIsFilled)
{
    const ManualClock clock;
    tarn::simulator::Model model(clock);
    tarn::simulator::readDefaultScenario(model);
    model.start();
    tarn::simulator::Radio& radio = model.radio(1);
    tarn::simulator::Interface& interface = model.interfaceOf(1, 1);
    const std::vector<std::string> none;

    Record record = blank("TarnRadioData");
    fillRadio(record, radio);
    EXPECT_EQ(record.untouched(), none);
    record = blank("TarnNeighborBss");
    fillNeighbour(record, radio.neighbours.front());
    EXPECT_EQ(record.untouched(), none);
    record = blank("TarnSsidIntfData");
    fillInterface(record, interface);
    EXPECT_EQ(record.untouched(), none);
    record = blank("TarnAccessPointData");
    fillAccessPoint(record, interface);
    EXPECT_EQ(record.untouched(), none);
    record = blank("TarnAccessPointWpsData");
    fillWps(record, model, interface);
    EXPECT_EQ(record.untouched(), none);
    record = blank("TarnAccessPointAssociatedData");
    fillStation(record, model, interface, interface.stations.front());
    EXPECT_EQ(record.untouched(), std::vector<std::string>{"name"});
    for (const char* name : {"TarnAccessPointSecurityData", "TarnQuantennaSmartWiFiQslData"})
    {
        record = blank(name);
        record.fill(interface.settings);
        record.fill(model.smartWiFi.domains.front().settings);
        EXPECT_EQ(record.untouched(), none) << name;
    }
}

TEST(LayoutTest, RecordKeepsWhatItIsGiven)
{
    Record record = blank("TarnSsidIntfCfg");
    record.setText("ssid", std::string(40, 'x'));
    record.setNumber("hidden", 0x101);
    EXPECT_EQ(record.text("ssid"), std::string(32, 'x')); // cut, and terminated
    EXPECT_EQ(record.number("hidden"), 1u);
    EXPECT_EQ(record.number("priority"), 0u);
    EXPECT_THROW(record.number("ssid"), std::logic_error);
    EXPECT_THROW(record.number("nothing"), std::logic_error);
    EXPECT_THROW(Record(tarn::simulator::layout("TarnSsidIntfCfg"), std::vector<std::uint8_t>(39)), std::logic_error);
    EXPECT_THROW(tarn::simulator::layout("Nothing"), std::logic_error);

    Record power = blank("TarnGetRadioQuantennaCurrentTransmitPower.power");
    power.setSigned("chain1", -5);
    EXPECT_EQ(power.signedNumber("chain1"), -5);
    EXPECT_EQ(power.signedNumber("chain0"), 0);
}

TEST(LayoutTest, RecordBecomesTheChangesThatAreSelected)
{
    Record record = blank("TarnSsidIntfCfg");
    record.setText("ssid", "a");
    record.setNumber("enabled", 1);
    EXPECT_EQ(record.changes(0).size(), 5u);
    const tarn::simulator::Changes changes = record.changes(0x11);
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[0].first, "ssid");
    EXPECT_EQ(changes[1].first, "enabled");
    EXPECT_THROW(record.changes(0x20), tarn::simulator::Refused);
}

TEST(LayoutTest, UnsoundLayoutsAreRefused)
{
    const auto errorOf = [](const std::string& field) -> std::string
    {
        try
        {
            parseLayouts(R"({"layouts": 1, "records": {"R": {"size": 8, "fields": [)"
                         R"({"name": "a", "offset": 0, "size": 4, "type": "number"}, )" +
                             field + "]}}}",
                         "f");
        }
        catch (const tarn::base::JsonError& error)
        {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 4, "size": 4, "type": "number"})"), "");
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 0, "size": 4, "type": "number"})"),
              "f: /records/R/fields/1/offset: 0; expected a field after the one before it and within the record's 8 bytes");
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 4, "size": 5, "type": "bytes"})"),
              "f: /records/R/fields/1/offset: 4; expected a field after the one before it and within the record's 8 bytes");
    EXPECT_EQ(errorOf(R"({"name": "a", "offset": 4, "size": 4, "type": "number"})"),
              "f: /records/R/fields/1/name: \"a\"; expected a name that no earlier field has");
    EXPECT_EQ(
        errorOf(R"({"name": "b", "offset": 5, "size": 2, "type": "number"})"),
        "f: /records/R/fields/1: {\"name\":\"b\",\"offset\":5,\"size\":2,\"type\":\"number\"}; expected a number of 1, 2 or 4 "
        "bytes at a multiple of its size, an address of 6 bytes, or a text or bytes of at least 1");
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 4, "size": 4, "type": "word"})"),
              "f: /records/R/fields/1/type: \"word\"; expected one of number, signed, text, bytes, address");
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 4, "type": "text"})"),
              "f: /records/R/fields/1/size: missing; expected an integer from 0 to 65536");
    EXPECT_EQ(errorOf(R"({"name": "b", "offset": 4, "size": 4, "type": "text", "units": "MHz"})"),
              "f: /records/R/fields/1/units: unknown key (did you mean unit?); expected one of name, type, offset, size, unit");
    EXPECT_THROW(parseLayouts("{", "f"), tarn::base::JsonError);
}

} // namespace simulator_test
