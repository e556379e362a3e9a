#include "support.h"

namespace simulator_test
{

using SmartWiFiTest = SimulatorTest;

constexpr std::uint8_t kHome[2] = {0xa1, 0xb2};
constexpr std::uint8_t kNew[2] = {0x00, 0x01};
constexpr std::uint8_t kUnknown[2] = {0xff, 0xff};

TEST_F(SmartWiFiTest, DaemonIsSwitched)
{
    std::uint32_t enable = 99;
    char version[65];
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiState)(&enable));
    EXPECT_EQ(1U, enable);
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiVersion)(version));
    EXPECT_STREQ("3.1.0-sim", version);
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiDaemonVersion)(version));
    EXPECT_STREQ("3.1.4-sim", version);

    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiEnable)(0));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiState)(&enable));
    EXPECT_EQ(0U, enable);
    EXPECT_EQ(kSwitchedOff, CALL(TarnResetQuantennaSmartWiFiDaemon)());
    EXPECT_EQ(kSwitchedOff, CALL(TarnSyncQuantennaSmartWiFiBSSTable)());
    EXPECT_EQ(kSwitchedOff, CALL(TarnDoQuantennaSmartWiFiCfgPropagation)());
    EXPECT_EQ(kInvalidValue, CALL(TarnSetQuantennaSmartWiFiEnable)(2));

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_service_control)(2, 1)); // the module's switch of the same daemon
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiState)(&enable));
    EXPECT_EQ(1U, enable);
}

TEST_F(SmartWiFiTest, BindingInterfaceMustBeThere)
{
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiBindingInterface)("wlan0"));
    EXPECT_EQ("wlan0", state("/module/smartWiFiInterface"));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetQuantennaSmartWiFiBindingInterface)("wlan7"));
    EXPECT_EQ("wlan0", state("/module/smartWiFiInterface"));
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiBindingInterface)(""));
    EXPECT_EQ("", state("/module/smartWiFiInterface"));
}

TEST_F(SmartWiFiTest, QcommConfigurationIsReadBack)
{
    Record cfg = blank("TarnQuantennaSmartWiFiQcommCfg");
    cfg.setNumber("qcommEnabled", 1);
    cfg.setNumber("qcommRole", 2);
    cfg.setNumber("qcommPort", 1234);
    cfg.setNumber("qcommIntervalSeconds", 60);
    cfg.setText("qcommKey", "secret");
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQcommCfg)(0, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg)));
    TarnQuantennaSmartWiFiQcommData raw;
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQcomm)(&raw));
    const Record data = recordOf("TarnQuantennaSmartWiFiQcommData", raw);
    EXPECT_EQ(2U, data.number("qcommRole"));
    EXPECT_EQ(1234U, data.number("qcommPort"));
    EXPECT_EQ(60U, data.number("qcommIntervalSeconds"));
    EXPECT_EQ("secret", data.text("qcommKey"));
    EXPECT_EQ(2U, data.number("slaveDevices"));
    EXPECT_EQ(0x02, data.block("slaveAddresses")[0]);

    cfg.setNumber("qcommPort", 0);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetQuantennaSmartWiFiQcommCfg)(0, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg)));
    cfg.setNumber("qcommRole", 1);
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQcommCfg)(2, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg))); // the role alone
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQcomm)(&raw));
    EXPECT_EQ(1U, recordOf("TarnQuantennaSmartWiFiQcommData", raw).number("qcommRole"));
    EXPECT_EQ(1234U, recordOf("TarnQuantennaSmartWiFiQcommData", raw).number("qcommPort"));
}

TEST_F(SmartWiFiTest, SyncingIsReadBack)
{
    std::uint32_t syncing = 99;
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQslCfgSyncing)(1));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQslCfgSyncing)(&syncing));
    EXPECT_EQ(1U, syncing);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetQuantennaSmartWiFiQslCfgSyncing)(5));
}

TEST_F(SmartWiFiTest, MobilityDomainsAreCountedAndListed)
{
    std::uint32_t number = 0;
    std::uint8_t mdid[2] = {};
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQslMdidNumber)(&number));
    EXPECT_EQ(2U, number);
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQslMdidAt)(1, mdid));
    EXPECT_EQ(0xc3, mdid[0]);
    EXPECT_EQ(0xd4, mdid[1]);
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiQslMdidAt)(2, mdid));
}

TEST_F(SmartWiFiTest, QslIsWrittenInTwoPartsAndReadInOne)
{
    Record first = blank("TarnQuantennaSmartWiFiQslPart1Cfg");
    Record second = blank("TarnQuantennaSmartWiFiQslPart2Cfg");
    first.setNumber("steering", 1);
    first.setNumber("rssiThreshold", 70);
    first.setText("name", "attic");
    second.setNumber("bandThreshold", 55);
    second.setText("uplink", "wifi0");
    EXPECT_EQ(kNoSuchObject,
              CALL(TarnSetQuantennaSmartWiFiQslPart2Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart2Cfg>(second)));
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(first)));
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQslPart2Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart2Cfg>(second)));

    TarnQuantennaSmartWiFiQslData raw;
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiQsl)(kNew, &raw));
    const Record data = recordOf("TarnQuantennaSmartWiFiQslData", raw);
    EXPECT_EQ(70U, data.number("rssiThreshold"));
    EXPECT_EQ("attic", data.text("name"));
    EXPECT_EQ(55U, data.number("bandThreshold"));
    EXPECT_EQ("wifi0", data.text("uplink"));
    // The read record is the two written ones, one behind the other.
    std::vector<std::uint8_t> both = first.bytes();
    both.insert(both.end(), second.bytes().begin(), second.bytes().end());
    EXPECT_EQ(both, data.bytes());

    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiQsl)(kUnknown, &raw));
    first.setNumber("rssiThreshold", 101);
    EXPECT_EQ(kInvalidValue,
              CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kHome, 0, rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(first)));
}

