// A script in the words of the contract when the script or a call is wrong: the failure must name what was expected.
#include "kor_iil_mock.h"

#include "tarn_api.h"
#include "tarn_frame.h"
#include "tarn_qtn_monitor_api.h"

#include "failures.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class NamedFailures : public tarn_test::MockFailures
{
protected:
    static KorIilMockCall* expect(const char* function, unsigned line = 12)
    {
        return KorIilMockExpectFunctionAt("a_test.cpp", line, function);
    }

    // What is reported of a step of the script, and nothing else is.
    std::string only()
    {
        EXPECT_EQ(texts_.size(), 1u);
        return texts_.empty() ? "" : texts_.front();
    }
};

// --- Names -----------------------------------------------------------------------------------------------------------------

TEST_F(NamedFailures, FunctionThatTheLibraryDoesNotHave)
{
    KorIilMockCall* const call = expect("TarnGetRadoi");
    KorIilMockInputNumber(call, "radioId", 1);
    KorIilMockOutputNumber(call, "level", 1);
    KorIilMockSentWord(call, 0, 1);
    KorIilMockStatus(call, 1);
    KorIilMockTimes(call, 2);
    KorIilMockAnyTimes(call);
    EXPECT_THAT(verify(),
                ElementsAre("a_test.cpp:12: the script expects a call of \"TarnGetRadoi\", and the library has no such "
                            "function; did you mean TarnGetRadio or TarnGetRadioAt or TarnGetRadioNum?"));
}

TEST_F(NamedFailures, ArgumentThatTheFunctionDoesNotHave)
{
    KorIilMockInputNumber(expect("TarnGetRadio"), "radoiId", 1);
    EXPECT_EQ(only(),
              "a_test.cpp:12: TarnGetRadio: there is no argument \"radoiId\"; the inputs are radioId; did you mean radioId?");
}

TEST_F(NamedFailures, InputThatIsToBeReplied)
{
    KorIilMockOutputNumber(expect("TarnGetRadioNeighboringStatus"), "radioId", 1);
    EXPECT_EQ(only(), "a_test.cpp:12: TarnGetRadioNeighboringStatus: radioId: expected an output, and this is an input; the "
                      "outputs are status");
}

TEST_F(NamedFailures, OutputThatIsToBeSent)
{
    KorIilMockInputNumber(expect("TarnGetLogLevel"), "level", 1);
    EXPECT_EQ(only(), "a_test.cpp:12: TarnGetLogLevel: level: expected an input, and this is an output; it has no inputs");
}

TEST_F(NamedFailures, ArgumentsThatAreNotInTheMessage)
{
    KorIilMockInputNumber(expect("tarn_qcsapi_wifi_get_rates"), "length", 8);
    EXPECT_THAT(only(), EndsWith("length: the size of the caller's buffer is not sent; the inputs are ifname, rate_type"));
}

TEST_F(NamedFailures, FieldThatTheLayoutLacks)
{
    KorIilMockInputNumber(expect("TarnSetRadioCfg"), "cfg.chanel", 44);
    EXPECT_THAT(
        only(),
        StartsWith("a_test.cpp:12: TarnSetRadioCfg: cfg: TarnRadioCfg has no field \"chanel\"; it has enabled, channel,"));
    EXPECT_THAT(only(), HasSubstr("; did you mean channel"));
}

TEST_F(NamedFailures, FieldOfANumber)
{
    KorIilMockInputNumber(expect("TarnSetRadioCfg"), "radioId.low", 44);
    EXPECT_THAT(only(), EndsWith("radioId.low: expected radioId as a whole, as it has no fields"));
}

TEST_F(NamedFailures, NameInACallThatIsExpectedByItsNumber)
{
    KorIilMockInputNumber(KorIilMockExpectAt("a_test.cpp", 12, "TARN", 1, 12), "level", 1);
    EXPECT_EQ(only(), "a_test.cpp:12: TARN command 1: the script names \"level\", and only a call that is expected by its "
                      "function has names");
}

