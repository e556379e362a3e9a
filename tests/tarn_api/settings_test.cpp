// The service's own settings.
#include "device_test.h"

namespace tarn::test
{
namespace
{

using Settings = DeviceTest;

// It is set through the first word of the same message.
TEST_F(Settings, LogLevelIsReadFromTheSecondWord)
{
    expectWordAt(4, 0, 12, TarnGetLogLevel);
}

TEST_F(Settings, LogLevelIsSetThroughTheFirstWord)
{
    expectCommand(1, 12).word(0, 7);
    EXPECT_EQ(TarnSetLogLevel("ledd", 7), 0u);
}

TEST_F(Settings, ReplyToASetLogLevelIsItsLastWord)
{
    expectCommand(1, 12).word(0, 0).replyWord(0, 1).replyWord(4, 2).replyWord(8, 0x11223344);
    EXPECT_EQ(TarnSetLogLevel("ledd", 0), 0x11223344u);
}

TEST_F(Settings, ErrorMaskHasTheShortestMessage)
{
    expectWordAt(0, 2, 8, TarnGetLastErrorMask);
}

TEST_F(Settings, PollingValuesAreSentInOrderAndAsTheyAre)
{
    expectCommand(3, 12).word(0, 0).word(4, 1);
    expectCommand(3, 12).word(0, 0xFFFFFFFF).word(4, 0);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 0, 1), 0u);
    EXPECT_EQ(TarnSetStopPollingEnable("ledd", 0xFFFFFFFF, 0), 0u);
}

TEST_F(Settings, EachMissingOutputIsNamed)
{
    EXPECT_EQ(missing(TarnGetLogLevel), "level");
    EXPECT_EQ(missing(TarnGetLastErrorMask), "mask");
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
