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
using InterfaceNameBlock = ProxyTest;

TEST_F(ProxyFrame, DebugValueGoesToTheSecondParameter)
{
    expectNumbersAt({kParam2}, 0, tarn_qcsapi_debug);
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
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "handle is invalid"));
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

TEST_F(ProxyFrame, InterfaceNameOf70CharactersIsCutTo64)
{
    expectCommand(31).text(kIfname, kIfnameSize, letters(64).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", letters(70).c_str()), 0);
}

TEST_F(ProxyFrame, EmptyInterfaceNameIsNoError)
{
    expectCommand(31);
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", ""), 0);
}

// For the commands that send the whole buffer. It is exactly as long as what is sent of it.
TEST_F(InterfaceNameBlock, IsSentWithoutANulBeingAdded)
{
    const std::vector<std::uint8_t> name = nonZeroBytes(kIfnameSize);
    expectCommand(107).bytes(kIfname, name.data(), name.size());
    EXPECT_EQ(tarn_qcsapi_wps_cancel("ledd", reinterpret_cast<const char*>(name.data())), 0);
}

TEST_F(ProxyFrame, TimeOutGivesTheResultOfARefusalAndLeavesTheOutput)
{
    expectOnWifi0(2).fail(7);

    std::uint32_t channel = kUntouched;
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", kWifi0, &channel), -1);
    EXPECT_EQ(channel, kUntouched);
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", kWifi0, nullptr), -1);
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
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", kWifi0, &channel), -1);
    EXPECT_EQ(channel, 36u);
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

} // namespace
} // namespace tarn::test