TEST_F(NamedFailures, StatusThatTheServiceDoesNotHave)
{
    KorIilMockStatusNamed(expect("TarnSetLogLevel"), "BUSSY");
    EXPECT_THAT(only(),
                HasSubstr("TarnSetLogLevel: the layout tarn-gateway 1 (the simulated gateway of this kit) has no status "
                          "\"BUSSY\" of this service; it has DONE, NO_SUCH_OBJECT,"));
    EXPECT_THAT(only(), EndsWith("; did you mean BUSY?"));
}

TEST_F(NamedFailures, EventThatNoServiceHas)
{
    EXPECT_EQ(KorIilMockDeliverEvent(KorIilMockEventNamedAt("a_test.cpp", 12, "EVT_RADIO")), 0u);
    KorIilMockExpectSubscribeNamedAt("a_test.cpp", 13, "EVT_RADIO");
    EXPECT_THAT(texts_,
                ElementsAre(HasSubstr("12: there is no event \"EVT_RADIO\"; expected one of EVT_RADIO_STATUS_CHANGED, "),
                            HasSubstr("13: there is no event \"EVT_RADIO\"; expected one of ")));
    EXPECT_EQ(verify().size(), 2u) << "and no subscription is missed";
}

TEST_F(NamedFailures, FieldThatAnEventDoesNotHave)
{
    KorIilMockEvent* const event = KorIilMockEventNamedAt("a_test.cpp", 12, "EVT_RADIO_STATUS_CHANGED");
    KorIilMockEventNumber(event, "radio", 1);
    const std::uint8_t bytes[] = {1, 2, 3};
    KorIilMockEventBytes(event, "radioId", bytes, sizeof bytes);
    EXPECT_THAT(texts_,
                ElementsAre(HasSubstr("EVT_RADIO_STATUS_CHANGED: EVT_RADIO_STATUS_CHANGED has no field \"radio\"; it has "
                                      "radioId, enabled; did you mean radioId?"),
                            HasSubstr("EVT_RADIO_STATUS_CHANGED: radioId: expected 4 bytes; got 3")));
}

TEST_F(NamedFailures, LayoutThatCannotBeRead)
{
    KorIilMockUseLayoutAt("a_test.cpp", 12, "/nowhere/layout.json");
    EXPECT_THAT(only(), HasSubstr("/nowhere/layout.json"));
    EXPECT_THAT(only(), StartsWith("a_test.cpp:12: "));
}

// --- Values ----------------------------------------------------------------------------------------------------------------

TEST_F(NamedFailures, NumberThatDoesNotFit)
{
    KorIilMockInputNumber(expect("tarn_qcsapi_wifi_set_priority"), "priority", 256);
    KorIilMockInputNumber(expect("TarnSetLogLevel"), "level", 0x100000000);
    KorIilMockInputNumber(expect("TarnSetLogLevel"), "level", -0x80000001LL);
    KorIilMockOutputNumber(expect("TarnGetRadioCurrentTransmitPowerLevel"), "power", 256);
    EXPECT_THAT(texts_, ElementsAre(EndsWith("priority: expected a number from 0 to 255; got \"256\""),
                                    EndsWith("level: expected a number from 0 to 4294967295; got \"4294967296\""),
                                    EndsWith("level: expected a number from -2147483648 to 2147483647; got \"-2147483649\""),
                                    EndsWith("power: expected a number from 0 to 255; got \"256\"")));
}

TEST_F(NamedFailures, NameThatNoValueHas)
{
    KorIilMockOutputText(expect("TarnGetRadioNeighboringStatus"), "status", "runing");
    EXPECT_THAT(only(),
                EndsWith("status: expected a number from 0 to 4294967295, or one of none, running, done, cancelled; got "
                         "\"runing\"; did you mean running?"));
}

