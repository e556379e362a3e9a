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
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiState)(&enable), kDone);
    EXPECT_EQ(enable, 1u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiVersion)(version), kDone);
    EXPECT_STREQ(version, "3.1.0-sim");
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiDaemonVersion)(version), kDone);
    EXPECT_STREQ(version, "3.1.4-sim");

    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiEnable)(0), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiState)(&enable), kDone);
    EXPECT_EQ(enable, 0u);
    EXPECT_EQ(CALL(TarnResetQuantennaSmartWiFiDaemon)(), kSwitchedOff);
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiBSSTable)(), kSwitchedOff);
    EXPECT_EQ(CALL(TarnDoQuantennaSmartWiFiCfgPropagation)(), kSwitchedOff);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiEnable)(2), kInvalidValue);

    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(2, 1), kDone); // the module's switch of the same daemon
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiState)(&enable), kDone);
    EXPECT_EQ(enable, 1u);
}

TEST_F(SmartWiFiTest, BindingInterfaceMustBeThere)
{
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiBindingInterface)("wlan0"), kDone);
    EXPECT_EQ(state("/module/smartWiFiInterface"), "wlan0");
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiBindingInterface)("wlan7"), kNoSuchObject);
    EXPECT_EQ(state("/module/smartWiFiInterface"), "wlan0");
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiBindingInterface)(""), kDone);
    EXPECT_EQ(state("/module/smartWiFiInterface"), "");
}

TEST_F(SmartWiFiTest, QcommConfigurationIsReadBack)
{
    Record cfg = blank("TarnQuantennaSmartWiFiQcommCfg");
    cfg.setNumber("qcommEnabled", 1);
    cfg.setNumber("qcommRole", 2);
    cfg.setNumber("qcommPort", 1234);
    cfg.setNumber("qcommIntervalSeconds", 60);
    cfg.setText("qcommKey", "secret");
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQcommCfg)(0, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg)), kDone);
    TarnQuantennaSmartWiFiQcommData raw;
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQcomm)(&raw), kDone);
    const Record data = recordOf("TarnQuantennaSmartWiFiQcommData", raw);
    EXPECT_EQ(data.number("qcommRole"), 2u);
    EXPECT_EQ(data.number("qcommPort"), 1234u);
    EXPECT_EQ(data.number("qcommIntervalSeconds"), 60u);
    EXPECT_EQ(data.text("qcommKey"), "secret");
    EXPECT_EQ(data.number("slaveDevices"), 2u);
    EXPECT_EQ(data.address("slaveAddresses[1]")[0], 0x02);

    cfg.setNumber("qcommPort", 0);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQcommCfg)(0, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg)), kInvalidValue);
    cfg.setNumber("qcommRole", 1);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQcommCfg)(2, rawOf<TarnQuantennaSmartWiFiQcommCfg>(cfg)), kDone); // the role alone
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQcomm)(&raw), kDone);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiQcommData", raw).number("qcommRole"), 1u);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiQcommData", raw).number("qcommPort"), 1234u);
}

TEST_F(SmartWiFiTest, SyncingIsReadBack)
{
    std::uint32_t syncing = 99;
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslCfgSyncing)(1), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQslCfgSyncing)(&syncing), kDone);
    EXPECT_EQ(syncing, 1u);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslCfgSyncing)(5), kInvalidValue);
}

TEST_F(SmartWiFiTest, MobilityDomainsAreCountedAndListed)
{
    std::uint32_t number = 0;
    std::uint8_t mdid[2] = {};
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQslMdidNumber)(&number), kDone);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQslMdidAt)(1, mdid), kDone);
    EXPECT_EQ(mdid[0], 0xc3);
    EXPECT_EQ(mdid[1], 0xd4);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQslMdidAt)(2, mdid), kNoSuchObject);
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
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart2Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart2Cfg>(second)),
              kNoSuchObject);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(first)), kDone);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart2Cfg)(kNew, 0, rawOf<TarnQuantennaSmartWiFiQslPart2Cfg>(second)), kDone);

    TarnQuantennaSmartWiFiQslData raw;
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiQsl)(kNew, &raw), kDone);
    const Record data = recordOf("TarnQuantennaSmartWiFiQslData", raw);
    EXPECT_EQ(data.number("rssiThreshold"), 70u);
    EXPECT_EQ(data.text("name"), "attic");
    EXPECT_EQ(data.number("bandThreshold"), 55u);
    EXPECT_EQ(data.text("uplink"), "wifi0");
    // The read record is the two written ones, one behind the other.
    std::vector<std::uint8_t> both = first.bytes();
    both.insert(both.end(), second.bytes().begin(), second.bytes().end());
    EXPECT_EQ(data.bytes(), both);

    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiQsl)(kUnknown, &raw), kNoSuchObject);
    first.setNumber("rssiThreshold", 101);
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kHome, 0, rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(first)),
              kInvalidValue);
}

TEST_F(SmartWiFiTest, MobilityDomainsAreLimited)
{
    const auto cfg = rawOf<TarnQuantennaSmartWiFiQslPart1Cfg>(blank("TarnQuantennaSmartWiFiQslPart1Cfg"));
    for (std::uint8_t i = 0; i < 6; ++i)
    {
        const std::uint8_t mdid[2] = {1, i};
        EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(mdid, 0, cfg), kDone);
    }
    EXPECT_EQ(CALL(TarnSetQuantennaSmartWiFiQslPart1Cfg)(kNew, 0, cfg), kFull);
}

