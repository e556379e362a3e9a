// A script in the words of the contract: functions, arguments and fields by their names.
#include "kor_iil_mock.hpp"

#include "kor_iil.h"
#include "support/second_gateway.h"
#include "support/temporary_directory.h"
#include "tarn_api.h"
#include "tarn_frame.h"
#include "tarn_qtn_monitor_api.h"

#include "layout/decode.h"
#include "layout/encode.h"
#include "layout/layout.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using tarn::mock::Platform;
using testing::ElementsAre;

namespace
{

template <typename Record>
std::string fieldOf(const Record& record, const char* recordName, const std::string& field)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&record);
    for (const tarn::layout::FieldLine& line :
         tarn::layout::linesOf(tarn::layout::decode(*tarn::layout::simulated().record(recordName), bytes, sizeof record)))
        if (line.name == field)
            return line.value;
    return "no such field";
}

template <typename Record>
void setField(Record& record, const char* recordName, const std::string& field, const std::string& value)
{
    tarn::base::Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    tarn::layout::encode(*tarn::layout::simulated().record(recordName), field, value, bytes);
    std::memcpy(&record, bytes.data(), sizeof record);
}

// The events that keepNamedEvent was called with.
std::vector<std::string> receivedFields;

void keepNamedEvent(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    const char* const names[] = {"EVT_RADIO_STATUS_CHANGED", "EVT_RADIO_OPR_CHANNEL_CHANGED", "EVT_RADIO_OPR_BANDWIDTH_CHANGED",
                                 "EVT_AP_ASSOCIATED_CHANGED"};
    std::string text = std::string(serviceId) + " " + std::to_string(evt);
    const tarn::layout::Structure& structure = *tarn::layout::simulated().event(names[evt - 1]);
    for (const tarn::layout::FieldLine& line :
         tarn::layout::linesOf(tarn::layout::decode(structure, static_cast<const std::uint8_t*>(data), length)))
        text += ", " + line.name + " " + line.value;
    receivedFields.push_back(text);
}

class NamedScript : public testing::Test
{
protected:
    Platform platform_;
};

// --- Numbers ---------------------------------------------------------------------------------------------------------------

TEST_F(NamedScript, TakesAnIdAsTheCallerCountsAndAnswersANumber)
{
    platform_.expect("TarnGetRadioNeighboringStatus").with("radioId", 1).restZero().reply("status", 2);
    std::uint32_t status = 77;
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, &status), 0u);
    EXPECT_EQ(status, 2u);
}

TEST_F(NamedScript, TakesNamesOfValuesInPlaceOfNumbers)
{
    platform_.expect("TarnGetRadioNeighboringStatus").reply("status", "done");
    platform_.expect("TarnSetRadioQuantennaQhopEnable").with("enable", "on");
    platform_.expect("TarnGetLastErrorMask").reply("mask", "invalidValue+full");
    std::uint32_t number = 0;
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, &number), 0u);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(TarnSetRadioQuantennaQhopEnable("ledd", 1, 1), 0u);
    EXPECT_EQ(TarnGetLastErrorMask("ledd", &number), 0u);
    EXPECT_EQ(number, 10u);
}

TEST_F(NamedScript, TakesNegativeNumbers)
{
    platform_.expect("TarnGetRadioChainRssiAt").with("radioId", 1).with("chainIndex", 0).reply("rssi", -61);
    platform_.expect("TarnSetLogLevel").with("level", -1);
    std::uint32_t rssi = 0;
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 1, 0, &rssi), 0u);
    EXPECT_EQ(static_cast<std::int32_t>(rssi), -61);
    EXPECT_EQ(TarnSetLogLevel("ledd", 0xFFFFFFFFu), 0u);
}

