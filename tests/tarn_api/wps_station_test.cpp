// An access point's WPS window and its associated stations.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kWindow = 220;
constexpr std::uint32_t kStation = 140;

using WpsWindow = DeviceTest;
using Stations = DeviceTest;

TEST_F(WpsWindow, StatusStandsBetweenTheConfigurationAndTheSettings)
{
    expectWordAt(48, 63, kWindow, TarnGetAccessPointWpsWindowStatus);
}

TEST_F(WpsWindow, IsTriggeredWithTwoValues)
{
    expectCommand(64, kWindow, 4).word(0, 1).word(4, 2).word(8, 0).word(12, 0x12345678).status(5);
    expectCommand(64, kWindow, 4).word(0, 1).word(4, 2).word(8, 0x12345678).word(12, 0);
    EXPECT_EQ(TarnTriggerAccessPointWpsWindow("ledd", 2, 3, 0, 0x12345678), 5u);
    EXPECT_EQ(TarnTriggerAccessPointWpsWindow("ledd", 2, 3, 0x12345678, 0), 0u);
}

TEST_F(WpsWindow, IsCancelledByTheAccessPointAlone)
{
    expectCommand(65, kWindow, 4).word(0, 1).word(4, 2).status(5);
    EXPECT_EQ(TarnCancelAccessPointWpsWindow("ledd", 2, 3), 5u);
}

TEST_F(WpsWindow, MissingStatusIsNamed)
{
    EXPECT_EQ(missing(TarnGetAccessPointWpsWindowStatus), "status");
}

// The count alone keeps the shorter wait.
TEST_F(Stations, NumberStandsBehindTheAddress)
{
    expectWordAt(20, 66, kStation, TarnGetAccessPointAssociatedNum, 3);
}

// The ids go less one, the index does not.
TEST_F(Stations, IndexIsSentAsItIs)
{
    replyNonZero(expectCommand(67, kStation, 4).word(0, 0).word(4, 1).word(8, 0).status(5), kStation);
    expectCommand(67, kStation, 4).word(0, 1).word(4, 2).word(8, 9);

    RecordOutput<TarnAccessPointAssociatedData, 76> associated;
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 1, 2, 0, associated.record()), 5u);
    associated.expectFrom(24);
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 2, 3, 9, associated.record()), 0u);
}

TEST_F(Stations, RecordIsAskedForByAddress)
{
    replyNonZero(expectCommand(68, kStation, 4).word(0, 1).word(4, 2).word(8, 0).bytes(12, kMac.data(), 6).status(5), kStation);

    RecordOutput<TarnAccessPointAssociatedData, 76> associated;
    EXPECT_EQ(TarnGetAccessPointAssociated("ledd", 2, 3, kMac.data(), associated.record()), 5u);
    associated.expectFrom(24);
}

TEST_F(Stations, StatisticsStandBehindTheRecord)
{
    replyNonZero(expectCommand(69, kStation, 4).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(5), kStation);

    RecordOutput<TarnAccessPointAssociatedStats, 36> stats;
    EXPECT_EQ(TarnGetAccessPointAssociatedStats("ledd", 2, 3, kMac.data(), stats.record()), 5u);
    stats.expectFrom(100);
}

TEST_F(Stations, StationIsKickedOutByItsAddressAlone)
{
    expectCommand(70, kStation, 4).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(5);
    EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 2, 3, kMac.data()), 5u);
}

TEST_F(Stations, AddressIsCheckedBeforeTheOutput)
{
    EXPECT_EQ(missing(TarnGetAccessPointAssociatedStats), "macAddress, stats");
    EXPECT_EQ(missing(TarnGetAccessPointAssociated), "macAddress, associated");
}

TEST_F(Stations, EachMissingPointerIsNamed)
{
    EXPECT_EQ(missing(TarnGetAccessPointAssociatedNum), "number");
    EXPECT_EQ(missing(TarnGetAccessPointAssociatedAt), "associated");
    EXPECT_EQ(missing(TarnKickOutAccessPointAssociated), "macAddress");
}

} // namespace
} // namespace tarn::test
