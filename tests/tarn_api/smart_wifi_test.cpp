// The Smart WiFi daemon: its switch, versions, configuration and mobility domains.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kSmartWifiLength = 2240;
constexpr std::uint32_t kVersion = 76;
constexpr std::uint32_t kSmartWifiOut = 536;
constexpr std::uint32_t kStatus = 2236;

// A mobility domain.
constexpr std::uint8_t kMdid[] = {0xAB, 0xCD};

using SmartWifi = DeviceTest;

TEST_F(SmartWifi, EnableIsTheFirstWordAlone)
{
    expectCommand(80, kSmartWifiLength).word(0, 0x12345678).replyWord(kStatus, 5);
    EXPECT_EQ(TarnSetQuantennaSmartWiFiEnable("ledd", 0x12345678), 5u);
}

TEST_F(SmartWifi, SyncingIsTheFirstWordAlone)
{
    expectCommand(87, kSmartWifiLength).word(0, 0x12345678).status(5);
    EXPECT_EQ(TarnSetQuantennaSmartWiFiQslCfgSyncing("ledd", 0x12345678), 5u);
}

TEST_F(SmartWifi, StateAndSyncingAreReadBehindTheInputs)
{
    expectWordAt(kSmartWifiOut, 79, kSmartWifiLength, TarnGetQuantennaSmartWiFiState);
    expectWordAt(kSmartWifiOut, 86, kSmartWifiLength, TarnGetQuantennaSmartWiFiQslCfgSyncing);
}

TEST_F(SmartWifi, DaemonIsResetWithoutAnyArgument)
{
    expectCommand(78, kSmartWifiLength).status(5);
    EXPECT_EQ(TarnResetQuantennaSmartWiFiDaemon("ledd"), 5u);
}

// The longest wait of all commands.
TEST_F(SmartWifi, PropagationWaitsTheLongest)
{
    expectCommand(109, kSmartWifiLength, 10).status(5);
    EXPECT_EQ(TarnDoQuantennaSmartWiFiCfgPropagation("ledd"), 5u);
}

// Their message is the short one of the chip module.
TEST_F(SmartWifi, VersionsWithoutNulAreCutTo64Characters)
{
    replyNonZero(expectCommand(81, kVersion), kVersion);
    replyNonZero(expectCommand(82, kVersion), kVersion);

    Output<65> version;
    Output<65> daemonVersion;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiVersion("ledd", version.text()), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiDaemonVersion("ledd", daemonVersion.text()), 0u);
    version.expectCutTextFrom(4);
    daemonVersion.expectCutTextFrom(4);
}

TEST_F(SmartWifi, InterfaceNameOf70CharactersIsCutTo64)
{
    expectCommand(83, kSmartWifiLength).text(16, 65, letters(64).c_str());
    EXPECT_EQ(TarnSetQuantennaSmartWiFiBindingInterface("ledd", letters(70).c_str()), 0u);
}

TEST_F(SmartWifi, PathOf600CharactersIsCutTo512)
{
    expectCommand(110, kSmartWifiLength).text(16, 513, letters(512).c_str());
    EXPECT_EQ(TarnGetQuantennaSmartWiFiCfgToFile("ledd", letters(600).c_str()), 0u);
}

// Unlike the path of a download, which must not be empty.
TEST_F(SmartWifi, EmptyTextsAreSent)
{
    expectCommand(83, kSmartWifiLength).text(16, 65, "");
    expectCommand(110, kSmartWifiLength).text(16, 513, "");
    EXPECT_EQ(TarnSetQuantennaSmartWiFiBindingInterface("ledd", ""), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiCfgToFile("ledd", ""), 0u);
}

TEST_F(SmartWifi, TextsAreSentUpToTheirNulAndNotInterpreted)
{
    const char text[64] = "%s%n\0left over";
    expectCommand(83, kSmartWifiLength).text(16, 65, "%s%n");
    expectCommand(110, kSmartWifiLength).text(16, 513, "%s%n");
    EXPECT_EQ(TarnSetQuantennaSmartWiFiBindingInterface("ledd", text), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiCfgToFile("ledd", text), 0u);
}

TEST_F(SmartWifi, QcommDataFillsTheMessageUpToItsStatus)
{
    replyNonZero(expectCommand(84, kSmartWifiLength).replyWord(kStatus, 5), kSmartWifiLength);

    RecordOutput<TarnQuantennaSmartWiFiQcommData, 1700> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQcomm("ledd", data.record()), 5u);
    data.expectFrom(kSmartWifiOut);
}

TEST_F(SmartWifi, QcommConfigurationStandsBehindItsValue)
{
    const auto cfg = nonZeroRecord<TarnQuantennaSmartWiFiQcommCfg>();
    expectCommand(85, kSmartWifiLength).word(12, 0x12345678).bytes(16, cfg.bytes, 64).status(5);
    EXPECT_EQ(TarnSetQuantennaSmartWiFiQcommCfg("ledd", 0x12345678, cfg), 5u);
}

