#include "support.h"

namespace simulator_test
{

using ModuleTest = SimulatorTest;

// A setting with its setter and getter: what one stores the other returns, and a number over the greatest is refused.
template <typename Set, typename Get>
void readsBack(Set set, Get get, std::uint32_t greatest)
{
    for (const std::uint32_t value : {greatest, 0u, greatest})
    {
        std::uint32_t read = 99;
        EXPECT_EQ(set(value), kDone);
        EXPECT_EQ(get(&read), kDone);
        EXPECT_EQ(read, value);
    }
    std::uint32_t read = 99;
    EXPECT_EQ(set(greatest + 1), kInvalidValue);
    EXPECT_EQ(get(&read), kDone);
    EXPECT_EQ(read, greatest);
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
    EXPECT_EQ(CALL(TarnGetRadioQuantennaQhopState)(2, &enable), kNoSuchObject); // not a radio of the module
    EXPECT_EQ(CALL(TarnSetRadioQuantennaQhopEnable)(9, 1), kNoSuchObject);
}

TEST_F(ModuleTest, DebugIsOneSwitchForBothServices)
{
    EXPECT_EQ(CALL(TarnSetQuantennaRPCDebugEnable)(1), kDone);
    EXPECT_EQ(state("/module/debug"), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_debug)(0), kDone);
    EXPECT_EQ(state("/module/debug"), 0);
    EXPECT_EQ(CALL(TarnSetQuantennaRPCDebugEnable)(2), kInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_debug)(2), kModuleInvalidValue);
    EXPECT_EQ(state("/module/initialised"), false);
    EXPECT_EQ(CALL(tarn_qcsapi_init)(), kDone);
    EXPECT_EQ(state("/module/initialised"), true);
}

TEST_F(ModuleTest, CarrierIdIsOneForBothServices)
{
    std::uint32_t device = 0;
    std::uint32_t proxy = 0;
    EXPECT_EQ(CALL(TarnGetRadioQuantennaCarrierId)(&device), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_get_carrier_id)(&proxy), kDone);
    EXPECT_EQ(device, 3u);
    EXPECT_EQ(proxy, 3u);
    EXPECT_EQ(CALL(tarn_qcsapi_set_carrier_id)(17, 1), kDone);
    EXPECT_EQ(CALL(TarnGetRadioQuantennaCarrierId)(&device), kDone);
    EXPECT_EQ(device, 17u);
    EXPECT_EQ(state("/module/carrierIdKept"), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_set_carrier_id)(18, 2), kModuleInvalidValue);
    EXPECT_EQ(CALL(TarnGetRadioQuantennaCarrierId)(&device), kDone);
    EXPECT_EQ(device, 17u); // both values or none
}

TEST_F(ModuleTest, TransmitPowerIsOneForBothServices)
{
    std::uint8_t raw[8];
    std::uint32_t power[4];
    const auto check = [&](std::int32_t expected)
    {
        EXPECT_EQ(CALL(TarnGetRadioQuantennaCurrentTransmitPower)(1, raw), kDone);
        EXPECT_EQ(CALL(tarn_qcsapi_calcmd_get_tx_power)(&power[0], &power[1], &power[2], &power[3]), kDone);
        const Record record = recordOf("TarnGetRadioQuantennaCurrentTransmitPower.power", raw);
        EXPECT_EQ(record.signedNumber("chain0"), expected);
        EXPECT_EQ(record.signedNumber("chain3"), expected);
        EXPECT_EQ(static_cast<std::int32_t>(power[0]), expected);
        EXPECT_EQ(static_cast<std::int32_t>(power[3]), expected);
    };
    check(23);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", 50), kDone);
    check(20);
    std::uint8_t level = 0;
    EXPECT_EQ(CALL(TarnGetRadioCurrentTransmitPowerLevel)(1, &level), kDone);
    EXPECT_EQ(level, 50);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_apply_tx_power_cap)(1), kDone);
    check(17);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", 60), kModuleInvalidValue);
    EXPECT_EQ(CALL(TarnGetRadioQuantennaCurrentTransmitPower)(2, raw), kNoSuchObject);
}

