#include "support.h"

namespace simulator_test
{

using ModuleTest = SimulatorTest;

// A setting with its setter and getter: what one stores the other returns, and a number over the greatest is refused.
template <typename Set, typename Get>
void readsBack(Set set, Get get, std::uint32_t greatest)
{
    for (const std::uint32_t value : {greatest, 0U, greatest})
    {
        std::uint32_t read = 99;
        EXPECT_EQ(kDone, set(value));
        EXPECT_EQ(kDone, get(&read));
        EXPECT_EQ(value, read);
    }
    std::uint32_t read = 99;
    EXPECT_EQ(kInvalidValue, set(greatest + 1));
    EXPECT_EQ(kDone, get(&read));
    EXPECT_EQ(greatest, read);
}

TEST_F(ModuleTest, SwitchesAreReadBack)
{
    readsBack(CALL(TarnSetQuantennaATM), CALL(TarnGetQuantennaATMState), 1);
    readsBack(CALL(TarnSetQuantennaAtmActuate), CALL(TarnGetQuantennaAtmActuateState), 1);
    readsBack(CALL(TarnSetQuantennaDFSDaemon), CALL(TarnGetQuantennaDFSDaemonState), 1);
    readsBack(CALL(TarnSetQuantennaMauiEnable), CALL(TarnGetQuantennaMauiState), 1);
    readsBack([](std::uint32_t value) { return CALL(TarnSetRadioQuantennaQhopEnable)(1, value); },
              [](std::uint32_t* value) { return CALL(TarnGetRadioQuantennaQhopState)(1, value); }, 1);
    std::uint32_t enable = 0;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioQuantennaQhopState)(2, &enable)); // not a radio of the module
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetRadioQuantennaQhopEnable)(9, 1));
}

TEST_F(ModuleTest, DebugIsOneSwitchForBothServices)
{
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaRPCDebugEnable)(1));
    EXPECT_EQ(1, state("/module/debug"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_debug)(0));
    EXPECT_EQ(0, state("/module/debug"));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetQuantennaRPCDebugEnable)(2));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_debug)(2));
    EXPECT_EQ(false, state("/module/initialised"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_init)());
    EXPECT_EQ(true, state("/module/initialised"));
}

TEST_F(ModuleTest, CarrierIdIsOneForBothServices)
{
    std::uint32_t device = 0;
    std::uint32_t proxy = 0;
    EXPECT_EQ(kDone, CALL(TarnGetRadioQuantennaCarrierId)(&device));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_carrier_id)(&proxy));
    EXPECT_EQ(3U, device);
    EXPECT_EQ(3U, proxy);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_carrier_id)(17, 1));
    EXPECT_EQ(kDone, CALL(TarnGetRadioQuantennaCarrierId)(&device));
    EXPECT_EQ(17U, device);
    EXPECT_EQ(1, state("/module/carrierIdKept"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_set_carrier_id)(18, 2));
    EXPECT_EQ(kDone, CALL(TarnGetRadioQuantennaCarrierId)(&device));
    EXPECT_EQ(17U, device); // both values or none
}

TEST_F(ModuleTest, TransmitPowerIsOneForBothServices)
{
    std::uint8_t raw[8];
    std::uint32_t power[4];
    const auto check = [&](std::int32_t expected)
    {
        EXPECT_EQ(kDone, CALL(TarnGetRadioQuantennaCurrentTransmitPower)(1, raw));
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_calcmd_get_tx_power)(&power[0], &power[1], &power[2], &power[3]));
        const Record record = recordOf("TarnGetRadioQuantennaCurrentTransmitPower.power", raw);
        EXPECT_EQ(expected, record.signedNumber("chain0"));
        EXPECT_EQ(expected, record.signedNumber("chain3"));
        EXPECT_EQ(expected, static_cast<std::int32_t>(power[0]));
        EXPECT_EQ(expected, static_cast<std::int32_t>(power[3]));
    };
    check(23);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", 50));
    check(20);
    std::uint8_t level = 0;
    EXPECT_EQ(kDone, CALL(TarnGetRadioCurrentTransmitPowerLevel)(1, &level));
    EXPECT_EQ(50, level);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_apply_tx_power_cap)(1));
    check(17);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", 60));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioQuantennaCurrentTransmitPower)(2, raw));
}