TEST_F(NamedScript, KnowsBytesNarrowNumbersAndFlagsThatAreSentTurnedRound)
{
    platform_.expect("TarnGetRadioCurrentTransmitPowerLevel").reply("power", 75);
    platform_.expect("tarn_qcsapi_wifi_set_priority").with("ifname", "wifi0").with("priority", 7).restZero();
    platform_.expect("tarn_qcsapi_wifi_disable_wps").with("ifname", "wifi0").with("disable", 0).restZero();
    platform_.expect("tarn_qcsapi_wifi_disable_wps").with("disable", 1).restZero().with("ifname", "wifi0");
    std::uint8_t power = 0;
    EXPECT_EQ(TarnGetRadioCurrentTransmitPowerLevel("ledd", 1, &power), 0u);
    EXPECT_EQ(power, 75);
    EXPECT_EQ(tarn_qcsapi_wifi_set_priority("ledd", "wifi0", 7), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 0), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 1), 0);
}

TEST_F(NamedScript, AnswersZeroWhereItSaysNothing)
{
    platform_.expect("TarnGetRadioNum");
    platform_.expect("TarnGetRadio");
    std::uint32_t number = 77;
    EXPECT_EQ(TarnGetRadioNum("ledd", &number), 0u);
    EXPECT_EQ(number, 0u);
    TarnRadioData data;
    const TarnRadioData zero = {};
    std::memset(&data, 0xEE, sizeof data);
    EXPECT_EQ(TarnGetRadio("ledd", 2, &data), 0u);
    EXPECT_EQ(std::memcmp(&data, &zero, sizeof data), 0);
}

TEST_F(NamedScript, AnswersStatusesByNumberByNameAndBelowZero)
{
    platform_.expect("TarnSetLogLevel").status(9);
    platform_.expect("TarnSetLogLevel").status("BUSY");
    platform_.expect("tarn_qcsapi_init").status(-19);
    platform_.expect("tarn_qcsapi_init").fail(7);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 9u);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), tarn::layout::simulated().statusNamed("TARN", "BUSY")->number);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), -19);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), -1);
}

// --- Texts and bytes -------------------------------------------------------------------------------------------------------

TEST_F(NamedScript, TakesAndAnswersTexts)
{
    platform_.expect("tarn_qcsapi_wifi_get_channel").with("intf_name", std::string("wifi0")).restZero().reply("channel", 44);
    platform_.expect("tarn_qcsapi_firmware_get_version").reply("firmware_version", "v36.7.1");
    platform_.expect("TarnGetRadioDriverVersion").reply("version", "driver 9");
    std::uint32_t channel = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", &channel), 0);
    EXPECT_EQ(channel, 44u);
    char version[65] = "";
    EXPECT_EQ(tarn_qcsapi_firmware_get_version("ledd", version, sizeof version), 0);
    EXPECT_STREQ(version, "v36.7.1");
    EXPECT_EQ(TarnGetRadioDriverVersion("ledd", 1, version), 0u);
    EXPECT_STREQ(version, "driver 9");
}

TEST_F(NamedScript, ComparesATextThatIsSentAsABlockUpToItsNulOnly)
{
    char name[65];
    std::memset(name, 'x', sizeof name);
    std::strcpy(name, "wifi0");
    platform_.expect("tarn_qcsapi_wifi_get_rates").with("ifname", "wifi0").reply("rates", std::vector<std::uint8_t>{2, 4, 11});
    std::uint8_t rates[4] = {9, 9, 9, 9};
    EXPECT_EQ(tarn_qcsapi_wifi_get_rates("ledd", name, 1, rates, 3), 0);
    EXPECT_THAT(rates, ElementsAre(2, 4, 11, 9));
}

TEST_F(NamedScript, TakesAMacAddressAsATextAsAnArrayAndAsHexadecimalDigits)
{
    const std::uint8_t address[6] = {2, 0, 0, 0, 1, 5};
    const std::array<std::uint8_t, 6> same = {2, 0, 0, 0, 1, 5};
    platform_.expect("TarnKickOutAccessPointAssociated").with("macAddress", "02:00:00:00:01:05").with("apId", 2);
    platform_.expect("TarnKickOutAccessPointAssociated").with("macAddress", address);
    platform_.expect("TarnKickOutAccessPointAssociated").with("macAddress", same);
    platform_.expect("TarnKickOutAccessPointAssociated").with("macAddress", "020000000105");
    platform_.expect("TarnGetAccessPointMacFilterAt").reply("macAddress", "02:00:00:00:01:05");
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 1, 2, address), 0u);
    std::uint8_t answered[6] = {};
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 2, 0, answered), 0u);
    EXPECT_EQ(std::memcmp(answered, address, sizeof address), 0);
}