TEST_F(SmartWifi, MobilityDomainsAreListedByIndex)
{
    expectWordAt(kSmartWifiOut, 88, kSmartWifiLength, TarnGetQuantennaSmartWiFiQslMdidNumber);
    replyNonZero(expectCommand(89, kSmartWifiLength).word(4, 0).status(6), kSmartWifiLength);
    expectCommand(89, kSmartWifiLength).word(4, 2);

    Output<2> mdid;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQslMdidAt("ledd", 0, mdid.data()), 6u);
    mdid.expectFrom(kSmartWifiOut);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQslMdidAt("ledd", 2, mdid.data()), 0u);
}

// Two single bytes, so that they may lie at any address.
TEST_F(SmartWifi, MobilityDomainNeedsNoAlignment)
{
    alignas(2) std::uint8_t bytes[] = {kUntouchedByte, 0xAB, 0xCD, kUntouchedByte};
    expectCommand(93, kSmartWifiLength).byte(8, 0xAB).byte(9, 0xCD).byte(10, 0).byte(11, 0);
    expectCommand(89, kSmartWifiLength)
        .replyByte(kSmartWifiOut, 1)
        .replyByte(kSmartWifiOut + 1, 2)
        .replyByte(kSmartWifiOut + 2, 3);

    std::uint32_t number = 0;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerNumber("ledd", bytes + 1, &number), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQslMdidAt("ledd", 0, bytes + 1), 0u);
    EXPECT_THAT(bytes, ElementsAre(kUntouchedByte, 1, 2, kUntouchedByte));
}

TEST_F(SmartWifi, QslIsReadInOnePiece)
{
    replyNonZero(expectCommand(90, kSmartWifiLength).bytes(8, kMdid, 2).status(5), kSmartWifiLength);

    RecordOutput<TarnQuantennaSmartWiFiQslData, 232> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQsl("ledd", kMdid, data.record()), 5u);
    data.expectFrom(kSmartWifiOut);
}

TEST_F(SmartWifi, QslIsWrittenInTwoPartsOfDifferentSize)
{
    const auto part1 = nonZeroRecord<TarnQuantennaSmartWiFiQslPart1Cfg>();
    const auto part2 = nonZeroRecord<TarnQuantennaSmartWiFiQslPart2Cfg>();
    expectCommand(91, kSmartWifiLength).bytes(8, kMdid, 2).word(12, 1).bytes(16, part1.bytes, 120).status(5);
    expectCommand(92, kSmartWifiLength).bytes(8, kMdid, 2).word(12, 0x12345678).bytes(16, part2.bytes, 112).status(6);
    EXPECT_EQ(TarnSetQuantennaSmartWiFiQslPart1Cfg("ledd", kMdid, 1, part1), 5u);
    EXPECT_EQ(TarnSetQuantennaSmartWiFiQslPart2Cfg("ledd", kMdid, 0x12345678, part2), 6u);
}

TEST_F(SmartWifi, NonSteerListIsReadByIndex)
{
    expectCommand(93, kSmartWifiLength).bytes(8, kMdid, 2).replyWord(kSmartWifiOut, 3).status(5);
    replyNonZero(expectCommand(94, kSmartWifiLength).word(4, 0).bytes(8, kMdid, 2).status(6), kSmartWifiLength);
    expectCommand(94, kSmartWifiLength).word(4, 7).bytes(8, kMdid, 2);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerNumber("ledd", kMdid, &number), 5u);
    EXPECT_EQ(number, 3u);

    Output<6> mac;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerAt("ledd", kMdid, 0, mac.data()), 6u);
    mac.expectFrom(kSmartWifiOut);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerAt("ledd", kMdid, 7, mac.data()), 0u);
}

TEST_F(SmartWifi, NonSteerAddressIsAddedAndDeletedAsSixBytes)
{
    expectCommand(95, kSmartWifiLength).bytes(8, kMdid, 2).bytes(16, kMac.data(), 6).status(5);
    expectCommand(96, kSmartWifiLength).bytes(8, kMdid, 2).bytes(16, kMac.data(), 6).status(6);
    EXPECT_EQ(TarnAddQuantennaSmartWiFiNonSteer("ledd", kMdid, kMac.data()), 5u);
    EXPECT_EQ(TarnDelQuantennaSmartWiFiNonSteer("ledd", kMdid, kMac.data()), 6u);
}

// A mobility domain that goes in is not checked: what is missing is found without a look at it.
TEST_F(SmartWifi, OnlyTheOtherPointersAreChecked)
{
    EXPECT_EQ(TarnGetQuantennaSmartWiFiQsl("ledd", nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerNumber("ledd", nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiNonSteerAt("ledd", nullptr, 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnAddQuantennaSmartWiFiNonSteer("ledd", nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnDelQuantennaSmartWiFiNonSteer("ledd", nullptr, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("data is NULL", "number is NULL", "mac_addr is NULL", "mac_addr is NULL", "mac_addr is NULL"));
}

TEST_F(SmartWifi, EachMissingPointerIsNamed)
{
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiState), "enable");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiVersion), "version");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiDaemonVersion), "version");
    EXPECT_EQ(missing(TarnSetQuantennaSmartWiFiBindingInterface), "intf_name");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiQcomm), "data");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiQslCfgSyncing), "state");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiQslMdidNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiQslMdidAt), "mdid");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiCfgToFile), "path");
}

} // namespace
} // namespace tarn::test
