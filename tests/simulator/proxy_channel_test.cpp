#include "support.h"

namespace simulator_test
{

using ProxyChannelTest = SimulatorTest;

std::uint32_t channel()
{
    std::uint32_t value = 0;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &value));
    return value;
}

std::uint32_t secondary(std::uint32_t primary)
{
    std::uint32_t value = 0;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_sec_chan)("wifi0", primary, &value));
    return value;
}

std::string channels()
{
    char text[1024];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_list_channels)("wifi0", text, sizeof text));
    return text;
}

TEST_F(ProxyChannelTest, ChannelAndBandwidthAreTheRadios)
{
    std::uint32_t bandwidth = 0;
    EXPECT_EQ(36U, channel());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_bw)("wifi1", &bandwidth));
    EXPECT_EQ(80U, bandwidth);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi1", 44));
    EXPECT_EQ(44U, channel());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 40));
    TarnRadioData raw;
    EXPECT_EQ(kDone, CALL(TarnGetRadio)(1, &raw));
    EXPECT_EQ(44U, recordOf("TarnRadioData", raw).number("channel"));
    EXPECT_EQ(40U, recordOf("TarnRadioData", raw).number("bandwidth"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 37));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 149)); // not in this country
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_bw)("wifi0", 30));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_set_bw)("wlan0", 20));
    EXPECT_EQ(44U, channel());
}

TEST_F(ProxyChannelTest, SecondaryChannelIsKnownAndCanBeSet)
{
    EXPECT_EQ(40U, secondary(36));
    EXPECT_EQ(36U, secondary(40));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 44));
    EXPECT_EQ(44U, secondary(40));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 0)); // as before
    EXPECT_EQ(36U, secondary(40));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 40, 48));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_sec_chan)(kWifi0, 41, 45));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_set_sec_chan)(kNobody, 40, 44));
    std::uint32_t value = 0;
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_get_sec_chan)("wifi0", 1, &value));
}

TEST_F(ProxyChannelTest, ChannelListIsWhatTheRadioMayUse)
{
    EXPECT_EQ("36,40,44,48,52,56,60,64,100,104,108,112", channels());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 40, 1));
    EXPECT_EQ("36,44,48,52,56,60,64,100,104,108,112", channels());
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 40));
    EXPECT_EQ(kModuleBusy, CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 36, 1)); // in use
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 41, 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_chan_pri_inactive)("wifi0", 40, 0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 40));
}

TEST_F(ProxyChannelTest, RegulatoryListsFollowRegionAndBandwidth)
{
    char text[1024];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("us", 160, text, sizeof text));
    EXPECT_STREQ("36,40,44,48,52,56,60,64,100,104,108,112,116,120,124,128", text);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("jp", 20, text, 12));
    EXPECT_STREQ("36,40,44,48", text); // cut by the caller's buffer
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi0", "us", 20, 1, text, sizeof text));
    EXPECT_STREQ("36,40,44,48,149,153,157,161,165", text);
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("xx", 20, text, sizeof text));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels)("us", 25, text, sizeof text));
    EXPECT_EQ(kModuleInvalidValue,
              CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi0", "us", 20, 2, text, sizeof text));
    EXPECT_EQ(kModuleNoSuchObject,
              CALL(tarn_qcsapi_regulatory_get_list_regulatory_channels_if)("wifi9", "us", 20, 0, text, sizeof text));
}

TEST_F(ProxyChannelTest, CountryIsOverwrittenByWhoKnowsIt)
{
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "jp", "us"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "eu", "us"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 149));
    EXPECT_EQ(kModuleInvalidValue,
              CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "us", "eu")); // 149 is not there
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_regulatory_overwrite_country_code)("wifi0", "us", "moon"));
    TarnRadioData raw;
    EXPECT_EQ(kDone, CALL(TarnGetRadio)(1, &raw));
    EXPECT_EQ("us", recordOf("TarnRadioData", raw).text("country"));
}

// --- Radar checks ------------------------------------------------------------------------------------------------------------

// The state of one channel in the availability table; 0 if it is not in it.
std::uint8_t availability(std::uint8_t wanted)
{
    std::uint8_t raw[511];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_chan_avail_status)("wifi0", raw));
    const Record table = recordOf("tarn_qcsapi_wifi_get_chan_avail_status.chan_avail_status", raw);
    const std::vector<std::uint8_t> pairs = table.block("channels");
    for (std::uint32_t i = 0; i < table.number("number"); ++i)
        if (pairs[i * 2] == wanted)
            return pairs[i * 2 + 1];
    return 0;
}

std::uint32_t cacStatus()
{
    std::uint32_t status = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_cac_status)("wifi0", &status));
    return status;
}

TEST_F(ProxyChannelTest, RadarChannelIsCheckedBeforeItIsUsed)
{
    EXPECT_EQ(0U, cacStatus());
    EXPECT_EQ(1, availability(36));
    EXPECT_EQ(2, availability(52));
    EXPECT_EQ(0, availability(149));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52));
    EXPECT_EQ(1U, cacStatus());
    EXPECT_EQ(3, availability(52));
    std::uint32_t isReady = 99;
    EXPECT_EQ(kDone, CALL(TarnGetRadioIsReady)(1, &isReady));
    EXPECT_EQ(0U, isReady);
    EXPECT_EQ(0U, stationCount());
    passSeconds(60);
    EXPECT_EQ(0U, cacStatus());
    EXPECT_EQ(1, availability(52));
    EXPECT_EQ(3U, stationCount());

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 36));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 52)); // checked once, free from then on
    EXPECT_EQ(0U, cacStatus());
}