TEST_F(SmartWiFiTest, MobilityDomainsAreLimited)
{
    const auto cfg = rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(blank("TarnQuantennaSmartWiFiQslPart1Cfg"));
    for (std::uint8_t i = 0; i < 6; ++i)
    {
        const std::uint8_t mdid[2] = {1, i};
        EXPECT_EQ(kDone, CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(mdid, 0, cfg));
    }
    EXPECT_EQ(kFull, CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kNew, 0, cfg));
}

TEST_F(SmartWiFiTest, NonSteerListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(kDone, CALL(TarnAddQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()));
    EXPECT_EQ(kAlreadyThere, CALL(TarnAddQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()));
    EXPECT_EQ(kNoSuchObject, CALL(TarnAddQuantennaSmartWiFiNonSteer)(kUnknown, kStranger.data()));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiNonSteerNumber)(kHome, &number));
    EXPECT_EQ(2U, number); // the scenario has one
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiNonSteerAt)(kHome, 1, mac));
    EXPECT_EQ(0, std::memcmp(kStranger.data(), mac, sizeof mac));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiNonSteerAt)(kHome, 2, mac));
    EXPECT_EQ(kDone, CALL(TarnDelQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()));
    EXPECT_EQ(kNotThere, CALL(TarnDelQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiNonSteerNumber)(kUnknown, &number));
}

// --- Tables ------------------------------------------------------------------------------------------------------------------

TEST_F(SmartWiFiTest, BssTableIsACopyFromTheLastSync)
{
    std::uint32_t number = 99;
    TarnQuantennaSmartWiFiBSSEntryData raw;
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number));
    EXPECT_EQ(0U, number);
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw));
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiBSSTable)());
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number));
    EXPECT_EQ(5U, number); // three of its own, two slave devices'

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "renamed"));
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw));
    EXPECT_EQ("home", recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).text("ssid"));
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiBSSTable)());
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw));
    EXPECT_EQ("renamed", recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).text("ssid"));
    EXPECT_EQ(3U, recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("stations"));
    EXPECT_EQ(1U, recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("own"));
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(4, &raw));
    EXPECT_EQ((MacAddress{0x02, 0, 0, 0, 3, 2}), recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).address("bssid"));
    EXPECT_EQ(0U, recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("own"));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(5, &raw));

    EXPECT_EQ(kDone, CALL(TarnResetQuantennaSmartWiFiDaemon)());
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number));
    EXPECT_EQ(0U, number);
}

TEST_F(SmartWiFiTest, StationTableIsACopyFromTheLastSync)
{
    std::uint32_t number = 99;
    TarnQuantennaSmartWiFiAssoiatedData raw;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(0, &raw));
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiAssoiated)());
    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiAssoiatedNumber)(&number));
    EXPECT_EQ(5U, number);
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(0, &raw));
    const Record entry = recordOf("TarnQuantennaSmartWiFiAssoiatedData", raw);
    EXPECT_EQ(kFirstStation, entry.address("macAddress"));
    EXPECT_EQ(-48, entry.signedNumber("rssi"));
    EXPECT_EQ("home", entry.text("ssid"));
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiAssoiated)());
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiAssoiatedNumber)(&number));
    EXPECT_EQ(4U, number);
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(4, &raw));
}

TEST_F(SmartWiFiTest, RecordInfoTellsWhoCameAndWent)
{
    passSeconds(7);
    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()));
    std::uint32_t number = 99;
    std::uint32_t status = 99;
    TarnQuantennaSmartWiFiRecordInfoData raw;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(0, &status, &raw));
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiRecordInfo)());
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiRecordInfoNumber)(&number));
    ASSERT_EQ(6U, number); // five have come, one has gone
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(0, &status, &raw));
    EXPECT_EQ(1U, status);
    EXPECT_EQ("02:00:00:00:01:01 has come to wifi0", recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).text("text"));
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(5, &status, &raw));
    EXPECT_EQ(0U, status);
    EXPECT_EQ("02:00:00:00:01:01 has left wifi0", recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).text("text"));
    EXPECT_EQ(7U, recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).number("secondsSinceStart"));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(6, &status, &raw));
}

TEST_F(SmartWiFiTest, SlaveDevicesAreThoseOfTheScenario)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(kDone, CALL(TarnSyncQuantennaSmartWiFiSlaveDevice)());
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiSlaveDeviceNumber)(&number));
    EXPECT_EQ(2U, number);
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiSlaveDeviceAt)(0, mac));
    EXPECT_EQ(0, std::memcmp((MacAddress{0x02, 0, 0, 0, 3, 1}).data(), mac, sizeof mac));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSmartWiFiSlaveDeviceAt)(2, mac));
}

TEST_F(SmartWiFiTest, ConfigurationIsPropagatedAndWritten)
{
    EXPECT_EQ(kDone, CALL(TarnDoQuantennaSmartWiFiCfgPropagation)());
    EXPECT_EQ(kDone, CALL(TarnDoQuantennaSmartWiFiCfgPropagation)());
    EXPECT_EQ(2, state("/smartWiFi/propagations"));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSmartWiFiCfgToFile)("/var/steering.conf"));
    const std::string text = state("/module/files")["/var/steering.conf"];
    EXPECT_EQ(0U, text.find("[a1b2]\\x0asteering=1"));
    EXPECT_NE(std::string::npos, text.find("[c3d4]\\x0asteering=0"));
    EXPECT_EQ(kInvalidValue, CALL(TarnGetQuantennaSmartWiFiCfgToFile)(""));
}

} // namespace simulator_test
