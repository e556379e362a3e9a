// The steps that every function of the device service takes: what is sent, what a failure gives, what is traced.
#include "kor_iil_mock.hpp"
#include "support/samples.h"
#include "tarn_api.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::test
{
namespace
{

struct DeviceCall : testing::Test
{
    mock::Platform platform;
};

TEST_F(DeviceCall, ReplyStatusIsReturnedAsItIsAndNotTraced)
{
    for (const std::uint32_t status : {0u, 1u, 2u, 3u, 4u, 7u, 0x100u, 0x80000000u, 0xFFFFFFFFu})
    {
        platform.expect("TARN", 1, 12).status(status);
        EXPECT_EQ(TarnSetLogLevel("ledd", 7), status);
    }
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(DeviceCall, OutputIsCopiedWhateverTheReplyStatus)
{
    for (const std::uint32_t status : {1u, 2u, 3u, 0xFFFFFFFFu})
    {
        platform.expect("TARN", 0, 12).replyWord(4, 5).status(status);

        std::uint32_t level = kUntouched;
        EXPECT_EQ(TarnGetLogLevel("ledd", &level), status);
        EXPECT_EQ(level, 5u);
    }
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(DeviceCall, TimeOutHasAResultOfItsOwn)
{
    platform.expect("TARN", 1, 12).fail(7);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), TARN_TIMED_OUT);
    ASSERT_EQ(platform.traces().size(), 1u);
    EXPECT_EQ(platform.traces()[0].format, "fail to KorIilExecute(), err = %s");
    EXPECT_EQ(platform.traces()[0].text, "fail to KorIilExecute(), err = TIMEOUT");
}

TEST_F(DeviceCall, EveryOtherIpcFailureGivesOneResult)
{
    for (std::uint32_t status = 1; status <= 22; ++status)
    {
        if (status == 7)
            continue;
        platform.expect("TARN", 1, 12).fail(status);
        EXPECT_EQ(TarnSetLogLevel("ledd", 7), TARN_FAILED) << status;
        EXPECT_EQ(platform.traceTexts().back(), std::string("fail to KorIilExecute(), err = ") + tarnIpcStatusName(status));
    }
    EXPECT_EQ(platform.traces().size(), 21u);
}

TEST_F(DeviceCall, IpcStatusIsNamedInTheTrace)
{
    for (const std::uint32_t status : {1u, 9u, 21u, 22u, 0x107u, 0xFFFFFFFFu})
    {
        platform.expect("TARN", 1, 12).fail(status);
        EXPECT_EQ(TarnSetLogLevel("ledd", 7), TARN_FAILED);
    }
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("fail to KorIilExecute(), err = ERR", "fail to KorIilExecute(), err = UNKNOWN_DST_ID",
                            "fail to KorIilExecute(), err = BUSY", "fail to KorIilExecute(), err = Unknown",
                            "fail to KorIilExecute(), err = Unknown", "fail to KorIilExecute(), err = Unknown"));
}

// A platform may have written to the message before it failed.
TEST_F(DeviceCall, NothingIsReadFromTheMessageAfterAFailure)
{
    for (const std::uint32_t failure : {1u, 7u})
    {
        std::uint32_t status = failure;
        KorIilMockOnExecute(
            [](void* context, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t length,
               void* message) -> std::uint32_t
            {
                std::memset(message, 0x55, length);
                return *static_cast<const std::uint32_t*>(context);
            },
            &status);

        std::uint32_t level = kUntouched;
        EXPECT_EQ(TarnGetLogLevel("ledd", &level), failure == 7 ? TARN_TIMED_OUT : TARN_FAILED);
        EXPECT_EQ(level, kUntouched);

        std::vector<std::uint8_t> channels(256, kUntouchedByte);
        EXPECT_EQ(TarnGetRadioPossibleChannels("ledd", 1, {}, channels.data()), failure == 7 ? TARN_TIMED_OUT : TARN_FAILED);
        EXPECT_THAT(channels, Each(kUntouchedByte));
    }
}

TEST_F(DeviceCall, NullOutputIsRejectedAndNothingIsSent)
{
    EXPECT_EQ(TarnGetLogLevel("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetLastErrorMask("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioNum("ledd", nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("level is NULL", "mask is NULL", "number is NULL"));
}

TEST_F(DeviceCall, IdOfZeroIsSentAsAllOnesAndNoError)
{
    platform.expect("TARN", 21, 4444).word(0, 0xFFFFFFFF).restZero();
    EXPECT_EQ(TarnScanRadioNeighborhood("ledd", 0), TARN_OK);
    EXPECT_THAT(platform.traceTexts(), IsEmpty());
}

TEST_F(DeviceCall, NothingOfOneCallIsSentWithTheNext)
{
    platform.expect("TARN", 111, 148).replyBytes(0, nonZeroBytes(144).data(), 144);
    platform.expect("TARN", 111, 148).restZero();

    std::uint32_t number = 0;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationNumber("ledd", &number), TARN_OK);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationNumber("ledd", &number), TARN_OK);
}

TEST_F(DeviceCall, MessageIsAlignedForItsWords)
{
    KorIilMockOnExecute(
        [](void*, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t, void* message) -> std::uint32_t
        {
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(message) % 4, 0u);
            return 0;
        },
        nullptr);

    std::uint32_t word = 0;
    EXPECT_EQ(TarnGetLastErrorMask("ledd", &word), TARN_OK);
    EXPECT_EQ(TarnGetRadioNum("ledd", &word), TARN_OK);
    EXPECT_EQ(TarnUpdateQuantennaPasswordFile("ledd"), TARN_OK);
}

TEST_F(DeviceCall, TracesCarryLevelTagAndALineOfTheFunction)
{
    platform.expect("TARN", 0, 12).fail(1);
    platform.expect("TARN", 1, 12).fail(7);

    std::uint32_t level = 0;
    EXPECT_EQ(TarnGetLogLevel(nullptr, &level), TARN_REJECTED);
    EXPECT_EQ(TarnGetLogLevel("", &level), TARN_REJECTED);
    EXPECT_EQ(TarnGetLogLevel("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), TARN_FAILED);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), TARN_TIMED_OUT);

    const std::vector<mock::Trace> traces = platform.traces();
    ASSERT_EQ(traces.size(), 5u);
    for (const mock::Trace& trace : traces)
    {
        EXPECT_EQ(trace.level, 1u);
        EXPECT_EQ(trace.fileTag, "tarn_api");
        EXPECT_NE(trace.line, 0u);
    }
    EXPECT_NE(traces[3].line, traces[4].line);
}

} // namespace
} // namespace tarn::test
