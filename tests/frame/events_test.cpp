// Subscription to the device service's events, and its cancellation.
#include "kor_iil_mock.hpp"
#include "support/samples.h"
#include "tarn_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::test
{
namespace
{

using Function = decltype(&tarnSubscribeEvent);
constexpr Function kBoth[] = {tarnSubscribeEvent, tarnCancelEvent};

// Handlers get no context, so what they saw is counted here.
unsigned seen = 0;

void handler(const char* serviceId, std::uint32_t evt, const void* data, std::uint32_t length)
{
    EXPECT_STREQ(serviceId, "TARN");
    EXPECT_EQ(evt, TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(length, 4u);
    EXPECT_EQ(*static_cast<const std::uint32_t*>(data), 42u);
    ++seen;
}

void otherHandler(const char*, std::uint32_t, const void*, std::uint32_t)
{
    ADD_FAILURE() << "this handler is subscribed to nothing";
}

struct Events : testing::Test
{
    Events()
    {
        seen = 0;
    }

    mock::Platform platform;
};

TEST_F(Events, AreNumberedFromOneToFive)
{
    EXPECT_EQ(TARN_EVT_RADIO_STATUS_CHANGED, 1u);
    EXPECT_EQ(TARN_EVT_RADIO_OPR_CHANNEL_CHANGED, 2u);
    EXPECT_EQ(TARN_EVT_RADIO_OPR_BANDWIDTH_CHANGED, 3u);
    EXPECT_EQ(TARN_EVT_AP_ASSOCIATED_CHANGED, 4u);
    EXPECT_EQ(TARN_EVT_AP_WPS_WIN_STATUS_CHANGED, 5u);
}

// The number is sent as it is, while ids in messages are sent less one.
TEST_F(Events, AreSubscribedToAndCancelledByTheirNumber)
{
    for (std::uint32_t evt = 1; evt <= 5; ++evt)
    {
        platform.expectSubscribe("TARN", evt).caller("ledd");
        platform.expectCancel("TARN", evt).caller("ledd");
        EXPECT_EQ(tarnSubscribeEvent("ledd", evt, nullptr, handler), TARN_OK);
        EXPECT_EQ(tarnCancelEvent("ledd", evt, nullptr, handler), TARN_OK);
    }
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(Events, ReachTheHandlerThatWasHandedOn)
{
    platform.expectSubscribe("TARN", 4);
    platform.expectCancel("TARN", 4);
    const std::uint32_t data = 42;

    EXPECT_EQ(tarnSubscribeEvent("ledd", 4, nullptr, handler), TARN_OK);
    EXPECT_EQ(platform.deliver("TARN", 4, &data, sizeof data), 1u);
    EXPECT_EQ(seen, 1u);

    // The scripted platform reports the cancellation of a handler that it does not have.
    EXPECT_EQ(tarnCancelEvent("ledd", 4, nullptr, handler), TARN_OK);
    EXPECT_EQ(platform.deliver("TARN", 4, &data, sizeof data), 0u);
    EXPECT_EQ(seen, 1u);
}

TEST_F(Events, CancelNamesOneHandlerOfSeveral)
{
    platform.expectSubscribe("TARN", 4);
    platform.expectSubscribe("TARN", 4);
    platform.expectCancel("TARN", 4);
    const std::uint32_t data = 42;

    EXPECT_EQ(tarnSubscribeEvent("ledd", 4, nullptr, otherHandler), TARN_OK);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 4, nullptr, handler), TARN_OK);
    EXPECT_EQ(tarnCancelEvent("ledd", 4, nullptr, otherHandler), TARN_OK);
    EXPECT_EQ(platform.deliver("TARN", 4, &data, sizeof data), 1u);
    EXPECT_EQ(seen, 1u);
}

TEST_F(Events, ThirdArgumentIsNeverRead)
{
    const void* const unreadable = reinterpret_cast<const void*>(std::uintptr_t{1});
    platform.expectSubscribe("TARN", 1);
    platform.expectCancel("TARN", 1);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, unreadable, handler), TARN_OK);
    EXPECT_EQ(tarnCancelEvent("ledd", 1, unreadable, handler), TARN_OK);
}

TEST_F(Events, NullHandlerIsThePlatformsToJudge)
{
    platform.expectSubscribe("TARN", 1).fail(3);
    platform.expectCancel("TARN", 1).fail(3);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, nullptr), TARN_FAILED);
    EXPECT_EQ(tarnCancelEvent("ledd", 1, nullptr, nullptr), TARN_FAILED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("fail to KorIilSubscribeEvent(EVT_RADIO_STATUS_CHANGED), err = BAD_PARAM",
                                                   "fail to KorIilCancelEvent(EVT_RADIO_STATUS_CHANGED), err = BAD_PARAM"));
}

TEST_F(Events, NumberOutsideOneToFiveIsRejected)
{
    for (const Function function : kBoth)
        for (const std::uint32_t evt : {0u, 6u, 7u, 0x80000001u, 0xFFFFFFFFu})
            EXPECT_EQ(function("ledd", evt, nullptr, handler), TARN_REJECTED) << evt;
    EXPECT_THAT(platform.traceTexts(), testing::AllOf(testing::SizeIs(10), testing::Each("evt is invalid")));
}

TEST_F(Events, NullCallerIdIsRejected)
{
    for (const Function function : kBoth)
        EXPECT_EQ(function(nullptr, 1, nullptr, handler), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "handle is NULL"));
}