TEST_F(ProxyChannelTest, SecondReceiverChecksAheadOfTheSwitch)
{
    const auto status = []
    {
        std::uint32_t value = 99;
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_dfs_s_radio_status)("wifi0", &value));
        return value;
    };
    const auto icac = []
    {
        std::uint32_t value = 99;
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_icac_status)("wifi0", &value));
        return value;
    };
    EXPECT_EQ(0U, status());
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_wifi_stop_dfs_s_radio)("wifi0"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 36)); // no radar there
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 100));
    EXPECT_EQ(kModuleBusy, CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 104));
    EXPECT_EQ(1U, status());
    EXPECT_EQ(1U, icac());
    EXPECT_EQ(3, availability(100));
    EXPECT_EQ(3U, stationCount()); // the radio itself goes on
    passSeconds(60);
    EXPECT_EQ(2U, status());
    EXPECT_EQ(0U, icac());
    EXPECT_EQ(1, availability(100));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 100));
    EXPECT_EQ(0U, cacStatus());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_start_dfs_s_radio)("wifi0", 0)); // the first that is not checked
    EXPECT_EQ(3, availability(52));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_stop_dfs_s_radio)("wifi0"));
    EXPECT_EQ(0U, status());
    EXPECT_EQ(2, availability(52));
}

TEST_F(ProxyChannelTest, RadioSettingsAreKept)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_wea_cac_en)("wifi0", 0));
    EXPECT_EQ(0, state("/radios/0/weatherCac"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_nac_mon_mode)("wifi0", 1, 500, 20));
    EXPECT_EQ(1, state("/radios/0/nacMonitor"));
    EXPECT_EQ(500, state("/radios/0/nacMonitorPeriod"));
    EXPECT_EQ(20, state("/radios/0/nacMonitorOnTime"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_nac_mon_mode)("wifi0", 0, 500, 101));
    EXPECT_EQ(1, state("/radios/0/nacMonitor"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_disable_11b)(kWifi0, 1));
    EXPECT_EQ(1, state("/radios/0/disable11b"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_enable_mu)(kWifi0, 0));
    EXPECT_EQ(0, state("/radios/0/multiUser"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_legacy_bbic)(kWifi0, 1));
    EXPECT_EQ(1, state("/radios/0/legacyBaseband"));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_set_legacy_bbic)(kNobody, 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_scs_enable)("wifi0", 1));
    EXPECT_EQ(1, state("/radios/0/scs"));
}

TEST_F(ProxyChannelTest, PhyModeIsReadBack)
{
    char text[16];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11ax"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_phy_mode)("wifi1", text, sizeof text));
    EXPECT_STREQ("11ax", text);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_phy_mode)("wifi0", "11z"));
}

TEST_F(ProxyChannelTest, PowerLevelsAreThoseThatCanBeSet)
{
    char text[64];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_supported_tx_power_levels)("wifi0", text, sizeof text));
    EXPECT_STREQ("100,75,50,25,12", text);
    for (const std::uint32_t level : {100U, 75U, 50U, 25U, 12U})
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_current_tx_power_level)("wifi0", level));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_supported_tx_power_levels)("wifi9", text, sizeof text));

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 36, 6, 3));
    EXPECT_EQ(6, state("/radios/0/powerBackoffs/36/decibels"));
    EXPECT_EQ(3, state("/radios/0/powerBackoffs/36/bandwidth"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 37, 6, 3));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_reg_chan_txpower_backoff_set)("wifi0", 36, 21, 3));
}

TEST_F(ProxyChannelTest, ScanIsTheDeviceServicesToo)
{
    std::uint32_t status = 99;
    std::uint32_t number = 99;
    std::uint8_t raw[632];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status));
    EXPECT_EQ(0U, status);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi0", 3));
    EXPECT_EQ(3, state("/radios/0/scan/flags"));
    EXPECT_EQ(kModuleBusy, CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi1", 0));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_start_scan_ext)("wifi1", 256));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status));
    EXPECT_EQ(1U, status);
    EXPECT_EQ(kDone, CALL(TarnGetRadioNeighboringStatus)(1, &status));
    EXPECT_EQ(1U, status);
    passSeconds(4);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_scan_status)("wifi0", &status));
    EXPECT_EQ(0U, status);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_results_AP_scan)("wifi0", &number));
    ASSERT_EQ(4U, number);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnNeighborBss bss;
        ASSERT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_properties_AP)("wifi0", index, raw));
        ASSERT_EQ(kDone, CALL(TarnGetRadioNeighboringResultAt)(1, index, &bss));
        const Record device = recordOf("TarnNeighborBss", bss);
        const Record module = recordOf("tarn_qcsapi_wifi_get_properties_AP.ap_property", raw);
        EXPECT_EQ(device.address("bssid"), module.address("bssid"));
        EXPECT_EQ(device.text("ssid"), module.text("ssid"));
        EXPECT_EQ(device.number("channel"), module.number("channel"));
    }
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_properties_AP)("wifi0", number, raw));
}

} // namespace simulator_test