TEST_F(ModuleTest, MauiVersionIsTheScenarios)
{
    char version[65];
    EXPECT_EQ(CALL(TarnGetQuantennaMauiVersion)(version), kDone);
    EXPECT_STREQ(version, "2.0.7-sim");
}

std::uint32_t downloadState()
{
    std::uint32_t state = 99;
    EXPECT_EQ(CALL(TarnGetQuantennaDownloadState)(&state), kDone);
    return state;
}

TEST_F(ModuleTest, DownloadTakesItsTime)
{
    EXPECT_EQ(downloadState(), 0u);
    EXPECT_EQ(CALL(TarnDownloadQuantennaWirelessConf)("relative/path"), kInvalidValue);
    EXPECT_EQ(CALL(TarnDownloadQuantennaWirelessConf)("/mnt/wireless.conf"), kDone);
    EXPECT_EQ(CALL(TarnDownloadQuantennaWirelessConf)("/mnt/wireless.conf"), kBusy);
    EXPECT_EQ(CALL(TarnUpdateQuantennaPasswordFile)(), kBusy);
    EXPECT_EQ(downloadState(), 1u);
    EXPECT_EQ(state("/module/download/path"), "/mnt/wireless.conf");
    passSeconds(5);
    EXPECT_EQ(downloadState(), 2u);
    EXPECT_EQ(CALL(TarnUpdateQuantennaPasswordFile)(), kDone);
    EXPECT_EQ(downloadState(), 1u);
    passSeconds(5);
    EXPECT_EQ(downloadState(), 2u);
}

TEST_F(ModuleTest, DownloadOfAMissingFileFails)
{
    EXPECT_EQ(CALL(TarnDownloadQuantennaWirelessConf)("/mnt/missing.conf"), kDone);
    passSeconds(5);
    EXPECT_EQ(downloadState(), 3u);
}

TEST_F(ModuleTest, CurrentAssociationsAreThoseOfAllRadios)
{
    std::uint32_t number = 0;
    ASSERT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociationNumber)(&number), kDone);
    ASSERT_EQ(number, 5u);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnQuantennaSoniqCurrentAssociationData listed;
        TarnQuantennaSoniqCurrentAssociationData single;
        ASSERT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociationAt)(index, &listed), kDone);
        const MacAddress address = recordOf("TarnQuantennaSoniqCurrentAssociationData", listed).address("macAddress");
        ASSERT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociation)(address.data(), &single), kDone);
        EXPECT_EQ(std::memcmp(&listed, &single, sizeof listed), 0);
    }
    TarnQuantennaSoniqCurrentAssociationData raw;
    ASSERT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociation)(kSlowBandStation.data(), &raw), kDone);
    const Record data = recordOf("TarnQuantennaSoniqCurrentAssociationData", raw);
    EXPECT_EQ(data.text("band"), "2.4GHz");
    EXPECT_EQ(data.text("name"), "wlan0");
    EXPECT_EQ(data.number("channel"), 6u);
    EXPECT_EQ(data.signedNumber("rssi"), -58);
    EXPECT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociationAt)(number, &raw), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociation)(kStranger.data(), &raw), kNoSuchObject);

    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(2, 1, kSlowBandStation.data()), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaSoniqCurrentAssociationNumber)(&number), kDone);
    EXPECT_EQ(number, 4u);
}

TEST_F(ModuleTest, WeatherRadarChannelsCanBeSwitchedOn)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 116), kModuleInvalidValue); // 80 MHz of it reach into them
    EXPECT_EQ(CALL(TarnSetRadioQuantennaQhopEnable)(1, 0), kDone);
    EXPECT_EQ(CALL(TarnSetQuantennaTdwrChannelsEnable)(1, 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 120), kDone);
    EXPECT_EQ(CALL(TarnSetQuantennaTdwrChannelsEnable)(1, 0), kInvalidValue); // the radio works on one of them
    EXPECT_EQ(CALL(TarnSetQuantennaTdwrChannelsEnable)(2, 1), kNoSuchObject);
}

} // namespace simulator_test
