// An access point's WPS window and its associated stations.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kWps = 220;
constexpr std::uint32_t kStation = 140;

using WpsWindow = DeviceTest;
using Stations = DeviceTest;

TEST_F(WpsWindow, StatusStandsBetweenTheConfigurationAndTheSettings)
{
    expectCommand(63, kWps, 3).word(0, 1).word(4, 2).replyWord(44, 9).replyWord(48, 3).replyWord(52, 9).replyWord(216, 5);

    std::uint32_t status = kUntouched;
    EXPECT_EQ(TarnGetAccessPointWpsWindowStatus("ledd", 2, 3, &status), 5u);
    EXPECT_EQ(status, 3u);
}

TEST_F(WpsWindow, IsTriggeredWithTwoValues)
{
    expectCommand(64, kWps, 4).word(0, 1).word(4, 2).word(8, 0).word(12, 0x12345678).status(5);
    expectCommand(64, kWps, 4).word(0, 1).word(4, 2).word(8, 0x12345678).word(12, 0);
    EXPECT_EQ(TarnTriggerAccessPointWpsWindow("ledd", 2, 3, 0, 0x12345678), 5u);
    EXPECT_EQ(TarnTriggerAccessPointWpsWindow("ledd", 2, 3, 0x12345678, 0), 0u);
}

TEST_F(WpsWindow, IsCancelledByTheAccessPointAlone)
{
    expectCommand(65, kWps, 4).word(0, 1).word(4, 2).status(5);
    EXPECT_EQ(TarnCancelAccessPointWpsWindow("ledd", 2, 3), 5u);
}

TEST_F(WpsWindow, MissingStatusIsNamed)
{
    EXPECT_EQ(TarnGetAccessPointWpsWindowStatus("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("status is NULL"));
}

// The count alone keeps the shorter wait.
TEST_F(Stations, NumberStandsBehindTheAddress)
{
    expectCommand(66, kStation, 3).word(0, 1).word(4, 2).replyWord(20, 17).replyWord(136, 5);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetAccessPointAssociatedNum("ledd", 2, 3, &number), 5u);
    EXPECT_EQ(number, 17u);
}

// The ids go less one, the index does not.
TEST_F(Stations, IndexIsSentAsItIs)
{
    replyNonZero(expectCommand(67, kStation, 4).word(0, 0).word(4, 1).word(8, 0).status(5), kStation);
    expectCommand(67, kStation, 4).word(0, 1).word(4, 2).word(8, 9);

    RecordOutput<TarnAccessPointAssociatedData> associated;
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 1, 2, 0, associated.record()), 5u);
    associated.expectFrom(24);
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 2, 3, 9, associated.record()), 0u);
}

TEST_F(Stations, RecordIsAskedForByAddress)
{
    replyNonZero(expectCommand(68, kStation, 4).word(0, 1).word(4, 2).word(8, 0).bytes(12, kMac.data(), 6).status(5), kStation);

    RecordOutput<TarnAccessPointAssociatedData> associated;
    EXPECT_EQ(TarnGetAccessPointAssociated("ledd", 2, 3, kMac.data(), associated.record()), 5u);
    associated.expectFrom(24);
}

TEST_F(Stations, StatisticsStandBehindTheRecord)
{
    replyNonZero(expectCommand(69, kStation, 4).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(5), kStation);

    RecordOutput<TarnAccessPointAssociatedStats> stats;
    EXPECT_EQ(TarnGetAccessPointAssociatedStats("ledd", 2, 3, kMac.data(), stats.record()), 5u);
    stats.expectFrom(100);
}

TEST_F(Stations, StationIsKickedOutByItsAddressAlone)
{
    expectCommand(70, kStation, 4).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(5);
    EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 2, 3, kMac.data()), 5u);
}

TEST_F(Stations, AddressIsNeitherParsedNorChecked)
{
    const std::array<std::uint8_t, 6> broadcast = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const std::array<std::uint8_t, 6> zero = {};
    expectCommand(70, kStation, 4).word(0, 0).word(4, 0).bytes(12, broadcast.data(), 6);
    expectCommand(70, kStation, 4).word(0, 0).word(4, 0).bytes(12, zero.data(), 6);
    EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 1, 1, broadcast.data()), 0u);
    EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 1, 1, zero.data()), 0u);
}

TEST_F(Stations, AddressIsCheckedBeforeTheOutput)
{
    EXPECT_EQ(TarnGetAccessPointAssociatedStats("ledd", 1, 1, nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointAssociatedStats("ledd", 1, 1, kMac.data(), nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointAssociated("ledd", 1, 1, nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointAssociated("ledd", 1, 1, kMac.data(), nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("macAddress is NULL", "stats is NULL", "macAddress is NULL", "associated is NULL"));
}

TEST_F(Stations, EachMissingPointerIsNamed)
{
    EXPECT_EQ(TarnGetAccessPointAssociatedNum("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 1, 1, 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnKickOutAccessPointAssociated("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("number is NULL", "associated is NULL", "macAddress is NULL"));
}

TEST_F(Stations, OutputsAreLeftAloneByAFailure)
{
    expectCommand(67, kStation, 4).word(0, 0).word(4, 0).fail(7);
    expectCommand(69, kStation, 4).word(0, 0).word(4, 0).bytes(12, kMac.data(), 6).fail(1);

    RecordOutput<TarnAccessPointAssociatedData> associated;
    RecordOutput<TarnAccessPointAssociatedStats> stats;
    EXPECT_EQ(TarnGetAccessPointAssociatedAt("ledd", 1, 1, 0, associated.record()), TARN_TIMED_OUT);
    EXPECT_EQ(TarnGetAccessPointAssociatedStats("ledd", 1, 1, kMac.data(), stats.record()), TARN_FAILED);
    associated.expectUntouched();
    stats.expectUntouched();
}

} // namespace
} // namespace tarn::test
