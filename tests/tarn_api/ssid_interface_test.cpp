// SSID interfaces, and the operator's roaming settings and blocked addresses on them.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kSsidQuery = 144;
constexpr std::uint32_t kSsidConfiguration = 56;
constexpr std::uint32_t kRoaming = 16;
constexpr std::uint32_t kBlockList = 36;

using SsidInterface = DeviceTest;

TEST_F(SsidInterface, IsAddressedByTwoIdsLessOne)
{
    replyNonZero(expectCommand(44, kSsidQuery).word(0, 0).word(4, 1).status(5), kSsidQuery);

    RecordOutput<TarnSsidIntfData, 128> data;
    EXPECT_EQ(TarnGetSsidIntf("ledd", 1, 2, data.record()), 5u);
    data.expectFrom(12);
}

TEST_F(SsidInterface, IdsOfZeroAreNoError)
{
    expectCommand(44, kSsidQuery).word(0, 0xFFFFFFFF).word(4, 0xFFFFFFFF);

    RecordOutput<TarnSsidIntfData, 128> data;
    EXPECT_EQ(TarnGetSsidIntf("ledd", 0, 0, data.record()), 0u);
}

// The word that holds the interface's id elsewhere stays zero.
TEST_F(SsidInterface, IndexIsSentAsItIsInTheThirdWord)
{
    replyNonZero(expectCommand(43, kSsidQuery).word(0, 1).word(4, 0).word(8, 1), kSsidQuery);
    expectCommand(43, kSsidQuery).word(0, 0).word(8, 0);

    RecordOutput<TarnSsidIntfData, 128> data;
    EXPECT_EQ(TarnGetSsidIntfAt("ledd", 2, 1, data.record()), 0u);
    data.expectFrom(12);
    EXPECT_EQ(TarnGetSsidIntfAt("ledd", 1, 0, data.record()), 0u);
}

TEST_F(SsidInterface, NumberBelongsToARadio)
{
    expectWordAt(12, 42, kSsidQuery, TarnGetSsidIntfNum);
}

TEST_F(SsidInterface, ConfigurationStandsBehindIdsAndParameter)
{
    const auto cfg = nonZeroRecord<TarnSsidIntfCfg>();
    expectCommand(45, kSsidConfiguration).word(0, 1).word(4, 2).word(8, 0x12345678).bytes(12, cfg.bytes, 40).status(5);
    EXPECT_EQ(TarnSetSsidIntfCfg("ledd", 2, 3, 0x12345678, cfg), 5u);
}

TEST_F(SsidInterface, StatisticsAloneTakeTheLongerWait)
{
    replyNonZero(expectCommand(46, kSsidQuery, 4).word(0, 1).word(4, 2), kSsidQuery);

    RecordOutput<TarnSsidIntfStats, 84> stats;
    EXPECT_EQ(TarnGetSsidIntfStats("ledd", 2, 3, stats.record()), 0u);
    stats.expectFrom(12);

    expectWordAt(12, 47, kSsidQuery, TarnGetSsidIntfIsPrimarySSIDIntf, 3);
}

TEST_F(SsidInterface, RoamingIsReadAndSetThroughOneWord)
{
    expectWordAt(8, 48, kRoaming, TarnGetSsidOPXRoamingState);
    expectCommand(49, kRoaming).word(0, 1).word(4, 2).word(8, 0x12345678).status(6);
    EXPECT_EQ(TarnSetSsidOPXRoamingEnable("ledd", 2, 3, 0x12345678), 6u);
}

// Two bytes in their order, on every host. They may lie at any address.
TEST_F(SsidInterface, MobilityDomainIsTwoBytes)
{
    const std::uint8_t odd[] = {0, 0xAB, 0xCD, 0xEF};
    expectCommand(51, kRoaming).word(0, 1).word(4, 2).byte(8, 0xAB).byte(9, 0xCD);
    EXPECT_EQ(TarnSetSsidOPXRoamingMdid("ledd", 2, 3, odd + 1), 0u);

    replyNonZero(expectCommand(50, kRoaming).word(0, 1).word(4, 2), kRoaming);
    Output<2> mdid;
    EXPECT_EQ(TarnGetSsidOPXRoamingMdid("ledd", 2, 3, mdid.data()), 0u);
    mdid.expectFrom(8);
}

// Where the commands for one address have that address, this one has nothing.
TEST_F(SsidInterface, NumberOfBlockedAddressesStandsBehindTheAddress)
{
    expectWordAt(20, 52, kBlockList, TarnGetSsidOPXShgwBlockAddrNum);
}

TEST_F(SsidInterface, BlockedAddressIsAddedAndDeletedAsSixBytes)
{
    expectCommand(54, kBlockList).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(5);
    expectCommand(55, kBlockList).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(6);
    EXPECT_EQ(TarnAddSsidOPXShgwBlockAddr("ledd", 2, 3, kMac.data()), 5u);
    EXPECT_EQ(TarnDelSsidOPXShgwBlockAddr("ledd", 2, 3, kMac.data()), 6u);
}

TEST_F(SsidInterface, BlockedAddressByIndexIsNotCopiedOut)
{
    replyNonZero(expectCommand(53, kBlockList).word(0, 0).word(4, 1).word(8, 0).status(5), kBlockList);
    expectCommand(53, kBlockList).word(0, 1).word(4, 2).word(8, 7);

    Output<6> mac;
    EXPECT_EQ(TarnGetSsidOPXShgwBlockAddrAt("ledd", 1, 2, 0, mac.data()), 5u);
    EXPECT_EQ(TarnGetSsidOPXShgwBlockAddrAt("ledd", 2, 3, 7, mac.data()), 0u);
    mac.expectUntouched();
}

TEST_F(SsidInterface, EachMissingPointerIsNamed)
{
    EXPECT_EQ(missing(TarnGetSsidIntfNum), "number");
    EXPECT_EQ(missing(TarnGetSsidIntfAt), "data");
    EXPECT_EQ(missing(TarnGetSsidIntf), "data");
    EXPECT_EQ(missing(TarnGetSsidIntfStats), "stats");
    EXPECT_EQ(missing(TarnGetSsidIntfIsPrimarySSIDIntf), "isPrimary");
    EXPECT_EQ(missing(TarnGetSsidOPXRoamingState), "enable");
    EXPECT_EQ(missing(TarnGetSsidOPXRoamingMdid), "mdid");
    EXPECT_EQ(missing(TarnSetSsidOPXRoamingMdid), "mdid");
    EXPECT_EQ(missing(TarnGetSsidOPXShgwBlockAddrNum), "number");
    EXPECT_EQ(missing(TarnGetSsidOPXShgwBlockAddrAt), "mac");
    EXPECT_EQ(missing(TarnAddSsidOPXShgwBlockAddr), "mac");
    EXPECT_EQ(missing(TarnDelSsidOPXShgwBlockAddr), "mac");
}

} // namespace
} // namespace tarn::test
