// An access point's filter of MAC addresses.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kLength = 44;

using MacFilter = DeviceTest;

TEST_F(MacFilter, ModeIsSetInOneWordAndReadInAnother)
{
    expectCommand(72, kLength).word(0, 1).word(4, 2).word(12, 0x12345678).word(24, 0).status(5);
    expectCommand(71, kLength).word(0, 1).word(4, 2).word(12, 0).replyWord(12, 9).replyWord(24, 2).status(6);

    EXPECT_EQ(TarnSetAccessPointMacFilterMode("ledd", 2, 3, 0x12345678), 5u);
    std::uint32_t mode = kUntouched;
    EXPECT_EQ(TarnGetAccessPointMacFilterMode("ledd", 2, 3, &mode), 6u);
    EXPECT_EQ(mode, 2u);
}

TEST_F(MacFilter, AddressIsAddedAndDeletedAsSixBytes)
{
    expectCommand(73, kLength).word(0, 1).word(4, 2).bytes(16, kMac.data(), 6).status(5);
    expectCommand(74, kLength).word(0, 1).word(4, 2).bytes(16, kMac.data(), 6).status(6);
    EXPECT_EQ(TarnAddAccessPointMacFilter("ledd", 2, 3, kMac.data()), 5u);
    EXPECT_EQ(TarnDelAccessPointMacFilter("ledd", 2, 3, kMac.data()), 6u);
}

TEST_F(MacFilter, NumberStandsBehindTheModeThatIsRead)
{
    expectCommand(75, kLength).word(0, 1).word(4, 2).replyWord(24, 9).replyWord(28, 3).status(5);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetAccessPointMacFilterNum("ledd", 2, 3, &number), 5u);
    EXPECT_EQ(number, 3u);
}

// An address comes back in another place than the one it is sent in; its index goes as it is, the ids less one.
TEST_F(MacFilter, AddressIsReadByIndex)
{
    replyNonZero(expectCommand(76, kLength).word(0, 0).word(4, 1).word(8, 0).status(5), kLength);
    expectCommand(76, kLength).word(0, 1).word(4, 2).word(8, 0xFFFFFFFF);

    Output<6> mac;
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 2, 0, mac.data()), 5u);
    mac.expectFrom(32);
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 2, 3, 0xFFFFFFFF, mac.data()), 0u);
}

TEST_F(MacFilter, OutputsAreLeftAloneByAFailure)
{
    expectCommand(71, kLength).word(0, 0).word(4, 0).fail(7);
    expectCommand(76, kLength).word(0, 0).word(4, 0).fail(2);

    std::uint32_t mode = kUntouched;
    Output<6> mac;
    EXPECT_EQ(TarnGetAccessPointMacFilterMode("ledd", 1, 1, &mode), TARN_TIMED_OUT);
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 1, 0, mac.data()), TARN_FAILED);
    EXPECT_EQ(mode, kUntouched);
    mac.expectUntouched();
}

TEST_F(MacFilter, EachMissingPointerIsNamed)
{
    EXPECT_EQ(TarnGetAccessPointMacFilterMode("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnAddAccessPointMacFilter("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnDelAccessPointMacFilter("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointMacFilterNum("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 1, 0, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("mode is NULL", "macAddress is NULL", "macAddress is NULL", "number is NULL",
                                                   "macAddress is NULL"));
}

} // namespace
} // namespace tarn::test