// --- Fields ----------------------------------------------------------------------------------------------------------------

TEST_F(NamedScript, AnswersFieldsOfARecord)
{
    platform_.expect("TarnGetRadio")
        .with("radioId", 1)
        .reply("data.channel", 36)
        .reply("data.band", "5GHz")
        .reply("data.temperature", -4)
        .reply("data.enabled", "on");
    TarnRadioData data;
    EXPECT_EQ(TarnGetRadio("ledd", 1, &data), 0u);
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "channel"), "36");
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "band"), "\"5GHz\"");
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "temperature"), "-4");
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "enabled"), "on (1)");
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "bandwidth"), "0");
}

TEST_F(NamedScript, ComparesFieldsOfARecordAndNoOthersUnlessToldSo)
{
    TarnRadioCfg cfg = {};
    setField(cfg, "TarnRadioCfg", "channel", "44");
    platform_.expect("TarnSetRadioCfg").with("radioId", 1).with("param", "channel").with("cfg.channel", 44).restZero();
    EXPECT_EQ(TarnSetRadioCfg("ledd", 1, 2, cfg), 0u);
    setField(cfg, "TarnRadioCfg", "bandwidth", "80");
    platform_.expect("TarnSetRadioCfg").with("cfg.channel", 44);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 1, 10, cfg), 0u);
}

TEST_F(NamedScript, TakesAWholeRecord)
{
    TarnRadioCfg cfg = {};
    setField(cfg, "TarnRadioCfg", "channel", "44");
    platform_.expect("TarnSetRadioCfg").with("cfg", cfg);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 1, 2, cfg), 0u);

    TarnRadioStats stats = {};
    setField(stats, "TarnRadioStats", "channelLoad", "60");
    platform_.expect("TarnGetRadioStats").reply("stats", stats);
    TarnRadioStats answered = {};
    EXPECT_EQ(TarnGetRadioStats("ledd", 1, &answered), 0u);
    EXPECT_EQ(fieldOf(answered, "TarnRadioStats", "channelLoad"), "60");
}

TEST_F(NamedScript, TakesFieldsOfBlocks)
{
    platform_.expect("tarn_qcsapi_wifi_get_node_stats").reply("node_stats.rxPackets", 7).reply("out0", -4);
    std::uint32_t signal = 0;
    std::uint32_t words[5] = {};
    EXPECT_EQ(tarn_qcsapi_wifi_get_node_stats("ledd", "wifi0", 0, &signal, nullptr, nullptr, nullptr, nullptr, words), 0);
    EXPECT_THAT(words, ElementsAre(0, 7, 0, 0, 0));
    EXPECT_EQ(static_cast<std::int32_t>(signal), -4);
}

TEST_F(NamedScript, ReadsFieldsWhereTheNamedLayoutFileSays)
{
    const tarn::test::TemporaryDirectory directory;
    const std::string path = directory.path("layout.json");
    std::ofstream(path) << tarn_test::secondGatewayText();
    platform_.useLayout(path.c_str());
    platform_.expect("TarnGetRadio").reply("data.channel", 36);
    TarnRadioData data;
    EXPECT_EQ(TarnGetRadio("ledd", 1, &data), 0u);
    EXPECT_EQ(fieldOf(data, "TarnRadioData", "channel"), "0") << "where the simulated gateway has it";
    const tarn::layout::Layout layout = tarn::layout::parse(tarn_test::secondGatewayText(), "second");
    std::uint32_t channel = 0;
    std::memcpy(&channel, reinterpret_cast<const char*>(&data) + layout.record("TarnRadioData")->field("channel")->offset,
                sizeof channel);
    EXPECT_EQ(channel, 36u);
}

TEST_F(NamedScript, KeepsRawBytesPossibleBesideNames)
{
    platform_.expect("TarnGetLogLevel").wait(3).caller("ledd").restZero().replyWord(4, 5);
    std::uint32_t level = 0;
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), 0u);
    EXPECT_EQ(level, 5u);
}

// --- Events ----------------------------------------------------------------------------------------------------------------

