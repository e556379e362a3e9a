#include "support.h"

namespace simulator_test
{

using StationTest = SimulatorTest;

TEST_F(StationTest, StationsAreCountedListedAndRead)
{
    ASSERT_EQ(stationCount(), 3u);
    for (std::uint32_t index = 0; index < 3; ++index)
    {
        TarnAccessPointAssociatedData listed;
        ASSERT_EQ(CALL(TarnGetAccessPointAssociatedAt)(1, 1, index, &listed), kDone);
        const Record record = recordOf("TarnAccessPointAssociatedData", listed);
        EXPECT_EQ(record.number("associationIndex"), index);
        TarnAccessPointAssociatedData single;
        const MacAddress address = record.address("macAddress");
        ASSERT_EQ(CALL(TarnGetAccessPointAssociated)(1, 1, address.data(), &single), kDone);
        EXPECT_EQ(std::memcmp(&listed, &single, sizeof listed), 0);

        // The module lists the same ones in the same order.
        std::uint8_t mac[6];
        ASSERT_EQ(CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi0", index, mac), kDone);
        EXPECT_EQ(std::memcmp(address.data(), mac, sizeof mac), 0);
    }
    TarnAccessPointAssociatedData data;
    EXPECT_EQ(CALL(TarnGetAccessPointAssociatedAt)(1, 1, 3, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetAccessPointAssociated)(1, 1, kStranger.data(), &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetAccessPointAssociated)(1, 2, kFirstStation.data(), &data), kNoSuchObject); // not there, but next door
}

TEST_F(StationTest, StationTellsOfItself)
{
    passSeconds(42);
    TarnAccessPointAssociatedData raw;
    ASSERT_EQ(CALL(TarnGetAccessPointAssociated)(1, 1, kSecondStation.data(), &raw), kDone);
    const Record data = recordOf("TarnAccessPointAssociatedData", raw);
    EXPECT_EQ(data.signedNumber("rssi"), -63);
    EXPECT_EQ(data.number("txRate"), 866u);
    EXPECT_EQ(data.number("secondsAssociated"), 42u);
    EXPECT_EQ(data.text("phyMode"), "11ac");
    EXPECT_EQ(data.text("name"), "wifi0");

    TarnAccessPointAssociatedStats rawStats;
    ASSERT_EQ(CALL(TarnGetAccessPointAssociatedStats)(1, 1, kSecondStation.data(), &rawStats), kDone);
    const Record stats = recordOf("TarnAccessPointAssociatedStats", rawStats);
    EXPECT_EQ(stats.number("txPackets"), 840u);
    EXPECT_EQ(stats.number("txBytes"), 840000u);
    EXPECT_EQ(stats.signedNumber("rssi"), -63);
    EXPECT_EQ(stats.number("secondsAssociated"), 42u);
    EXPECT_EQ(CALL(TarnGetAccessPointAssociatedStats)(1, 1, kStranger.data(), &rawStats), kNoSuchObject);
}

TEST_F(StationTest, KickedStationComesBackLater)
{
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    EXPECT_EQ(stationCount(), 2u);
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kNoSuchObject);
    passSeconds(9);
    EXPECT_EQ(stationCount(), 2u);
    passSeconds(1);
    EXPECT_EQ(stationCount(), 3u);

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()), kDone);
    EXPECT_EQ(stationCount(), 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()), kModuleNoSuchObject);
}

TEST_F(StationTest, FilterModeIsTheSameForTheModule)
{
    std::uint32_t mode = 99;
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 2), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_mac_address_filtering)("wifi0", &mode), kDone);
    EXPECT_EQ(mode, 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 1), kDone);
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterMode)(1, 1, &mode), kDone);
    EXPECT_EQ(mode, 1u);
    EXPECT_EQ(CALL(TarnSetAccessPointMacFilterMode)(1, 1, 3), kInvalidValue);
    EXPECT_EQ(stationCount(), 0u); // only those listed may stay, and nobody is
}

TEST_F(StationTest, FilterListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kFirstStation.data()), kDone);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()), kAlreadyThere);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, MacAddress{1, 2, 3, 4, 5, 6}.data()), kInvalidValue); // a group address
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number), kDone);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterAt)(1, 1, 1, mac), kDone);
    EXPECT_EQ(std::memcmp(kFirstStation.data(), mac, sizeof mac), 0);
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterAt)(1, 1, 2, mac), kNoSuchObject);
    EXPECT_EQ(CALL(TarnDelAccessPointMacFilter)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnDelAccessPointMacFilter)(1, 1, kStranger.data()), kNotThere);
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number), kDone);
    EXPECT_EQ(number, 1u);

    for (std::uint8_t i = 0; i < 31; ++i)
        EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, MacAddress{0x02, 0, 0, 0, 8, i}.data()), kDone);
    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()), kFull);
}

TEST_F(StationTest, ModuleAuthorizesAndDeniesIntoTheSameList)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kStranger.data()), kModuleSwitchedOff);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kStranger.data()), kModuleSwitchedOff);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 2), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kFirstStation.data()), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kFirstStation.data()), kModuleAlreadyThere);
    EXPECT_EQ(stationCount(), 2u);
    std::uint8_t mac[6] = {};
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterAt)(1, 1, 0, mac), kDone);
    EXPECT_EQ(std::memcmp(kFirstStation.data(), mac, sizeof mac), 0);

    passSeconds(20);
    EXPECT_EQ(stationCount(), 2u); // it may not come back
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kFirstStation.data()), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kFirstStation.data()), kModuleNotThere);
    EXPECT_EQ(stationCount(), 3u);

    EXPECT_EQ(CALL(TarnAddAccessPointMacFilter)(1, 1, kSecondStation.data()), kDone);
    EXPECT_EQ(stationCount(), 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_clear_mac_address_filters)("wifi0"), kDone);
    std::uint32_t number = 99;
    EXPECT_EQ(CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number), kDone);
    EXPECT_EQ(number, 0u);
    passSeconds(10);
    EXPECT_EQ(stationCount(), 3u);

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kSecondStation.data()), kDone);
    passSeconds(10);
    EXPECT_EQ(stationCount(), 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kSecondStation.data()), kDone);
    EXPECT_EQ(stationCount(), 0u);
}

TEST_F(StationTest, LimitSendsTheLastOnesAway)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_assoc_limit)("wifi0", 1), kDone);
    EXPECT_EQ(stationCount(), 1u);
    TarnAccessPointAssociatedData data;
    EXPECT_EQ(CALL(TarnGetAccessPointAssociated)(1, 1, kFirstStation.data(), &data), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_assoc_limit)("wifi0", 0), kDone);
    passSeconds(10);
    EXPECT_EQ(stationCount(), 3u);
}

TEST_F(StationTest, RadioThatGoesOffLosesItsStations)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_rfenable)(0), kDone);
    EXPECT_EQ(stationCount(), 0u);
    EXPECT_EQ(stationCount(1, 2), 0u);
    EXPECT_EQ(stationCount(2, 1), 1u); // the other radio's
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_rfenable)(1), kDone);
    passSeconds(10);
    EXPECT_EQ(stationCount(), 3u);
}

} // namespace simulator_test
