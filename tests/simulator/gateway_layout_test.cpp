#include "support.h"

#include "simulator/gateway_layout.h"
#include "simulator/records.h"
#include "simulator/scenario.h"
#include "support/second_gateway.h"
#include "support/temporary_directory.h"

#include <cstring>
#include <fstream>

#include <gmock/gmock.h>

namespace simulator_test
{

using namespace tarn::simulator; // NOLINT(google-build-using-namespace): the names of its objects

template <typename Settings>
void takesAll(const char* configuration)
{
    Settings settings;
    Record record = blank(configuration);
    fill(record, settings); // with values that are good
    Changes<Settings> changes;
    for (const tarn::layout::Field& field : record.own().fields)
        ASSERT_NO_THROW(changes.take(record, {field.name})) << configuration << ' ' << field.name;
}

// Every byte of every field is written: what was there before makes no difference.
template <typename Fill>
void expectAllFilled(const char* name, Fill fillIt)
{
    Record zeros = blank(name);
    Record ones(layoutNamed(name), std::vector<std::uint8_t>(zeros.bytes().size(), 0xff));
    fillIt(zeros);
    fillIt(ones);
    for (const tarn::layout::Field& field : zeros.own().fields)
    {
        if (field.type == tarn::layout::FieldType::kArray)
            continue; // has as many elements as there are
        for (std::uint32_t i = 0; i < field.size; ++i)
            EXPECT_EQ(zeros.bytes().at(field.offset + i), ones.bytes().at(field.offset + i)) << name << ' ' << field.name;
    }
}

// A configuration can only be taken into settings that its fields name.
TEST(OwnLayout, EveryFieldOfAConfigurationIsASetting)
{
    takesAll<RadioSettings>("TarnRadioCfg");
    takesAll<RadioSettings>("TarnRadioExCfg");
    takesAll<InterfaceSettings>("TarnSsidIntfCfg");
    takesAll<InterfaceSettings>("TarnAccessPointCfg");
    takesAll<InterfaceSettings>("TarnAccessPointSecurityCfg");
    takesAll<InterfaceSettings>("TarnAccessPointWpsCfg");
    takesAll<ModuleSettings>("TarnQuantennaSmartWiFiQcommCfg");
    takesAll<SteeringSettings>("TarnQuantennaSmartWiFiQslPart1Cfg");
    takesAll<SteeringSettings>("TarnQuantennaSmartWiFiQslPart2Cfg");
}

// No field is left unwritten: the layout documents each of them.
TEST(OwnLayout, EveryFieldOfADescriptionIsFilled)
{
    tarn::simulator::Model model;
    tarn::simulator::readDefaultScenario(model);
    model.start();
    const Radio& radio = model.radio(1);
    const Interface& interface = model.interfaceOf(1, 1);
    const auto with = [](const auto& object) { return [&](Record& record) { fill(record, object); }; };
    expectAllFilled("TarnRadioData", with(radio));
    expectAllFilled("TarnNeighborBss", with(model.air.neighbours.front()));
    expectAllFilled("TarnSsidIntfData", with(interface));
    expectAllFilled("TarnAccessPointData", with(interface));
    expectAllFilled("TarnAccessPointSecurityData", with(interface));
    expectAllFilled("TarnQuantennaSmartWiFiQslData", with(model.smartWiFi.domains.front()));
    expectAllFilled("TarnQuantennaSmartWiFiBSSEntryData", with(BssEntry{}));
    expectAllFilled("TarnQuantennaSmartWiFiAssoiatedData", with(StationEntry{}));
    expectAllFilled("TarnQuantennaSmartWiFiRecordInfoData", with(HistoryEntry{}));
    expectAllFilled("TarnAccessPointAssociatedData",
                    [&](Record& record)
                    {
                        fillStation(record, model, interface, interface.stations.front());
                        record.setText("name", interface.name);
                    });
}

TEST(RecordTest, KeepsWhatItIsGiven)
{
    Record record = blank("TarnSsidIntfCfg");
    record.setText("ssid", std::string(40, 'x'));
    record.setNumber("priority", 0x101);
    EXPECT_EQ(record.text("ssid"), std::string(32, 'x')); // cut, and terminated
    EXPECT_EQ(record.number("priority"), 1u);
    EXPECT_EQ(record.number("hidden"), 0u);
    EXPECT_THROW(record.number("ssid"), std::logic_error);
    EXPECT_THROW(record.number("nothing"), std::logic_error);
    EXPECT_THROW(Record(layoutNamed("TarnSsidIntfCfg"), std::vector<std::uint8_t>(39)), std::logic_error);
    EXPECT_THROW(layoutNamed("Nothing"), std::logic_error);

    Record power = blank("TarnGetRadioQuantennaCurrentTransmitPower.power");
    power.setSigned("chain1", -5);
    EXPECT_EQ(power.signedNumber("chain1"), -5);
    EXPECT_EQ(power.signedNumber("chain0"), 0);
}

// --- Other layouts than the simulator's own ---------------------------------------------------------------------------------

class GatewayLayoutTest : public SimulatorTest
{
protected:
    // SetUp, of a gateway with that layout.
    void start(const std::string& text)
    {
        const std::string path = layoutDirectory_.path("layout.json");
        std::ofstream(path) << text;
        layout_ = std::make_unique<tarn::simulator::GatewayLayout>(path);
        useLayout(path);
        SimulatorTest::SetUp();
    }

