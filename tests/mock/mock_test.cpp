// The scripted platform when the component makes the expected calls.
#include "kor_iil_mock.hpp"

#include "kor_iil.h"
#include "tarn_api.h"
#include "tarn_frame.h"
#include "tarn_qtn_monitor_api.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using tarn::mock::Platform;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

// The events that keepEvent was called with.
std::vector<std::string> received;

void keepEvent(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    received.push_back(std::string(serviceId) + " " + std::to_string(evt) + " " +
                       std::string(static_cast<const char*>(data), data == nullptr ? 0 : length));
}

void keepNothing(const char*, std::uint32_t, const void*, std::uint32_t)
{
}

class Mock : public testing::Test
{
protected:
    void SetUp() override
    {
        received.clear();
    }

    Platform platform_;
};

TEST_F(Mock, AnswersAWord)
{
    platform_.expect("TARN", 0, 12).caller("ledd").wait(3).restZero().replyWord(4, 5).status(9);

    std::uint32_t level = 0;
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), 9u);
    EXPECT_EQ(level, 5u);
}

TEST_F(Mock, AnswersStatusZeroUnlessToldOtherwise)
{
    platform_.expect("TARN", 1, 12).word(0, 7).restZero();
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), 0u);
}

TEST_F(Mock, AnswersAText)
{
    platform_.expect("QTN_RPC_PROXY", 42, 9376).replyText(1152, "v36.7.1");

    char version[16] = "";
    EXPECT_EQ(tarn_qcsapi_firmware_get_version("ledd", version, sizeof version), 0);
    EXPECT_STREQ(version, "v36.7.1");
}

TEST_F(Mock, AnswersBytesAndAByte)
{
    const std::uint8_t mac[6] = {2, 0, 0, 0, 0, 9};
    platform_.expect("TARN", 76, 44).replyBytes(32, mac, sizeof mac);
    platform_.expect("TARN", 15, 9584).replyByte(28, 0x12);

    std::uint8_t address[6] = {};
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 1, 0, address), 0u);
    EXPECT_EQ(std::memcmp(address, mac, sizeof mac), 0);
    std::uint8_t power = 0;
    EXPECT_EQ(TarnGetRadioCurrentTransmitPowerLevel("ledd", 1, &power), 0u);
    EXPECT_EQ(power, 0x12);
}

TEST_F(Mock, ComparesBytesTextsAndAByte)
{
    std::uint8_t list[64];
    for (std::size_t i = 0; i < sizeof list; ++i)
        list[i] = static_cast<std::uint8_t>(i);
    platform_.expect("QTN_RPC_PROXY", 27, 9376)
        .text(0, 65, "wifi0")
        .bytes(104, list, sizeof list)
        .byte(1144, 1)
        .byte(1148, 2)
        .restZero();

    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", "wifi0", list, 1, 2), 0);
}

TEST_F(Mock, FailsWithAnIpcStatus)
{
    platform_.expect("TARN", 0, 12).fail(7);
    platform_.expect("TARN", 0, 12).fail(21);

    std::uint32_t level = 77;
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), 2u);
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), 1u);
    EXPECT_EQ(level, 77u);
    EXPECT_THAT(platform_.traceTexts(),
                ElementsAre("fail to KorIilExecute(), err = TIMEOUT", "fail to KorIilExecute(), err = BUSY"));
}

TEST_F(Mock, TakesCallsInOrder)
{
    platform_.expect("TARN", 1, 12).word(0, 1);
    platform_.expect("QTN_RPC_PROXY", 1, 9376);
    platform_.expect("TARN", 1, 12).word(0, 2);

    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 0u);
    EXPECT_EQ(tarn_qcsapi_init("ledd"), 0);
    EXPECT_EQ(TarnSetLogLevel("ledd", 2), 0u);
}

TEST_F(Mock, RecordsTraces)
{
    EXPECT_EQ(TarnGetLogLevel("ledd", nullptr), 3u);
    EXPECT_EQ(TarnSetLogLevel("\x01", 1), 3u);

    const auto traces = platform_.traces();
    ASSERT_EQ(traces.size(), 2u);
    EXPECT_EQ(traces[0].level, 1u);
    EXPECT_EQ(traces[0].fileTag, "tarn_api");
    EXPECT_EQ(traces[0].format, "level is NULL");
    EXPECT_EQ(traces[0].text, "level is NULL");
    EXPECT_EQ(traces[1].format, "invalid id is %s");
    EXPECT_EQ(traces[1].text, "invalid id is \x01");
    EXPECT_NE(traces[0].line, traces[1].line);
    EXPECT_EQ(KorIilMockTraceAt(2), nullptr);
}

TEST_F(Mock, KeepsTracesInPlaceAsMoreAreWritten)
{
    KorIilTrace(4, "tag", 1, "%s %d", "first", 1);
    const KorIilMockTrace* const first = KorIilMockTraceAt(0);
    for (int i = 0; i < 1000; ++i)
        KorIilTrace(1, "tag", 2, "more");
    EXPECT_EQ(KorIilMockTraceAt(0), first);
    EXPECT_STREQ(first->text, "first 1");
    EXPECT_EQ(first->level, 4u);
    EXPECT_EQ(KorIilMockTraceCount(), 1001u);
}

