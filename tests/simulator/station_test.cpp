#include "support.h"

namespace simulator_test
{

using StationTest = SimulatorTest;

TEST_F(StationTest, StationsAreCountedListedAndRead)
{
    ASSERT_EQ(3U, stationCount());
    for (std::uint32_t index = 0; index < 3; ++index)
    {
        TarnAccessPointAssociatedData listed;
        ASSERT_EQ(kDone, CALL(TarnGetAccessPointAssociatedAt)(1, 1, index, &listed));
        const Record record = recordOf("TarnAccessPointAssociatedData", listed);
        EXPECT_EQ(index, record.number("associationIndex"));
        TarnAccessPointAssociatedData single;
        const MacAddress address = record.address("macAddress");
        ASSERT_EQ(kDone, CALL(TarnGetAccessPointAssociated)(1, 1, address.data(), &single));
        EXPECT_EQ(0, std::memcmp(&listed, &single, sizeof listed));

        // The module lists the same ones in the same order.
        std::uint8_t mac[6];
        ASSERT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_associated_device_mac_addr)("wifi0", index, mac));
        EXPECT_EQ(0, std::memcmp(address.data(), mac, sizeof mac));
    }
    TarnAccessPointAssociatedData data;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPointAssociatedAt)(1, 1, 3, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPointAssociated)(1, 1, kStranger.data(), &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPointAssociated)(1, 2, kFirstStation.data(), &data)); // not there, but next door
}

TEST_F(StationTest, StationTellsOfItself)
{
    passSeconds(42);
    TarnAccessPointAssociatedData raw;
    ASSERT_EQ(kDone, CALL(TarnGetAccessPointAssociated)(1, 1, kSecondStation.data(), &raw));
    const Record data = recordOf("TarnAccessPointAssociatedData", raw);
    EXPECT_EQ(-63, data.signedNumber("rssi"));
    EXPECT_EQ(585U, data.number("txRate"));
    EXPECT_EQ(42U, data.number("secondsAssociated"));
    EXPECT_EQ("11ac", data.text("phyMode"));
    EXPECT_EQ("wifi0", data.text("name"));

    TarnAccessPointAssociatedStats rawStats;
    ASSERT_EQ(kDone, CALL(TarnGetAccessPointAssociatedStats)(1, 1, kSecondStation.data(), &rawStats));
    const Record stats = recordOf("TarnAccessPointAssociatedStats", rawStats);
    EXPECT_EQ(840U, stats.number("txPackets"));
    EXPECT_EQ(840000U, stats.number("txBytes"));
    EXPECT_EQ(-63, stats.signedNumber("rssi"));
    EXPECT_EQ(42U, stats.number("secondsAssociated"));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPointAssociatedStats)(1, 1, kStranger.data(), &rawStats));
}

TEST_F(StationTest, KickedStationComesBackLater)
{
    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()));
    EXPECT_EQ(2U, stationCount());
    EXPECT_EQ(kNoSuchObject, CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()));
    passSeconds(9);
    EXPECT_EQ(2U, stationCount());
    passSeconds(1);
    EXPECT_EQ(3U, stationCount());

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()));
    EXPECT_EQ(2U, stationCount());
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_disassociate_sta)("wifi0", kFirstStation.data()));
}

TEST_F(StationTest, FilterModeIsTheSameForTheModule)
{
    std::uint32_t mode = 99;
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointMacFilterMode)(1, 1, 2));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_mac_address_filtering)("wifi0", &mode));
    EXPECT_EQ(2U, mode);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 1));
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterMode)(1, 1, &mode));
    EXPECT_EQ(1U, mode);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointMacFilterMode)(1, 1, 3));
    EXPECT_EQ(0U, stationCount()); // only those listed may stay, and nobody is
}

TEST_F(StationTest, FilterListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {};
    EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()));
    EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, kFirstStation.data()));
    EXPECT_EQ(kAlreadyThere, CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()));
    EXPECT_EQ(kInvalidValue, CALL(TarnAddAccessPointMacFilter)(1, 1, MacAddress{1, 2, 3, 4, 5, 6}.data())); // a group address
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number));
    EXPECT_EQ(2U, number);
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterAt)(1, 1, 1, mac));
    EXPECT_EQ(0, std::memcmp(kFirstStation.data(), mac, sizeof mac));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPointMacFilterAt)(1, 1, 2, mac));
    EXPECT_EQ(kDone, CALL(TarnDelAccessPointMacFilter)(1, 1, kStranger.data()));
    EXPECT_EQ(kNotThere, CALL(TarnDelAccessPointMacFilter)(1, 1, kStranger.data()));
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number));
    EXPECT_EQ(1U, number);

    for (std::uint8_t i = 0; i < 31; ++i)
        EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, MacAddress{0x02, 0, 0, 0, 8, i}.data()));
    EXPECT_EQ(kFull, CALL(TarnAddAccessPointMacFilter)(1, 1, kStranger.data()));
}

TEST_F(StationTest, ModuleAuthorizesAndDeniesIntoTheSameList)
{
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kStranger.data()));
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kStranger.data()));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 2));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kFirstStation.data()));
    EXPECT_EQ(kModuleAlreadyThere, CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kFirstStation.data()));
    EXPECT_EQ(2U, stationCount());
    std::uint8_t mac[6] = {};
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterAt)(1, 1, 0, mac));
    EXPECT_EQ(0, std::memcmp(kFirstStation.data(), mac, sizeof mac));

    passSeconds(20);
    EXPECT_EQ(2U, stationCount()); // it may not come back
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kFirstStation.data()));
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kFirstStation.data()));
    EXPECT_EQ(3U, stationCount());

    EXPECT_EQ(kDone, CALL(TarnAddAccessPointMacFilter)(1, 1, kSecondStation.data()));
    EXPECT_EQ(2U, stationCount());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_clear_mac_address_filters)("wifi0"));
    std::uint32_t number = 99;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointMacFilterNum)(1, 1, &number));
    EXPECT_EQ(0U, number);
    passSeconds(10);
    EXPECT_EQ(3U, stationCount());

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_mac_address_filtering)("wifi0", 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_authorize_mac_address)("wifi0", kSecondStation.data()));
    passSeconds(10);
    EXPECT_EQ(1U, stationCount());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_deny_mac_address)("wifi0", kSecondStation.data()));
    EXPECT_EQ(0U, stationCount());
}

TEST_F(StationTest, LimitSendsTheLastOnesAway)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_assoc_limit)("wifi0", 1));
    EXPECT_EQ(1U, stationCount());
    TarnAccessPointAssociatedData data;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointAssociated)(1, 1, kFirstStation.data(), &data));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_assoc_limit)("wifi0", 0));
    passSeconds(10);
    EXPECT_EQ(3U, stationCount());
}

TEST_F(StationTest, RadioThatGoesOffLosesItsStations)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_rfenable)(0));
    EXPECT_EQ(0U, stationCount());
    EXPECT_EQ(0U, stationCount(1, 2));
    EXPECT_EQ(1U, stationCount(2, 1)); // the other radio's
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_rfenable)(1));
    passSeconds(10);
    EXPECT_EQ(3U, stationCount());
}

} // namespace simulator_test