TEST_F(NamedScript, DeliversEventsByTheirFields)
{
    receivedFields.clear();
    platform_.expectSubscribe("EVT_RADIO_OPR_CHANNEL_CHANGED").caller("ledd");
    platform_.expectSubscribe("EVT_AP_ASSOCIATED_CHANGED");
    platform_.expectCancel("EVT_RADIO_OPR_CHANNEL_CHANGED");
    EXPECT_EQ(tarnSubscribeEvent("ledd", TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, nullptr, &keepNamedEvent), 0u);
    EXPECT_EQ(tarnSubscribeEvent("ledd", TARN_EVT_AP_ASSOCIATED_CHANGED, nullptr, &keepNamedEvent), 0u);

    tarn::mock::Event moved = platform_.event("EVT_RADIO_OPR_CHANNEL_CHANGED").with("radioId", 1).with("channel", 100);
    const std::uint8_t address[6] = {2, 0, 0, 0, 1, 5};
    EXPECT_EQ(moved.deliver(), 1u);
    EXPECT_EQ(
        platform_.event("EVT_AP_ASSOCIATED_CHANGED").with("macAddress", address).with("associated", "associated").deliver(),
        1u);
    EXPECT_EQ(tarnCancelEvent("ledd", TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, nullptr, &keepNamedEvent), 0u);
    EXPECT_EQ(moved.with("channel", 36).deliver(), 0u);
    EXPECT_THAT(receivedFields,
                ElementsAre("TARN 2, radioId 1, channel 100",
                            "TARN 4, radioId 0, apId 0, macAddress 02:00:00:00:01:05, associated associated (1)"));
}

// --- How often, and in which order -----------------------------------------------------------------------------------------

std::uint32_t scanOf(std::uint32_t radioId)
{
    std::uint32_t status = 0;
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", radioId, &status), 0u);
    return status;
}

TEST_F(NamedScript, TakesACallAsOftenAsItSays)
{
    platform_.expect("TarnGetRadioNeighboringStatus").times(2).reply("status", 1);
    platform_.expect("TarnGetRadioNeighboringStatus").reply("status", 2);
    EXPECT_EQ(scanOf(1), 1u);
    EXPECT_EQ(scanOf(1), 1u);
    EXPECT_EQ(scanOf(1), 2u);
}

TEST_F(NamedScript, TakesCallsInAnyOrderByTheirInputs)
{
    platform_.expect("TarnGetRadioNeighboringStatus").with("radioId", 1).reply("status", 1).inAnyOrder();
    platform_.expect("TarnGetRadioNeighboringStatus").with("radioId", 2).reply("status", 2).inAnyOrder();
    platform_.expect("TarnSetLogLevel");
    EXPECT_EQ(scanOf(2), 2u);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 0u);
    EXPECT_EQ(scanOf(1), 1u);
}

TEST_F(NamedScript, AnswersACallAnyNumberOfTimesOrNever)
{
    platform_.expect("TarnGetRadioNeighboringStatus").anyTimes().reply("status", 3);
    platform_.expect("TarnGetRadioNum").anyTimes();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(scanOf(1), 3u);
}

TEST_F(NamedScript, TakesTheCallThatIsNextBeforeOneThatMayComeAtAnyTime)
{
    platform_.expect("TarnGetRadioNeighboringStatus").anyTimes().reply("status", 3);
    platform_.expect("TarnGetRadioNeighboringStatus").with("radioId", 2).reply("status", 1);
    EXPECT_EQ(scanOf(1), 3u);
    EXPECT_EQ(scanOf(2), 1u);
    EXPECT_EQ(scanOf(2), 3u);
}

TEST_F(NamedScript, LetsATestReplaceWhatAFixtureHasSetUp)
{
    platform_.expect("TarnGetRadioNeighboringStatus").anyTimes().reply("status", 3);
    platform_.expect("TarnGetRadioNeighboringStatus").anyTimes().reply("status", 1);
    platform_.expect("TarnGetRadioNeighboringStatus").inAnyOrder().reply("status", 2);
    EXPECT_EQ(scanOf(1), 2u);
    EXPECT_EQ(scanOf(1), 1u);
}

} // namespace
