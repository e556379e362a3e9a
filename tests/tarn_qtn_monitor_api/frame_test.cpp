// What every call through the proxy does alike: checks, message, failures, result.
#include "proxy_test.h"
#include "support/ipc_status_names.h"

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::test
{
namespace
{

using ProxyFrame = ProxyTest;

TEST_F(ProxyFrame, DebugValueGoesToTheSecondParameter)
{
    expectCommand(0).word(kParam2, 0x12345678);
    EXPECT_EQ(tarn_qcsapi_debug("ledd", 0x12345678), 0);
}

TEST_F(ProxyFrame, InitSendsAMessageOfZeros)
{
    expectCommand(1).status(5);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), 5);
}

TEST_F(ProxyFrame, EachInputHasItsPlaceInTheMessage)
{
    expectCommand(25).text(0, 65, "wifi0").text(68, 36, "eu").word(104, 80).word(1144, 7).replyText(1152, "36,40,44,48");

    char channels[16] = "";
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", "wifi0", "eu", 80, 7, channels, sizeof channels),
              0);
    EXPECT_STREQ(channels, "36,40,44,48");
}

TEST_F(ProxyFrame, CallerIdMayHave31Characters)
{
    const std::string longest = letters(31);
    platform.expect("QTN_RPC_PROXY", 1, kMessageSize).caller(longest.c_str());
    EXPECT_EQ(tarn_qcsapi_init(longest.c_str()), 0);
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(ProxyFrame, CallerIdMayHaveOneCharacter)
{
    platform.expect("QTN_RPC_PROXY", 1, kMessageSize).caller("l");
    EXPECT_EQ(tarn_qcsapi_init("l"), 0);
}

TEST_F(ProxyFrame, OnlyTheFirstByteOfACallerIdMustBePrintable)
{
    for (const char* id : {" ", "\x7F", "l\x80\xFF\x01"})
    {
        platform.expect("QTN_RPC_PROXY", 1, kMessageSize).caller(id);
        EXPECT_EQ(tarn_qcsapi_init(id), 0);
    }
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

// The buffer is no longer than what may be read of it.
TEST_F(ProxyFrame, CallerIdWithoutNulInItsFirst32BytesIsRefused)
{
    const std::vector<char> endless(32, 'a');
    EXPECT_EQ(tarn_qcsapi_init(endless.data()), -1);
    EXPECT_EQ(tarn_qcsapi_init(letters(32).c_str()), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is invalid", "handle is invalid"));
}

TEST_F(ProxyFrame, CallerIdThatIsEmptyOrStartsUnprintablyIsRefused)
{
    for (const char* id : {"", "\x01ledd", "\x1Fledd", "\x80ledd", "\xFFledd"})
        EXPECT_EQ(tarn_qcsapi_init(id), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is invalid", "handle is invalid", "handle is invalid",
                                                   "handle is invalid", "handle is invalid"));
}

// The device service's functions name the caller id in their trace, these do not.
TEST_F(ProxyFrame, TraceOfAnInvalidCallerIdIsAFixedText)
{
    EXPECT_EQ(tarn_qcsapi_init(""), -1);
    ASSERT_EQ(platform.traces().size(), 1u);
    EXPECT_EQ(platform.traces()[0].format, "handle is invalid");
}

TEST_F(ProxyFrame, CallerIdIsCheckedBeforeThePointers)
{
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("handle is NULL", "handle is invalid", "intf_name is NULL", "channel is NULL"));
}

TEST_F(ProxyFrame, TracesCarryLevelTagAndALineOfTheFunction)
{
    expectCommand(1).fail(7);
    EXPECT_EQ(tarn_qcsapi_init(nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), -1);
    EXPECT_EQ(tarn_qcsapi_debug(nullptr, 0), -1);

    const std::vector<mock::Trace> traces = platform.traces();
    ASSERT_EQ(traces.size(), 3u);
    for (const mock::Trace& trace : traces)
    {
        EXPECT_EQ(trace.level, 1u);
        EXPECT_EQ(trace.fileTag, "tarn_qtn_monitor_api");
        EXPECT_NE(trace.line, 0u);
    }
    EXPECT_NE(traces[0].line, traces[2].line);
}

TEST_F(ProxyFrame, InterfaceNameOf64CharactersIsSentWhole)
{
    expectCommand(31).text(kIfname, kIfnameSize, letters(64).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", letters(64).c_str()), 0);
}

TEST_F(ProxyFrame, InterfaceNameOf70CharactersIsCutTo64)
{
    expectCommand(31).text(kIfname, kIfnameSize, letters(64).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", letters(70).c_str()), 0);
}

TEST_F(ProxyFrame, InterfaceNameIsSentUpToItsNul)
{
    const char name[kIfnameSize] = "wifi0\0left over";
    expectOnWifi0(31);
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", name), 0);
}

TEST_F(ProxyFrame, EmptyInterfaceNameIsNoError)
{
    expectCommand(31);
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", ""), 0);
}

TEST_F(ProxyFrame, TimeOutGivesTheResultOfARefusalAndLeavesTheOutput)
{
    expectOnWifi0(2).fail(7);

    std::uint32_t channel = kUntouched;
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", &channel), -1);
    EXPECT_EQ(channel, kUntouched);
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", nullptr), -1);
}

TEST_F(ProxyFrame, EveryIpcFailureIsTracedByNameAndGivesMinusOne)
{
    for (std::uint32_t status = 1; status <= kIpcStatusCount; ++status)
    {
        expectCommand(1).fail(status);
        EXPECT_EQ(tarn_qcsapi_init("ledd"), -1);

        const std::vector<mock::Trace> traces = platform.traces();
        ASSERT_EQ(traces.size(), status);
        EXPECT_EQ(traces.back().format, "fail to KorIilExecute(), err = %s");
        EXPECT_EQ(traces.back().text, std::string("fail to KorIilExecute(), err = ") + ipcStatusName(status));
    }
}

TEST_F(ProxyFrame, IpcStatusBeyondTheTableIsUnknown)
{
    expectCommand(1).fail(0xFFFFFFFF);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("fail to KorIilExecute(), err = Unknown"));
}

TEST_F(ProxyFrame, ReplyStatusIsReturnedAsItIsAndNotTraced)
{
    for (const std::int32_t status : {1, 2, 3, -1, -22, std::numeric_limits<std::int32_t>::min()})
    {
        expectCommand(1).status(static_cast<std::uint32_t>(status));
        EXPECT_EQ(tarn_qcsapi_init("ledd"), status);
    }
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(ProxyFrame, OutputsAreCopiedWhateverTheReplyStatus)
{
    expectOnWifi0(2).replyWord(kOut, 36).status(static_cast<std::uint32_t>(-1));

    std::uint32_t channel = kUntouched;
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", &channel), -1);
    EXPECT_EQ(channel, 36u);
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(ProxyFrame, NothingOfOneCallIsSentWithTheNext)
{
    expectOnWifi0(37).word(kParam1, 5).text(kParam2, kParam2Size, letters(128).c_str());
    expectCommand(1);
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", "wifi0", 5, letters(128).c_str()), 0);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), 0);
}

} // namespace
} // namespace tarn::test
