#include "support.h"

namespace simulator_test
{

using ProxyChannelTest = SimulatorTest;

std::uint32_t channel()
{
    std::uint32_t value = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &value), kDone);
    return value;
}

std::uint32_t secondary(std::uint32_t primary)
{
    std::uint32_t value = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_sec_chan)("wifi0", primary, &value), kDone);
    return value;
}

std::string channels()
{
    char text[1024];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_list_channels)("wifi0", text, sizeof text), kDone);
    return text;
}

TEST_F(ProxyChannelTest, ChannelAndBandwidthAreTheRadios)
{
    std::uint32_t bandwidth = 0;
    EXPECT_EQ(channel(), 36u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_bw)("wifi1", &bandwidth), kDone);
    EXPECT_EQ(bandwidth, 80u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi1", 44), kDone);
    EXPECT_EQ(channel(), 44u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 40), kDone);
    TarnRadioData raw;
    EXPECT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnRadioData", raw).number("channel"), 44u);
    EXPECT_EQ(recordOf("TarnRadioData", raw).number("bandwidth"), 40u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 37), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 149), kModuleInvalidValue); // not in this country
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 30), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bw)("wlan0", 20), kModuleNoSuchObject);
    EXPECT_EQ(channel(), 44u);
}

TEST_F(ProxyChannelTest, SecondaryChannelIsKnownAndCanBeSet)
{
    EXPECT_EQ(secondary(36), 40u);
    EXPECT_EQ(secondary(40), 36u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 44), kDone);
    EXPECT_EQ(secondary(40), 44u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 0), kDone); // as before
    EXPECT_EQ(secondary(40), 36u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 48), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 41, 45), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_sec_chan)(kNobody, 40, 44), kModuleNoSuchObject);
    std::uint32_t value = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_sec_chan)("wifi0", 1, &value), kModuleInvalidValue);
}

TEST_F(ProxyChannelTest, ChannelListIsWhatTheRadioMayUse)
{
    EXPECT_EQ(channels(), "36,40,44,48,52,56,60,64,100,104,108,112");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 40, 1), kDone);
    EXPECT_EQ(channels(), "36,44,48,52,56,60,64,100,104,108,112");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 40), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 36, 1), kModuleBusy); // in use
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 41, 1), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 40, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 40), kDone);
}

TEST_F(ProxyChannelTest, RegulatoryListsFollowRegionAndBandwidth)
{
    char text[1024];
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("us", 160, text, sizeof text), kDone);
    EXPECT_STREQ(text, "36,40,44,48,52,56,60,64,100,104,108,112,116,120,124,128");
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("jp", 20, text, 12), kDone);
    EXPECT_STREQ(text, "36,40,44,48"); // cut by the caller's buffer
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi0", "us", 20, 1, text, sizeof text), kDone);
    EXPECT_STREQ(text, "36,40,44,48,149,153,157,161,165");
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("xx", 20, text, sizeof text), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("us", 25, text, sizeof text), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi0", "us", 20, 2, text, sizeof text),
              kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi9", "us", 20, 0, text, sizeof text),
              kModuleNoSuchObject);
}

TEST_F(ProxyChannelTest, CountryIsOverwrittenByWhoKnowsIt)
{
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "jp", "us"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "eu", "us"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 149), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "us", "eu"),
              kModuleInvalidValue); // 149 is not there
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "us", "moon"), kModuleInvalidValue);
    TarnRadioData raw;
    EXPECT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnRadioData", raw).text("country"), "us");
}

// --- Radar checks ------------------------------------------------------------------------------------------------------------

// The state of one channel in the availability table; 0 if it is not in it.
std::uint32_t availability(std::uint32_t wanted)
{
    std::uint8_t raw[511];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_chan_avail_status)("wifi0", raw), kDone);
    const Record table = recordOf("tarn_qcsapi_wifi_get_chan_avail_status.chan_avail_status", raw);
    for (std::uint32_t i = 0; i < table.number("number"); ++i)
    {
        const std::string entry = "channels[" + std::to_string(i) + "].";
        if (table.number(entry + "channel") == wanted)
            return table.number(entry + "availability");
    }
    return 0;
}

std::uint32_t cacStatus()
{
    std::uint32_t status = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_cac_status)("wifi0", &status), kDone);
    return status;
}

TEST_F(ProxyChannelTest, RadarChannelIsCheckedBeforeItIsUsed)
{
    EXPECT_EQ(cacStatus(), 0u);
    EXPECT_EQ(availability(36), 1);
    EXPECT_EQ(availability(52), 2);
    EXPECT_EQ(availability(149), 0);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone);
    EXPECT_EQ(cacStatus(), 1u);
    EXPECT_EQ(availability(52), 3);
    std::uint32_t isReady = 99;
    EXPECT_EQ(CALL(TarnGetRadioIsReady)(1, &isReady), kDone);
    EXPECT_EQ(isReady, 0u);
    EXPECT_EQ(stationCount(), 0u);
    passSeconds(60);
    EXPECT_EQ(cacStatus(), 0u);
    EXPECT_EQ(availability(52), 1);
    EXPECT_EQ(stationCount(), 3u);

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 36), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52), kDone); // checked once, free from then on
    EXPECT_EQ(cacStatus(), 0u);
}