TEST_F(Mock, RendersLongTraces)
{
    const std::string text(5000, 'x');
    KorIilTrace(1, "tag", 1, "%s", text.c_str());
    EXPECT_EQ(platform_.traceTexts(), std::vector<std::string>{text});
}

TEST_F(Mock, DeliversEventsToTheSubscribed)
{
    platform_.expectSubscribe("TARN", 2).caller("ledd");
    EXPECT_EQ(platform_.deliver("TARN", 2), 0u);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 2, nullptr, &keepEvent), 0u);

    EXPECT_EQ(platform_.deliver("TARN", 2, "data", 4), 1u);
    EXPECT_EQ(platform_.deliver("TARN", 3, "data", 4), 0u);
    EXPECT_EQ(platform_.deliver("QTN_MIRROR", 2, "data", 4), 0u);
    EXPECT_THAT(received, ElementsAre("TARN 2 data"));

    platform_.expectCancel("TARN", 2).caller("ledd");
    EXPECT_EQ(tarnCancelEvent("ledd", 2, nullptr, &keepEvent), 0u);
    EXPECT_EQ(platform_.deliver("TARN", 2, "data", 4), 0u);
}

TEST_F(Mock, DeliversToEachSubscription)
{
    platform_.expectSubscribe("TARN", 1);
    platform_.expectSubscribe("TARN", 1);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, &keepEvent), 0u);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, &keepNothing), 0u);
    EXPECT_EQ(platform_.deliver("TARN", 1), 2u);
    EXPECT_THAT(received, ElementsAre("TARN 1 "));
}

TEST_F(Mock, SubscribesNothingWhenASubscriptionIsToFail)
{
    platform_.expectSubscribe("TARN", 1).fail(9);
    platform_.expectCancel("TARN", 1).fail(18);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, &keepEvent), 1u);
    EXPECT_EQ(tarnCancelEvent("ledd", 1, nullptr, &keepEvent), 1u);
    EXPECT_EQ(platform_.deliver("TARN", 1), 0u);
    EXPECT_THAT(platform_.traceTexts(),
                ElementsAre("fail to KorIilSubscribeEvent(EVT_RADIO_STATUS_CHANGED), err = UNKNOWN_DST_ID",
                            "fail to KorIilCancelEvent(EVT_RADIO_STATUS_CHANGED), err = BAD_EVT"));
}

TEST_F(Mock, LetsAHandlerCallTheLibrary)
{
    platform_.expectSubscribe("TARN", 2);
    platform_.expect("TARN", 1, 12);
    const auto handler = [](const char*, std::uint32_t evt, const void*, std::uint32_t) { TarnSetLogLevel("ledd", evt); };
    EXPECT_EQ(tarnSubscribeEvent("ledd", 2, nullptr, handler), 0u);
    EXPECT_EQ(platform_.deliver("TARN", 2), 1u);
}

TEST_F(Mock, HandsEverythingToAHandlerInPlaceOfTheScript)
{
    struct Seen
    {
        const char* callerId;
        std::string serviceId;
        std::uint32_t wait, command, length;
    } seen{};
    KorIilMockOnExecute(
        [](void* context, const char* callerId, const char* serviceId, std::uint32_t wait, std::uint32_t command,
           std::uint32_t length, void* message)
        {
            *static_cast<Seen*>(context) = {callerId, serviceId, wait, command, length};
            std::memset(message, 0x11, length);
            return 0u;
        },
        &seen);

    const char id[] = "ledd";
    std::uint32_t level = 0;
    EXPECT_EQ(TarnGetLogLevel(id, &level), 0x11111111u);
    EXPECT_EQ(level, 0x11111111u);
    EXPECT_EQ(seen.callerId, id);
    EXPECT_EQ(seen.serviceId, "TARN");
    EXPECT_EQ(seen.wait, 3u);
    EXPECT_EQ(seen.command, 0u);
    EXPECT_EQ(seen.length, 12u);
}

TEST_F(Mock, HandsTracesToAHandlerWithTheirArguments)
{
    const char* argument = nullptr;
    KorIilMockOnTrace([](void* context, std::uint32_t, const char*, std::uint32_t, const char*, va_list arguments)
                      { *static_cast<const char**>(context) = va_arg(arguments, const char*); },
                      &argument);
    const char id[] = "\x01";
    EXPECT_EQ(TarnSetLogLevel(id, 1), 3u);
    EXPECT_EQ(argument, id);
    EXPECT_EQ(KorIilMockTraceCount(), 0u);
}

TEST(MockReset, ForgetsEverything)
{
    {
        Platform platform;
        platform.expectSubscribe("TARN", 1);
        EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, &keepNothing), 0u);
        KorIilTrace(1, "tag", 1, "text");
        KorIilMockOnExecute(
            [](void*, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t, void*) { return 5u; }, nullptr);
    }
    Platform platform;
    EXPECT_THAT(platform.traces(), IsEmpty());
    EXPECT_EQ(platform.deliver("TARN", 1), 0u);
    platform.expect("TARN", 1, 12);
    EXPECT_EQ(TarnSetLogLevel("ledd", 1), 0u);
}

} // namespace