TEST_F(NamedFailures, TextThatDoesNotFit)
{
    const std::string text(65, 'x');
    KorIilMockInputText(expect("tarn_qcsapi_wifi_get_channel"), "intf_name", text.c_str());
    KorIilMockOutputText(expect("TarnGetRadioDriverVersion"), "version", (text + "x").c_str());
    EXPECT_THAT(texts_, ElementsAre(EndsWith("intf_name: expected a text of at most 64 bytes; got 65"),
                                    EndsWith("version: expected a text of at most 65 bytes; got 66")));
}

TEST_F(NamedFailures, BytesThatDoNotFit)
{
    const std::uint8_t bytes[7] = {};
    KorIilMockInputBytes(expect("TarnKickOutAccessPointAssociated"), "macAddress", bytes, sizeof bytes);
    KorIilMockInputText(expect("TarnKickOutAccessPointAssociated"), "macAddress", "02:00");
    KorIilMockInputText(expect("TarnKickOutAccessPointAssociated"), "macAddress", "0200");
    KorIilMockInputBytes(expect("TarnSetLogLevel"), "level", bytes, 4);
    KorIilMockInputBytes(expect("TarnSetRadioCfg"), "cfg.channel", bytes, 2);
    KorIilMockOutputBytes(expect("TarnGetRadioStats"), "stats", bytes, sizeof bytes);
    EXPECT_THAT(
        texts_,
        ElementsAre(EndsWith("macAddress: expected 6 bytes; got 7 bytes"),
                    EndsWith("macAddress: expected a MAC address, or 6 bytes as hexadecimal digits; got \"02:00\""),
                    EndsWith("macAddress: expected 6 bytes; got 2 bytes"), EndsWith("level: expected a number; got 4 bytes"),
                    EndsWith("cfg: channel: expected 4 bytes; got 2"), EndsWith("stats: expected 96 bytes; got 7 bytes")));
}

TEST_F(NamedFailures, NoTimesAtAll)
{
    KorIilMockTimes(expect("TarnSetLogLevel"), 0);
    EXPECT_THAT(only(), EndsWith("the script expects it 0 times; expected 1 or more, or no such line"));
}

// --- Calls -----------------------------------------------------------------------------------------------------------------

TEST_F(NamedFailures, NamesWhatWasExpectedAndWhatCame)
{
    TarnRadioCfg cfg = {};
    std::memset(&cfg, 0, sizeof cfg);
    KorIilMockCall* const call = expect("TarnSetRadioCfg");
    KorIilMockInputNumber(call, "radioId", 1);
    KorIilMockInputText(call, "cfg.enabled", "on");
    KorIilMockInputText(call, "cfg.country", "eu");
    EXPECT_EQ(TarnSetRadioCfg("ledd", 2, 0, cfg), 0u);
    EXPECT_THAT(verify(), ElementsAre("a_test.cpp:12: TarnSetRadioCfg: not as scripted\n"
                                      "radioId: expected 1, got 2\n"
                                      "cfg.enabled: expected on (1), got off (0)\n"
                                      "cfg.country: expected \"eu\", got \"\"\n"));
}

TEST_F(NamedFailures, NamesATextThatDiffers)
{
    KorIilMockInputText(expect("tarn_qcsapi_wifi_get_channel"), "intf_name", "wifi0");
    KorIilMockInputText(expect("tarn_qcsapi_wifi_get_rates"), "ifname", "wifi0");
    std::uint32_t channel = 0;
    char name[65] = "wifi0.1";
    std::uint8_t rates[4];
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", name, &channel), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_rates("ledd", name, 1, rates, sizeof rates), 0);
    EXPECT_THAT(verify(), ElementsAre(EndsWith("not as scripted\nintf_name: expected \"wifi0\", got \"wifi0.1\"\n"),
                                      EndsWith("not as scripted\nifname: expected \"wifi0\", got \"wifi0.1\"\n")));
}

TEST_F(NamedFailures, NamesWhatIsNotZeroThoughAllTheRestShouldBe)
{
    KorIilMockCall* const call = expect("TarnGetRadioChainRssiAt");
    KorIilMockInputNumber(call, "radioId", 1);
    KorIilMockSentRestZero(call);
    std::uint32_t rssi = 0;
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 1, 3, &rssi), 0u);
    EXPECT_THAT(verify(), ElementsAre(EndsWith("not as scripted\nchainIndex: expected zero, as all the rest, got 3\n")));
}

