// The service's own settings.
#include "device_test.h"

#include <cstring>

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using Settings = DeviceTest;

// It is set through the first word of the same message.
TEST_F(Settings, LogLevelIsReadFromTheSecondWord)
{
    expectCommand(0, 12).replyWord(0, 9).replyWord(4, 5).status(0);

    std::uint32_t level = kUntouched;
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), 0u);
    EXPECT_EQ(level, 5u);
}

TEST_F(Settings, LogLevelIsSetThroughTheFirstWord)
{
    expectCommand(1, 12).word(0, 7).word(4, 0).word(8, 0);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), 0u);
}

TEST_F(Settings, ReplyToASetLogLevelIsItsLastWord)
{
    expectCommand(1, 12).word(0, 7).replyWord(0, 1).replyWord(4, 2).replyWord(8, 0x11223344);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), 0x11223344u);
}

TEST_F(Settings, ErrorMaskHasTheShortestMessage)
{
    expectCommand(2, 8).replyWord(0, 0x80000001).replyWord(4, 6);

    std::uint32_t mask = kUntouched;
    EXPECT_EQ(TarnGetLastErrorMask("ledd", &mask), 6u);
    EXPECT_EQ(mask, 0x80000001u);
}

TEST_F(Settings, PollingValuesAreSentInOrderAndAsTheyAre)
{
    expectCommand(3, 12).word(0, 0).word(4, 1).word(8, 0);
    expectCommand(3, 12).word(0, 1).word(4, 0);
    expectCommand(3, 12).word(0, 0xFFFFFFFF).word(4, 0x12345678).status(2);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 0, 1), 0u);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 1, 0), 0u);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 0xFFFFFFFF, 0x12345678), 2u);
}

TEST_F(Settings, OutputsAreLeftAloneByATimeOut)
{
    expectCommand(0, 12).fail(7);
    expectCommand(2, 8).fail(7);

    std::uint32_t level = kUntouched;
    std::uint32_t mask = kUntouched;
    EXPECT_EQ(TarnGetLogLevel("ledd", &level), TARN_TIMED_OUT);
    EXPECT_EQ(TarnGetLastErrorMask("ledd", &mask), TARN_TIMED_OUT);
    EXPECT_EQ(level, kUntouched);
    EXPECT_EQ(mask, kUntouched);
}

TEST_F(Settings, EachMissingOutputIsNamed)
{
    EXPECT_EQ(TarnGetLogLevel("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetLastErrorMask("ledd", nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("level is NULL", "mask is NULL"));
}

// On a big-endian host the message reads 00 00 00 07, 00 00 00 00, 00 00 00 00.
TEST_F(Settings, WordsAreInTheHostsByteOrder)
{
    const std::uint32_t one = 1;
    std::uint8_t firstByte = 0;
    std::memcpy(&firstByte, &one, 1);
    const std::uint32_t lowest = firstByte == 1 ? 0 : 3;

    expectCommand(1, 12).byte(lowest, 7);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), 0u);
}

} // namespace
} // namespace tarn::test