// The command functions name the caller id in this trace; these two do not.
TEST_F(Events, InvalidCallerIdIsRejectedWithAFixedText)
{
    const std::vector<char> endless(32, 'a');
    for (const Function function : kBoth)
    {
        EXPECT_EQ(function("", 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("\x1Fledd", 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("\x80ledd", 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function(endless.data(), 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function(letters(32).c_str(), 1, nullptr, handler), TARN_REJECTED);
    }
    ASSERT_EQ(platform.traces().size(), 10u);
    for (const mock::Trace& trace : platform.traces())
        EXPECT_EQ(trace.format, "id is invalid");
}

TEST_F(Events, CallerIdMayHave31Characters)
{
    platform.expectSubscribe("TARN", 1).caller(letters(31).c_str());
    platform.expectCancel("TARN", 1).caller(letters(31).c_str());
    for (const Function function : kBoth)
        EXPECT_EQ(function(letters(31).c_str(), 1, nullptr, handler), TARN_OK);
}

TEST_F(Events, CallerIdIsCheckedBeforeTheNumber)
{
    for (const Function function : kBoth)
    {
        EXPECT_EQ(function(nullptr, 0, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("", 0, nullptr, handler), TARN_REJECTED);
    }
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "id is invalid", "handle is NULL", "id is invalid"));
}

// The command functions have a result of its own for a time-out; these two do not.
TEST_F(Events, EveryIpcFailureGivesOneResultTheTimeOutIncluded)
{
    for (const std::uint32_t status : {1u, 2u, 3u, 7u, 20u, 21u, 22u, 0xFFFFFFFFu})
    {
        platform.expectSubscribe("TARN", 2).fail(status);
        platform.expectCancel("TARN", 2).fail(status);
        EXPECT_EQ(tarnSubscribeEvent("ledd", 2, nullptr, handler), TARN_FAILED) << status;
        EXPECT_EQ(tarnCancelEvent("ledd", 2, nullptr, handler), TARN_FAILED) << status;
    }
    EXPECT_EQ(platform.traces().size(), 16u);
}

TEST_F(Events, FailureIsTracedWithTheNamesOfEventAndStatus)
{
    for (std::uint32_t evt = 1; evt <= 5; ++evt)
    {
        platform.expectSubscribe("TARN", evt).fail(7);
        EXPECT_EQ(tarnSubscribeEvent("ledd", evt, nullptr, handler), TARN_FAILED);
    }
    platform.expectCancel("TARN", 1).fail(21);
    EXPECT_EQ(tarnCancelEvent("ledd", 1, nullptr, handler), TARN_FAILED);
    platform.expectCancel("TARN", 5).fail(22);
    EXPECT_EQ(tarnCancelEvent("ledd", 5, nullptr, handler), TARN_FAILED);

    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("fail to KorIilSubscribeEvent(EVT_RADIO_STATUS_CHANGED), err = TIMEOUT",
                            "fail to KorIilSubscribeEvent(EVT_RADIO_OPR_CHANNEL_CHANGED), err = TIMEOUT",
                            "fail to KorIilSubscribeEvent(EVT_RADIO_OPR_BANDWIDTH_CHANGED), err = TIMEOUT",
                            "fail to KorIilSubscribeEvent(EVT_AP_ASSOCIATED_CHANGED), err = TIMEOUT",
                            "fail to KorIilSubscribeEvent(EVT_AP_WPS_WIN_STATUS_CHANGED), err = TIMEOUT",
                            "fail to KorIilCancelEvent(EVT_RADIO_STATUS_CHANGED), err = BUSY",
                            "fail to KorIilCancelEvent(EVT_AP_WPS_WIN_STATUS_CHANGED), err = Unknown"));
    EXPECT_EQ(platform.traces().front().format, "fail to KorIilSubscribeEvent(%s), err = %s");
    EXPECT_EQ(platform.traces().back().format, "fail to KorIilCancelEvent(%s), err = %s");
}

TEST_F(Events, TracesCarryLevelTagAndALineOfTheFunction)
{
    platform.expectSubscribe("TARN", 1).fail(1);
    platform.expectCancel("TARN", 1).fail(1);
    for (const Function function : kBoth)
    {
        EXPECT_EQ(function(nullptr, 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("", 1, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("ledd", 0, nullptr, handler), TARN_REJECTED);
        EXPECT_EQ(function("ledd", 1, nullptr, handler), TARN_FAILED);
    }

    const std::vector<mock::Trace> traces = platform.traces();
    ASSERT_EQ(traces.size(), 8u);
    for (const mock::Trace& trace : traces)
    {
        EXPECT_EQ(trace.level, 1u);
        EXPECT_EQ(trace.fileTag, "tarn_api");
        EXPECT_NE(trace.line, 0u);
    }
    EXPECT_NE(traces[3].line, traces[7].line);
}

// The library keeps no record of subscriptions, so it cannot refuse a second one.
TEST_F(Events, SecondSubscriptionIsHandedOnLikeTheFirst)
{
    platform.expectSubscribe("TARN", 1);
    platform.expectSubscribe("TARN", 1).fail(20);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, handler), TARN_OK);
    EXPECT_EQ(tarnSubscribeEvent("ledd", 1, nullptr, handler), TARN_FAILED);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("fail to KorIilSubscribeEvent(EVT_RADIO_STATUS_CHANGED), err = CONFLICT_ID"));
}

} // namespace
} // namespace tarn::test
