// A missing interface name is reported as `intf_name` by some functions and as `ifname` by the others. PHY and BSS settings,
// all of the second kind, have that test in their own file.
#include "proxy_test.h"

using testing::Each;

namespace tarn::test
{
namespace
{

class MissingInterfaceName : public ProxyTest
{
protected:
    // Valid arguments for whatever else a function takes.
    std::uint32_t word = 0;
    std::uint32_t record[260] = {};
    char text[33] = "text";
    const std::uint8_t bytes[64] = {};
};

TEST_F(MissingInterfaceName, IsReportedAsIntfName)
{
    const std::int32_t results[] = {
        tarn_qcsapi_wifi_get_channel("ledd", nullptr, &word),
        tarn_qcsapi_wifi_get_bw("ledd", nullptr, &word),
        tarn_qcsapi_wifi_get_sec_chan("ledd", nullptr, 36, &word),
        tarn_qcsapi_wifi_get_dfs_s_radio_status("ledd", nullptr, &word),
        tarn_qcsapi_interface_get_status("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_wps_get_state("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_config_update_parameter("ledd", nullptr, text, text),
        tarn_qcsapi_wifi_get_list_channels("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_wifi_set_SSID("ledd", nullptr, text),
        tarn_qcsapi_wifi_set_dscp_ac_map("ledd", nullptr, bytes, 1, 2),
        tarn_qcsapi_wifi_set_ieee80211r_mobility_domain("ledd", nullptr, text),
        tarn_qcsapi_wifi_get_connection_mode("ledd", nullptr, 1, text, sizeof text),
        tarn_qcsapi_wifi_get_rssi_in_dbm_per_association("ledd", nullptr, 1, &word),
        tarn_qcsapi_wifi_get_tx_mcs_per_association("ledd", nullptr, 1, &word),
        tarn_qcsapi_wifi_get_rx_mcs_per_association("ledd", nullptr, 1, &word),
        tarn_qcsapi_wifi_get_time_associated_per_association("ledd", nullptr, 1, &word),
        tarn_qcsapi_wifi_get_node_stats("ledd", nullptr, 1, &word, &word, &word, &word, &word, record),
        tarn_qcsapi_wifi_set_chan_pri_inactive("ledd", nullptr, 1, 2),
        tarn_qcsapi_wifi_get_associated_device_mac_addr("ledd", nullptr, 1, reinterpret_cast<std::uint8_t*>(record)),
        tarn_qcsapi_wifi_get_icac_status("ledd", nullptr, &word),
        tarn_qcsapi_wifi_start_scan_ext("ledd", nullptr, 1),
        tarn_qcsapi_wifi_get_scan_status("ledd", nullptr, &word),
        tarn_qcsapi_wifi_get_results_AP_scan("ledd", nullptr, &word),
        tarn_qcsapi_wifi_get_properties_AP("ledd", nullptr, 1, record),
        tarn_qcsapi_wifi_get_chan_avail_status("ledd", nullptr, record),
        tarn_qcsapi_wifi_set_wea_cac_en("ledd", nullptr, 1),
    };
    EXPECT_THAT(results, Each(-1));
    EXPECT_EQ(platform.traceTexts(), std::vector<std::string>(std::size(results), "intf_name is NULL"));
}

TEST_F(MissingInterfaceName, IsReportedAsIfname)
{
    const std::int32_t results[] = {
        tarn_qcsapi_radio_rfenable("ledd", nullptr, 1),
        tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", nullptr, text, 20, 0, text, sizeof text),
        tarn_qcsapi_regulatory_overwrite_country_code("ledd", nullptr, text, text),
        tarn_qcsapi_wifi_set_bw("ledd", nullptr, 20),
        tarn_qcsapi_wifi_set_channel("ledd", nullptr, 36),
        tarn_qcsapi_wps_registrar_report_pin("ledd", nullptr, text),
        tarn_qcsapi_wps_registrar_report_button_press("ledd", nullptr),
        tarn_qcsapi_wifi_disable_wps("ledd", nullptr, 1),
        tarn_qcsapi_wps_upnp_enable("ledd", nullptr, 1),
        tarn_qcsapi_wps_enable_ap_pin("ledd", nullptr, 1),
        tarn_qcsapi_wps_set_ap_pin("ledd", nullptr, text),
        tarn_qcsapi_wps_save_ap_pin("ledd", nullptr),
        tarn_qcsapi_wps_set_param("ledd", nullptr, 1, text),
        tarn_qcsapi_wps_get_param("ledd", nullptr, 1, text, sizeof text),
        tarn_qcsapi_wps_set_configured_state("ledd", nullptr, 1),
        tarn_qcsapi_wifi_disassociate_sta("ledd", nullptr, bytes),
        tarn_qcsapi_wifi_apply_security_config("ledd", nullptr),
        tarn_qcsapi_wifi_set_intra_bss_isolate("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_beacon_type("ledd", nullptr, text),
        tarn_qcsapi_wifi_set_WPA_authentication_mode("ledd", nullptr, text),
        tarn_qcsapi_wifi_set_WPA_encryption_modes("ledd", nullptr, text),
        tarn_qcsapi_wifi_set_key_passphrase("ledd", nullptr, text),
        tarn_qcsapi_wifi_set_group_key_interval("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_pmf("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_mac_address_filtering("ledd", nullptr, 1),
        tarn_qcsapi_wifi_clear_mac_address_filters("ledd", nullptr),
        tarn_qcsapi_wifi_get_mac_address_filtering("ledd", nullptr, &word),
        tarn_qcsapi_wifi_authorize_mac_address("ledd", nullptr, bytes),
        tarn_qcsapi_wifi_deny_mac_address("ledd", nullptr, bytes),
        tarn_qcsapi_wifi_vlan_config("ledd", nullptr, 1, 2),
        tarn_qcsapi_wifi_set_bss_isolate("ledd", nullptr, 1),
        tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_wifi_set_current_tx_power_level("ledd", nullptr, 1),
        tarn_qcsapi_reg_chan_txpower_backoff_set("ledd", nullptr, 1, 2, 3),
        tarn_qcsapi_wifi_set_nac_mon_mode("ledd", nullptr, 1, 2, 3),
        tarn_qcsapi_wifi_start_dfs_s_radio("ledd", nullptr, 1),
        tarn_qcsapi_wifi_stop_dfs_s_radio("ledd", nullptr),
        tarn_qcsapi_wifi_get_cac_status("ledd", nullptr, &word),
        tarn_qcsapi_get_interface_stats("ledd", nullptr, record),
        tarn_qcsapi_wifi_get_rssi_by_chain("ledd", nullptr, &word, &word, &word, &word),
        tarn_qcsapi_wifi_get_node_infoset("ledd", nullptr, 1, bytes, record),
        tarn_qcsapi_wifi_get_rates("ledd", nullptr, 1, record, sizeof record),
        tarn_qcsapi_wps_cancel("ledd", nullptr),
        tarn_qcsapi_get_vap_extstats("ledd", nullptr, record),
        tarn_qcsapi_wifi_get_parameter("ledd", nullptr, 1, &word),
        tarn_qcsapi_wifi_set_parameter("ledd", nullptr, 1, 2),
        tarn_qcsapi_wifi_disable_11b("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_sec_chan("ledd", nullptr, 1, 2),
        tarn_qcsapi_wifi_set_enable_mu("ledd", nullptr, 1),
        tarn_qcsapi_set_params("ledd", nullptr, text, record),
        tarn_qcsapi_get_max_bitrate("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_wifi_set_ac_agg_hold_time("ledd", nullptr, 1, 2),
        tarn_qcsapi_wifi_set_legacy_bbic("ledd", nullptr, 1),
        tarn_qcsapi_get_cca_stats("ledd", nullptr, record),
        tarn_qcsapi_get_preamble_error("ledd", nullptr, record),
        tarn_qcsapi_wifi_set_ieee80211r("ledd", nullptr, 1),
    };
    EXPECT_THAT(results, Each(-1));
    EXPECT_EQ(platform.traceTexts(), std::vector<std::string>(std::size(results), "ifname is NULL"));
}

} // namespace
} // namespace tarn::test