    void SetUp() override
    {
    }

    template <typename Raw>
    Record decoded(const char* name, const Raw& raw)
    {
        std::vector<std::uint8_t> bytes(sizeof raw);
        std::memcpy(bytes.data(), &raw, sizeof raw);
        return Record(layout_->record(name), bytes);
    }

    const tarn::simulator::GatewayLayout& layout() const
    {
        return *layout_;
    }

private:
    const tarn::test::TemporaryDirectory layoutDirectory_;
    std::unique_ptr<tarn::simulator::GatewayLayout> layout_;
};

constexpr char kSmall[] = R"({ "layout": 1, "name": "shed", "version": "1", "owner": "nobody",
  "values": { "state": { "running": 9, "off": 3 } },
  "records": { "TarnRadioData": { "size": 9552, "fields": [
    { "name": "channel", "offset": 1, "size": 2, "type": "number" },
    { "name": "band", "offset": 3, "size": 4, "type": "bytes" },
    { "name": "colour", "offset": 7, "size": 4, "type": "number" },
    { "name": "neighboringStatus", "offset": 11, "size": 1, "type": "number", "values": "state" } ] } },
  "arguments": { "TarnGetRadioNeighboringStatus.status": { "values": "state" },
    "TarnSetAccessPointMacFilterMode.mode": { "values": "state" } },
  "statuses": [ { "number": -1, "name": "DIM", "text": "too dark" },
    { "number": 77, "name": "BUSY", "text": "busy", "services": ["TARN"] } ] })";

TEST_F(GatewayLayoutTest, TheSecondGatewayHasItsOwnNumbersThroughout)
{
    start(tarn_test::secondGatewayText());
    TarnRadioCfg cfg = {};
    TarnRadioData raw;
    EXPECT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    const Record data = decoded("TarnRadioData", raw);
    EXPECT_EQ(data.number("channel"), 36u);
    EXPECT_EQ(data.text("band"), "5GHz");
    EXPECT_EQ(data.number("possibleChannels[1]"), 40u);
    EXPECT_NE(recordOf("TarnRadioData", raw).number("channel"), 36u); // where the simulator's own has it

    Record change(layout().record("TarnRadioCfg"));
    change.setNumber("channel", 44);
    std::memcpy(&cfg, change.bytes().data(), sizeof cfg);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 1u << 28, cfg), kDone);
    EXPECT_EQ(state("/radios/0/channel"), 44);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 2, cfg), kInvalidValue + tarn_test::kSecondGatewayStatusShift);
    EXPECT_EQ(CALL(TarnGetRadio)(9, &raw), kNoSuchObject + tarn_test::kSecondGatewayStatusShift);

    std::uint32_t status = 0;
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnGetRadioNeighboringStatus)(1, &status), kDone);
    EXPECT_EQ(status, 41u);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kBusy + tarn_test::kSecondGatewayStatusShift);
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 41), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/macFilterMode"), 1);
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 1), kDone); // without a name it is the model's own number
    char text[32];
    EXPECT_EQ(CALL(tarn_qcsapi_errno_get_message)(static_cast<std::uint32_t>(-703), text, sizeof text), kDone);
    EXPECT_STREQ(text, "busy");
    EXPECT_EQ(CALL(tarn_qcsapi_errno_get_message)(static_cast<std::uint32_t>(-203), text, sizeof text),
              kModuleNoSuchObject - tarn_test::kSecondGatewayStatusShift);
}