TEST_F(NamedFailures, ShowsBytesWhereNoNameIs)
{
    TarnRadioCfg cfg = {};
    std::memset(&cfg, 0, sizeof cfg);
    TarnRadioCfg sent = cfg;
    reinterpret_cast<std::uint8_t*>(&sent)[4] = 1;       // in the field "channel"
    reinterpret_cast<std::uint8_t*>(&sent)[4431] = 0xEE; // in no field
    KorIilMockInputBytes(expect("TarnSetRadioCfg"), "cfg", &cfg, sizeof cfg);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 1, 0, sent), 0u);
    const std::vector<std::string> texts = verify();
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_THAT(texts[0], HasSubstr("\ncfg.channel: expected 0, got "));
    EXPECT_THAT(texts[0], HasSubstr("\nat offset 4439: expected 00 (cfg at 8), got ee; 1 byte differs\n"));
}

TEST_F(NamedFailures, NamesTheCallThatWasNotExpected)
{
    expect("TarnGetRadioNum");
    TarnRadioCfg cfg = {};
    std::memset(&cfg, 0, sizeof cfg);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 2, 0, cfg), 1u);
    EXPECT_EQ(texts_.at(0),
              "a_test.cpp:12: unexpected call: TarnSetRadioCfg (TARN command 9) with radioId 2, param 0; expected "
              "here: TarnGetRadioNum");
}

TEST_F(NamedFailures, NamesAllFunctionsThatOneCommandMayMean)
{
    std::uint32_t status = 0;
    EXPECT_EQ(tarn_qtn_mirror_get_mirror_status("ledd", &status), -1);
    EXPECT_THAT(only(), HasSubstr("unexpected call: tarn_qtn_mirror_get_mirror_status or tarn_qtn_mirror_get_telnet_status "
                                  "(QTN_MIRROR command 0); no further call"));
}

TEST_F(NamedFailures, ShowsNoMoreThanAFewOfManyFields)
{
    TarnRadioCfg cfg = {};
    std::memset(&cfg, 0x11, sizeof cfg);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 2, 0, cfg), 1u);
    EXPECT_THAT(only(), HasSubstr("cfg.country \"\\x11\\x11\\x11\\x11\", and 2 more; no further call is expected"));
}

TEST_F(NamedFailures, CallsThatWereMadeTooSeldom)
{
    KorIilMockTimes(expect("TarnSetLogLevel"), 3);
    KorIilMockInAnyOrder(expect("TarnGetRadioNum", 13));
    KorIilMockAnyTimes(expect("TarnGetLogLevel", 14));
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 0u);
    EXPECT_THAT(verify(), ElementsAre("a_test.cpp:12: TarnSetLogLevel: expected 3 times, but made once",
                                      "a_test.cpp:13: TarnGetRadioNum: expected, but never made"));
}

TEST_F(NamedFailures, CallThatFitsNoneOfThoseInAnyOrder)
{
    for (unsigned i = 1; i < 3; ++i)
    {
        KorIilMockCall* const call = expect("TarnGetRadioNeighboringStatus", 10 + i);
        KorIilMockInputNumber(call, "radioId", i);
        KorIilMockInAnyOrder(call);
    }
    std::uint32_t status = 0;
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, &status), 0u);
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 1, &status), 1u);
    EXPECT_EQ(TarnGetRadioNeighboringStatus("ledd", 2, &status), 0u);
    EXPECT_THAT(verify(),
                ElementsAre("a_test.cpp:11: unexpected call: TarnGetRadioNeighboringStatus (TARN command 20) with "
                            "radioId 1; expected at any time: TarnGetRadioNeighboringStatus\n"
                            "not the TarnGetRadioNeighboringStatus of line 11: it has been made as often as expected\n"
                            "not the TarnGetRadioNeighboringStatus of line 12: radioId: expected 2, got 1\n"));
}

} // namespace