TEST_F(ModuleTest, MauiVersionIsTheScenarios)
{
    char version[65];
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaMauiVersion)(version));
    EXPECT_STREQ("2.0.7-sim", version);
}

std::uint32_t downloadState()
{
    std::uint32_t state = 99;
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaDownloadState)(&state));
    return state;
}

TEST_F(ModuleTest, DownloadTakesItsTime)
{
    EXPECT_EQ(0U, downloadState());
    EXPECT_EQ(kInvalidValue, CALL(TarnDownloadQuantennaWirelessConf)("relative/path"));
    EXPECT_EQ(kDone, CALL(TarnDownloadQuantennaWirelessConf)("/mnt/wireless.conf"));
    EXPECT_EQ(kBusy, CALL(TarnDownloadQuantennaWirelessConf)("/mnt/wireless.conf"));
    EXPECT_EQ(kBusy, CALL(TarnUpdateQuantennaPasswordFile)());
    EXPECT_EQ(1U, downloadState());
    EXPECT_EQ("/mnt/wireless.conf", state("/module/download/path"));
    passSeconds(5);
    EXPECT_EQ(2U, downloadState());
    EXPECT_EQ(kDone, CALL(TarnUpdateQuantennaPasswordFile)());
    EXPECT_EQ(1U, downloadState());
    passSeconds(5);
    EXPECT_EQ(2U, downloadState());
}

TEST_F(ModuleTest, DownloadOfAMissingFileFails)
{
    EXPECT_EQ(kDone, CALL(TarnDownloadQuantennaWirelessConf)("/mnt/missing.conf"));
    passSeconds(5);
    EXPECT_EQ(3U, downloadState());
}

TEST_F(ModuleTest, CurrentAssociationsAreThoseOfAllRadios)
{
    std::uint32_t number = 0;
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSoniqCurrentAssociationNumber)(&number));
    ASSERT_EQ(5U, number);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnQuantennaSoniqCurrentAssociationData listed;
        TarnQuantennaSoniqCurrentAssociationData single;
        ASSERT_EQ(kDone, CALL(TarnGetQuantennaSoniqCurrentAssociationAt)(index, &listed));
        const MacAddress address = recordOf("TarnQuantennaSoniqCurrentAssociationData", listed).address("macAddress");
        ASSERT_EQ(kDone, CALL(TarnGetQuantennaSoniqCurrentAssociation)(address.data(), &single));
        EXPECT_EQ(0, std::memcmp(&listed, &single, sizeof listed));
    }
    TarnQuantennaSoniqCurrentAssociationData raw;
    ASSERT_EQ(kDone, CALL(TarnGetQuantennaSoniqCurrentAssociation)(kSlowBandStation.data(), &raw));
    const Record data = recordOf("TarnQuantennaSoniqCurrentAssociationData", raw);
    EXPECT_EQ("2.4GHz", data.text("band"));
    EXPECT_EQ("wlan0", data.text("name"));
    EXPECT_EQ(6U, data.number("channel"));
    EXPECT_EQ(-58, data.signedNumber("rssi"));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSoniqCurrentAssociationAt)(number, &raw));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetQuantennaSoniqCurrentAssociation)(kStranger.data(), &raw));

    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(2, 1, kSlowBandStation.data()));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaSoniqCurrentAssociationNumber)(&number));
    EXPECT_EQ(4U, number);
}

TEST_F(ModuleTest, WeatherRadarChannelsCanBeSwitchedOn)
{
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 116)); // 80 MHz of it reach into them
    EXPECT_EQ(kDone, CALL(TarnSetRadioQuantennaQhopEnable)(1, 0));
    EXPECT_EQ(kDone, CALL(TarnSetQuantennaTdwrChannelsEnable)(1, 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 120));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetQuantennaTdwrChannelsEnable)(1, 0)); // the radio works on one of them
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetQuantennaTdwrChannelsEnable)(2, 1));
}

} // namespace simulator_test