TEST_F(GatewayLayoutTest, EventsAreTheSecondGatewaysToo)
{
    start(tarn_test::secondGatewayText());
    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    const ReceivedEvent event = nextEvent();
    const Record data(layout().record("EVT_AP_ASSOCIATED_CHANGED"), event.data);
    EXPECT_EQ(data.address("macAddress"), kFirstStation);
    EXPECT_EQ(data.number("apId"), 1u);
    std::uint32_t first = 0;
    ASSERT_GE(event.data.size(), sizeof first);
    std::memcpy(&first, event.data.data(), sizeof first);
    EXPECT_EQ(first, 40u + 0u); // "gone"
}

TEST_F(GatewayLayoutTest, WhatTheModelDoesNotKnowStaysZeroAndWhatTheLayoutLacksIsLeftOut)
{
    start(kSmall);
    TarnRadioData raw;
    EXPECT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    std::vector<std::uint8_t> expected(sizeof raw);
    const std::uint16_t channel = 36;
    std::memcpy(expected.data() + 1, &channel, sizeof channel);
    std::vector<std::uint8_t> bytes(sizeof raw);
    std::memcpy(bytes.data(), &raw, sizeof raw);
    EXPECT_EQ(bytes, expected); // "none", the state of the scan, has no number here and is the model's 0

    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    EXPECT_EQ(decoded("TarnRadioData", raw).number("neighboringStatus"), 1u); // "running", to the model
    std::uint32_t status = 0;
    EXPECT_EQ(CALL(TarnGetRadioNeighboringStatus)(1, &status), kDone);
    EXPECT_EQ(status, 9u);

    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), 77);
    EXPECT_EQ(CALL(TarnGetRadio)(9, &raw), 0xFFFFFFFEu);                    // -1 is taken
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 9), 0xFFFFFFFDu); // "running" is no mode of a filter
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 3), kDone);       // "off" is

    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    EXPECT_TRUE(nextEvent().data.empty()); // the layout does not tell what is in it
}

TEST(MissingFromALayout, IsNothingWhereThatOneKnowsAll)
{
    EXPECT_TRUE(tarn::simulator::GatewayLayout().missing().empty());
}

TEST(MissingFromALayout, IsListedPlaceByPlace)
{
    const tarn::test::TemporaryDirectory directory;
    std::ofstream(directory.path("layout.json")) << kSmall;
    const std::vector<std::string> missing = tarn::simulator::GatewayLayout(directory.path("layout.json")).missing();
    EXPECT_THAT(missing,
                testing::IsSupersetOf({"field TarnRadioData.country", "field TarnRadioData.band, which is bytes and not text",
                                       "value none of TarnRadioData.neighboringStatus", "record TarnNeighborBss",
                                       "block tarn_qcsapi_get_cca_stats.stats", "event EVT_AP_ASSOCIATED_CHANGED",
                                       "value allow of TarnSetAccessPointMacFilterMode.mode",
                                       "selection of TarnSetRadioCfg.cfg", "status FULL of QTN_MIRROR"}));
    EXPECT_THAT(missing, testing::Not(testing::Contains("field TarnRadioData.channel")));
    EXPECT_THAT(missing, testing::Not(testing::Contains("status BUSY of TARN")));
}

} // namespace simulator_test
