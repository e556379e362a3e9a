// SSID interfaces, and the operator's roaming settings and blocked addresses on them.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kQuery = 144;
constexpr std::uint32_t kConfiguration = 56;
constexpr std::uint32_t kRoaming = 16;
constexpr std::uint32_t kBlockList = 36;

using SsidInterface = DeviceTest;

TEST_F(SsidInterface, IsAddressedByTwoIdsLessOne)
{
    replyNonZero(expectCommand(44, kQuery).word(0, 0).word(4, 1).status(5), kQuery);

    RecordOutput<TarnSsidIntfData> data;
    EXPECT_EQ(TarnGetSsidIntf("ledd", 1, 2, data.record()), 5u);
    data.expectFrom(12);
}

TEST_F(SsidInterface, IdsOfZeroAreNoError)
{
    expectCommand(44, kQuery).word(0, 0xFFFFFFFF).word(4, 0xFFFFFFFF);

    RecordOutput<TarnSsidIntfData> data;
    EXPECT_EQ(TarnGetSsidIntf("ledd", 0, 0, data.record()), 0u);
}

// The word that holds the interface's id elsewhere stays zero.
TEST_F(SsidInterface, IndexIsSentAsItIsInTheThirdWord)
{
    replyNonZero(expectCommand(43, kQuery).word(0, 1).word(4, 0).word(8, 1), kQuery);
    expectCommand(43, kQuery).word(0, 0).word(8, 0);

    RecordOutput<TarnSsidIntfData> data;
    EXPECT_EQ(TarnGetSsidIntfAt("ledd", 2, 1, data.record()), 0u);
    data.expectFrom(12);
    EXPECT_EQ(TarnGetSsidIntfAt("ledd", 1, 0, data.record()), 0u);
}

TEST_F(SsidInterface, NumberBelongsToARadio)
{
    expectCommand(42, kQuery).word(0, 1).replyWord(12, 8);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetSsidIntfNum("ledd", 2, &number), 0u);
    EXPECT_EQ(number, 8u);
}

TEST_F(SsidInterface, ConfigurationStandsBehindIdsAndParameter)
{
    const auto cfg = nonZeroRecord<TarnSsidIntfCfg>();
    expectCommand(45, kConfiguration).word(0, 1).word(4, 2).word(8, 0x12345678).bytes(12, cfg.bytes, 40).status(5);
    EXPECT_EQ(TarnSetSsidIntfCfg("ledd", 2, 3, 0x12345678, cfg), 5u);
}

TEST_F(SsidInterface, StatisticsAloneTakeTheLongerWait)
{
    replyNonZero(expectCommand(46, kQuery, 4).word(0, 1).word(4, 2), kQuery);
    expectCommand(47, kQuery, 3).word(0, 1).word(4, 2).replyWord(12, 1);

    RecordOutput<TarnSsidIntfStats> stats;
    std::uint32_t isPrimary = kUntouched;
    EXPECT_EQ(TarnGetSsidIntfStats("ledd", 2, 3, stats.record()), 0u);
    EXPECT_EQ(TarnGetSsidIntfIsPrimarySSIDIntf("ledd", 2, 3, &isPrimary), 0u);
    stats.expectFrom(12);
    EXPECT_EQ(isPrimary, 1u);
}

TEST_F(SsidInterface, RoamingIsReadAndSetThroughOneWord)
{
    expectCommand(48, kRoaming).word(0, 1).word(4, 2).replyWord(8, 1).status(5);
    expectCommand(49, kRoaming).word(0, 1).word(4, 2).word(8, 0x12345678).status(6);

    std::uint32_t enable = kUntouched;
    EXPECT_EQ(TarnGetSsidOPXRoamingState("ledd", 2, 3, &enable), 5u);
    EXPECT_EQ(enable, 1u);
    EXPECT_EQ(TarnSetSsidOPXRoamingEnable("ledd", 2, 3, 0x12345678), 6u);
}

// Two bytes in their order, on every host. They may stand at any address.
TEST_F(SsidInterface, MobilityDomainIsTwoBytes)
{
    const std::uint8_t odd[] = {0, 0xAB, 0xCD, 0xEF};
    expectCommand(51, kRoaming).word(0, 1).word(4, 2).byte(8, 0xAB).byte(9, 0xCD).byte(10, 0).byte(11, 0);
    EXPECT_EQ(TarnSetSsidOPXRoamingMdid("ledd", 2, 3, odd + 1), 0u);

    replyNonZero(expectCommand(50, kRoaming).word(0, 1).word(4, 2), kRoaming);
    Output<2> mdid;
    EXPECT_EQ(TarnGetSsidOPXRoamingMdid("ledd", 2, 3, mdid.data()), 0u);
    mdid.expectFrom(8);
}

// Where the commands for one address have that address, this one has nothing.
TEST_F(SsidInterface, NumberOfBlockedAddressesStandsBehindTheAddress)
{
    expectCommand(52, kBlockList).word(0, 1).word(4, 2).replyWord(12, 9).replyWord(16, 9).replyWord(20, 3).status(5);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetSsidOPXShgwBlockAddrNum("ledd", 2, 3, &number), 5u);
    EXPECT_EQ(number, 3u);
}

TEST_F(SsidInterface, BlockedAddressIsAddedAndDeletedAsSixBytes)
{
    expectCommand(54, kBlockList).word(0, 0).word(4, 0).bytes(12, kMac.data(), 6).status(5);
    expectCommand(54, kBlockList).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6);
    expectCommand(55, kBlockList).word(0, 1).word(4, 2).bytes(12, kMac.data(), 6).status(6);
    EXPECT_EQ(TarnAddSsidOPXShgwBlockAddr("ledd", 1, 1, kMac.data()), 5u);
    EXPECT_EQ(TarnAddSsidOPXShgwBlockAddr("ledd", 2, 3, kMac.data()), 0u);
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

TEST_F(SsidInterface, OutputsAreLeftAloneByAFailure)
{
    expectCommand(44, kQuery).word(0, 0).word(4, 0).fail(7);
    expectCommand(50, kRoaming).word(0, 0).word(4, 0).fail(21);

    RecordOutput<TarnSsidIntfData> data;
    Output<2> mdid;
    EXPECT_EQ(TarnGetSsidIntf("ledd", 1, 1, data.record()), TARN_TIMED_OUT);
    EXPECT_EQ(TarnGetSsidOPXRoamingMdid("ledd", 1, 1, mdid.data()), TARN_FAILED);
    data.expectUntouched();
    mdid.expectUntouched();
}

TEST_F(SsidInterface, EachMissingPointerIsNamed)
{
    EXPECT_EQ(TarnGetSsidIntfNum("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidIntfAt("ledd", 1, 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidIntf("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidIntfStats("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidIntfIsPrimarySSIDIntf("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidOPXRoamingState("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidOPXRoamingMdid("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnSetSsidOPXRoamingMdid("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidOPXShgwBlockAddrNum("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetSsidOPXShgwBlockAddrAt("ledd", 1, 1, 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnAddSsidOPXShgwBlockAddr("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnDelSsidOPXShgwBlockAddr("ledd", 1, 1, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("number is NULL", "data is NULL", "data is NULL", "stats is NULL",
                                                   "isPrimary is NULL", "enable is NULL", "mdid is NULL", "mdid is NULL",
                                                   "number is NULL", "mac is NULL", "mac is NULL", "mac is NULL"));
}

} // namespace
} // namespace tarn::test