TEST_F(SmartWiFiTest, NonSteerListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(CALL(TarnAddQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnAddQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()), kAlreadyThere);
    EXPECT_EQ(CALL(TarnAddQuantennaSmartWiFiNonSteer)(kUnknown, kStranger.data()), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiNonSteerNumber)(kHome, &number), kDone);
    EXPECT_EQ(number, 2u); // the scenario has one
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiNonSteerAt)(kHome, 1, mac), kDone);
    EXPECT_EQ(std::memcmp(kStranger.data(), mac, sizeof mac), 0);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiNonSteerAt)(kHome, 2, mac), kNoSuchObject);
    EXPECT_EQ(CALL(TarnDelQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnDelQuantennaSmartWiFiNonSteer)(kHome, kStranger.data()), kNotThere);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiNonSteerNumber)(kUnknown, &number), kNoSuchObject);
}

// --- Tables ------------------------------------------------------------------------------------------------------------------

TEST_F(SmartWiFiTest, BssTableIsACopyFromTheLastSync)
{
    std::uint32_t number = 99;
    TarnQuantennaSmartWiFiBSSEntryData raw;
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number), kDone);
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw), kNoSuchObject);
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiBSSTable)(), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number), kDone);
    EXPECT_EQ(number, 5u); // three of its own, two slave devices'

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "renamed"), kDone);
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw), kDone);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).text("ssid"), "home");
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiBSSTable)(), kDone);
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(0, &raw), kDone);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).text("ssid"), "renamed");
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("stations"), 0u); // nobody looks for that name
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("own"), 1u);
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(4, &raw), kDone);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).address("bssid"), (MacAddress{0x02, 0, 0, 0, 3, 2}));
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiBSSEntryData", raw).number("own"), 0u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryAt)(5, &raw), kNoSuchObject);

    EXPECT_EQ(CALL(TarnResetQuantennaSmartWiFiDaemon)(), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiBSSEntryNumber)(&number), kDone);
    EXPECT_EQ(number, 0u);
}

TEST_F(SmartWiFiTest, StationTableIsACopyFromTheLastSync)
{
    std::uint32_t number = 99;
    TarnQuantennaSmartWiFiAssoiatedData raw;
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(0, &raw), kNoSuchObject);
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiAssoiated)(), kDone);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiAssoiatedNumber)(&number), kDone);
    EXPECT_EQ(number, 5u);
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(0, &raw), kDone);
    const Record entry = recordOf("TarnQuantennaSmartWiFiAssoiatedData", raw);
    EXPECT_EQ(entry.address("macAddress"), kFirstStation);
    EXPECT_EQ(entry.signedNumber("rssi"), -48);
    EXPECT_EQ(entry.text("ssid"), "home");
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiAssoiated)(), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiAssoiatedNumber)(&number), kDone);
    EXPECT_EQ(number, 4u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiAssoiatedAt)(4, &raw), kNoSuchObject);
}

TEST_F(SmartWiFiTest, RecordInfoTellsWhoCameAndWent)
{
    passSeconds(7);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    std::uint32_t number = 99;
    std::uint32_t status = 99;
    TarnQuantennaSmartWiFiRecordInfoData raw;
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(0, &status, &raw), kNoSuchObject);
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiRecordInfo)(), kDone);
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiRecordInfoNumber)(&number), kDone);
    ASSERT_EQ(number, 6u); // five have come, one has gone
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(0, &status, &raw), kDone);
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).text("text"), "02:00:00:00:01:01 has come to wifi0");
    ASSERT_EQ(CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(5, &status, &raw), kDone);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).text("text"), "02:00:00:00:01:01 has left wifi0");
    EXPECT_EQ(recordOf("TarnQuantennaSmartWiFiRecordInfoData", raw).number("secondsSinceStart"), 7u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiRecordInfoAt)(6, &status, &raw), kNoSuchObject);
}

TEST_F(SmartWiFiTest, SlaveDevicesAreThoseOfTheScenario)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(CALL(TarnSyncQuantennaSmartWiFiSlaveDevice)(), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiSlaveDeviceNumber)(&number), kDone);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiSlaveDeviceAt)(0, mac), kDone);
    EXPECT_EQ(std::memcmp((MacAddress{0x02, 0, 0, 0, 3, 1}).data(), mac, sizeof mac), 0);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiSlaveDeviceAt)(2, mac), kNoSuchObject);
}

TEST_F(SmartWiFiTest, ConfigurationIsPropagatedAndWritten)
{
    EXPECT_EQ(CALL(TarnDoQuantennaSmartWiFiCfgPropagation)(), kDone);
    EXPECT_EQ(CALL(TarnDoQuantennaSmartWiFiCfgPropagation)(), kDone);
    EXPECT_EQ(state("/smartWiFi/propagations"), 2);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiCfgToFile)("/var/steering.conf"), kDone);
    const std::string text = state("/module/files")["/var/steering.conf"];
    EXPECT_EQ(text.find("[a1b2]\\x0asteering=1"), 0u);
    EXPECT_NE(text.find("[c3d4]\\x0asteering=0"), std::string::npos);
    EXPECT_EQ(CALL(TarnGetQuantennaSmartWiFiCfgToFile)(""), kInvalidValue);
}

} // namespace simulator_test