TEST_F(ProxyChannelTest, SecondReceiverChecksAheadOfTheSwitch)
{
    const auto status = []
    {
        std::uint32_t value = 99;
        EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_dfs_s_radio_status)("wifi0", &value), kDone);
        return value;
    };
    const auto icac = []
    {
        std::uint32_t value = 99;
        EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_icac_status)("wifi0", &value), kDone);
        return value;
    };
    EXPECT_EQ(status(), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_stop_dfs_s_radio)("wifi0"), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 36), kModuleInvalidValue); // no radar there
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 100), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 104), kModuleBusy);
    EXPECT_EQ(status(), 1u);
    EXPECT_EQ(icac(), 1u);
    EXPECT_EQ(availability(100), 3);
    EXPECT_EQ(stationCount(), 3u); // the radio itself goes on
    passSeconds(60);
    EXPECT_EQ(status(), 2u);
    EXPECT_EQ(icac(), 0u);
    EXPECT_EQ(availability(100), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 100), kDone);
    EXPECT_EQ(cacStatus(), 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 0), kDone); // the first that is not checked
    EXPECT_EQ(availability(52), 3);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_stop_dfs_s_radio)("wifi0"), kDone);
    EXPECT_EQ(status(), 0u);
    EXPECT_EQ(availability(52), 2);
}

TEST_F(ProxyChannelTest, RadioSettingsAreKept)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_wea_cac_en)("wifi0", 0), kDone);
    EXPECT_EQ(state("/radios/0/weatherCac"), 0);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_nac_mon_mode)("wifi0", 1, 500, 20), kDone);
    EXPECT_EQ(state("/radios/0/nacMonitor"), 1);
    EXPECT_EQ(state("/radios/0/nacMonitorPeriod"), 500);
    EXPECT_EQ(state("/radios/0/nacMonitorOnTime"), 20);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_nac_mon_mode)("wifi0", 0, 500, 101), kModuleInvalidValue);
    EXPECT_EQ(state("/radios/0/nacMonitor"), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disable_11b)(kWifi0, 1), kDone);
    EXPECT_EQ(state("/radios/0/disable11b"), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_enable_mu)(kWifi0, 0), kDone);
    EXPECT_EQ(state("/radios/0/multiUser"), 0);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_legacy_bbic)(kWifi0, 1), kDone);
    EXPECT_EQ(state("/radios/0/legacyBaseband"), 1);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_legacy_bbic)(kNobody, 1), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_scs_enable)("wifi0", 1), kDone);
    EXPECT_EQ(state("/radios/0/scs"), 1);
}

TEST_F(ProxyChannelTest, PhyModeIsReadBack)
{
    char text[16];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11ax"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_phy_mode)("wifi1", text, sizeof text), kDone);
    EXPECT_STREQ(text, "11ax");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11z"), kModuleInvalidValue);
}

TEST_F(ProxyChannelTest, PowerLevelsAreThoseThatCanBeSet)
{
    char text[64];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_supported_tx_power_levels)("wifi0", text, sizeof text), kDone);
    EXPECT_STREQ(text, "100,75,50,25,12");
    for (const std::uint32_t level : {100u, 75u, 50u, 25u, 12u})
        EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", level), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_supported_tx_power_levels)("wifi9", text, sizeof text), kModuleNoSuchObject);

    EXPECT_EQ(CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 36, 6, 3), kDone);
    EXPECT_EQ(state("/radios/0/powerBackoffs/36/decibels"), 6);
    EXPECT_EQ(state("/radios/0/powerBackoffs/36/bandwidth"), 3);
    EXPECT_EQ(CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 37, 6, 3), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 36, 21, 3), kModuleInvalidValue);
}

TEST_F(ProxyChannelTest, ScanIsTheDeviceServicesToo)
{
    std::uint32_t status = 99;
    std::uint32_t number = 99;
    std::uint8_t raw[632];
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status), kDone);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi0", 3), kDone);
    EXPECT_EQ(state("/radios/0/scan/flags"), 3);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi1", 0), kModuleBusy);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi1", 256), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status), kDone);
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(CALL(TarnGetRadioNeighboringStatus)(1, &status), kDone);
    EXPECT_EQ(status, 1u);
    passSeconds(4);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status), kDone);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_results_AP_scan)("wifi0", &number), kDone);
    ASSERT_EQ(number, 4u);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnNeighborBss bss;
        ASSERT_EQ(CALL(tarn_qcsapi_wifi_get_properties_AP)("wifi0", index, raw), kDone);
        ASSERT_EQ(CALL(TarnGetRadioNeighboringResultAt)(1, index, &bss), kDone);
        const Record device = recordOf("TarnNeighborBss", bss);
        const Record module = recordOf("tarn_qcsapi_wifi_get_properties_AP.ap_property", raw);
        EXPECT_EQ(device.address("bssid"), module.address("bssid"));
        EXPECT_EQ(device.text("ssid"), module.text("ssid"));
        EXPECT_EQ(device.number("channel"), module.number("channel"));
    }
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_properties_AP)("wifi0", number, raw), kModuleNoSuchObject);
}

} // namespace simulator_test
