// An access point's filter of MAC addresses.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kFilterLength = 44;

using MacFilter = DeviceTest;

TEST_F(MacFilter, ModeIsSetInOneWordAndReadInAnother)
{
    expectCommand(72, kFilterLength).word(0, 1).word(4, 2).word(12, 0x12345678).word(24, 0).status(5);
    EXPECT_EQ(TarnSetAccessPointMacFilterMode("ledd", 2, 3, 0x12345678), 5u);
    expectWordAt(24, 71, kFilterLength, TarnGetAccessPointMacFilterMode);
}

TEST_F(MacFilter, AddressIsAddedAndDeletedAsSixBytes)
{
    expectCommand(73, kFilterLength).word(0, 1).word(4, 2).bytes(16, kMac.data(), 6).status(5);
    expectCommand(74, kFilterLength).word(0, 1).word(4, 2).bytes(16, kMac.data(), 6).status(6);
    EXPECT_EQ(TarnAddAccessPointMacFilter("ledd", 2, 3, kMac.data()), 5u);
    EXPECT_EQ(TarnDelAccessPointMacFilter("ledd", 2, 3, kMac.data()), 6u);
}

TEST_F(MacFilter, NumberStandsBehindTheModeThatIsRead)
{
    expectWordAt(28, 75, kFilterLength, TarnGetAccessPointMacFilterNum);
}

// An address comes back in another place than the one it is sent in; its index goes as it is, the ids less one.
TEST_F(MacFilter, AddressIsReadByIndex)
{
    replyNonZero(expectCommand(76, kFilterLength).word(0, 0).word(4, 1).word(8, 0).status(5), kFilterLength);
    expectCommand(76, kFilterLength).word(0, 1).word(4, 2).word(8, 0xFFFFFFFF);

    Output<6> mac;
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 1, 2, 0, mac.data()), 5u);
    mac.expectFrom(32);
    EXPECT_EQ(TarnGetAccessPointMacFilterAt("ledd", 2, 3, 0xFFFFFFFF, mac.data()), 0u);
}

TEST_F(MacFilter, EachMissingPointerIsNamed)
{
    EXPECT_EQ(missing(TarnGetAccessPointMacFilterMode), "mode");
    EXPECT_EQ(missing(TarnAddAccessPointMacFilter), "macAddress");
    EXPECT_EQ(missing(TarnDelAccessPointMacFilter), "macAddress");
    EXPECT_EQ(missing(TarnGetAccessPointMacFilterNum), "number");
    EXPECT_EQ(missing(TarnGetAccessPointMacFilterAt), "macAddress");
}

} // namespace
} // namespace tarn::test
