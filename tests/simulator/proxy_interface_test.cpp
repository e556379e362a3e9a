#include "support.h"

namespace simulator_test
{

using ProxyInterfaceTest = SimulatorTest;

using SetNumber = std::int64_t (*)(const char* ifname, std::uint32_t value);

// A setting of an interface that a command stores: where the state shows it, a good value that is not the first one, and a bad
// one.
struct StoredNumber
{
    SetNumber set;
    const char* setting;
    std::uint32_t good;
    std::uint32_t bad;
};

TEST_F(ProxyInterfaceTest, NumbersAreStoredForTheirInterfaceAlone)
{
#define SETS(function) [](const char* ifname, std::uint32_t value) { return CALL(function)(ifname, value); }
    static const StoredNumber kNumbers[] = {
        {SETS(tarn_qcsapi_interface_enable), "enabled", 0, 2},
        {SETS(tarn_qcsapi_wps_upnp_enable), "wpsUpnp", 1, 2},
        {SETS(tarn_qcsapi_wps_enable_ap_pin), "wpsApPinEnabled", 1, 2},
        {SETS(tarn_qcsapi_wps_set_configured_state), "wpsConfigured", 1, 3},
        {SETS(tarn_qcsapi_wifi_set_rts_threshold), "rtsThreshold", 100, 2348},
        {SETS(tarn_qcsapi_wifi_set_beacon_interval), "beaconInterval", 1000, 19},
        {SETS(tarn_qcsapi_wifi_set_dtim), "dtim", 255, 0},
        {SETS(tarn_qcsapi_wifi_set_assoc_limit), "assocLimit", 128, 129},
        {SETS(tarn_qcsapi_wifi_set_tx_amsdu), "txAmsdu", 0, 2},
        {SETS(tarn_qcsapi_wifi_set_airfair), "airfair", 1, 2},
        {SETS(tarn_qcsapi_wifi_set_SSID_group_id), "ssidGroupId", 15, 16},
        {SETS(tarn_qcsapi_wifi_set_intra_bss_isolate), "intraBssIsolate", 1, 2},
        {SETS(tarn_qcsapi_wifi_set_bss_isolate), "bssIsolate", 1, 2},
        {SETS(tarn_qcsapi_wifi_set_group_key_interval), "groupKeyInterval", 86400, 86401},
        {SETS(tarn_qcsapi_wifi_set_pmf), "pmf", 2, 3},
        {SETS(tarn_qcsapi_wifi_set_ieee80211r), "roaming", 1, 2},
        {SETS(tarn_qcsapi_wifi_set_mac_address_filtering), "macFilterMode", 2, 3},
        {SETS(tarn_qcsapi_wifi_set_security_defer_mode), "securityDeferMode", 1, 2},
        {[](const char* ifname, std::uint32_t value)
         { return CALL(tarn_qcsapi_wifi_set_priority)(ifname, static_cast<std::uint8_t>(value)); },
         "priority", 3, 4},
    };
#undef SETS
    for (const StoredNumber& each : kNumbers)
    {
        const std::string path = std::string("/radios/0/interfaces/0/") + each.setting;
        const std::string neighbour = std::string("/radios/0/interfaces/1/") + each.setting;
        const Json before = state(neighbour);
        EXPECT_NE(each.good, state(path)) << each.setting;
        EXPECT_EQ(kDone, each.set("wifi0", each.good)) << each.setting;
        EXPECT_EQ(each.good, state(path)) << each.setting;
        EXPECT_EQ(kModuleInvalidValue, each.set("wifi0", each.bad)) << each.setting;
        EXPECT_EQ(each.good, state(path)) << each.setting;
        EXPECT_EQ(kModuleNoSuchObject, each.set("wifi9", each.good)) << each.setting;
        EXPECT_EQ(before, state(neighbour)) << each.setting;
    }
}

TEST_F(ProxyInterfaceTest, TextsAreStored)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "renamed"));
    TarnSsidIntfData raw;
    EXPECT_EQ(kDone, CALL(TarnGetSsidIntf)(1, 1, &raw));
    EXPECT_EQ("renamed", recordOf("TarnSsidIntfData", raw).text("ssid"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", ""));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", "MCS7"));
    EXPECT_EQ("MCS7", state("/radios/0/interfaces/0/mcsRate"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", ""));
}

Record security()
{
    TarnAccessPointSecurityData raw;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointSecurity)(1, 1, &raw));
    return recordOf("TarnAccessPointSecurityData", raw);
}

TEST_F(ProxyInterfaceTest, SecurityIsTheDeviceServicesToo)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa3"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_WPA_authentication_mode)("wifi0", "sae"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_WPA_encryption_modes)("wifi0", "tkip-aes"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_key_passphrase)("wifi0", "a better one"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_group_key_interval)("wifi0", 60));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 2));
    const Record data = security();
    EXPECT_EQ("wpa3", data.text("beaconType"));
    EXPECT_EQ("sae", data.text("authenticationMode"));
    EXPECT_EQ("tkip-aes", data.text("encryptionModes"));
    EXPECT_EQ("a better one", data.text("passphrase"));
    EXPECT_EQ(60U, data.number("groupKeyInterval"));
    EXPECT_EQ(2U, data.number("pmf"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa9"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_key_passphrase)("wifi0", "short"));
}

TEST_F(ProxyInterfaceTest, DeferredSecurityWaitsToBeApplied)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_security_defer_mode)("wifi0", 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa3"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 2));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 9)); // what could not be applied is refused at once
    EXPECT_EQ("wpa2", security().text("beaconType"));
    EXPECT_EQ("wpa3", state("/radios/0/interfaces/0/deferredSecurity/beaconType"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_apply_security_config)("wifi0"));
    EXPECT_EQ("wpa3", security().text("beaconType"));
    EXPECT_EQ(2U, security().number("pmf"));
    EXPECT_TRUE(state("/radios/0/interfaces/0/deferredSecurity").empty());
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_apply_security_config)("wifi9"));
}

TEST_F(ProxyInterfaceTest, ApPinIsSetAndSaved)
{
    TarnAccessPointWpsData raw;
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wps_set_ap_pin)("wifi0", "12345678"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_set_ap_pin)("wifi0", "00000000"));
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointWps)(1, 1, &raw));
    EXPECT_EQ("00000000", recordOf("TarnAccessPointWpsData", raw).text("wpsApPin"));
    EXPECT_EQ("", recordOf("TarnAccessPointWpsData", raw).text("savedApPin"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_save_ap_pin)("wifi0"));
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointWps)(1, 1, &raw));
    EXPECT_EQ("00000000", recordOf("TarnAccessPointWpsData", raw).text("savedApPin"));
}

TEST_F(ProxyInterfaceTest, WpsParametersAreReadBack)
{
    char text[129];
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_wps_get_param)("wifi0", 3, text, sizeof text));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_set_param)("wifi0", 3, "label"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_get_param)("wifi0", 3, text, sizeof text));
    EXPECT_STREQ("label", text);
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_wps_get_param)("wifi1", 3, text, sizeof text));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wps_set_param)("wifi0", 0, "label"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wps_set_param)("wifi0", 33, "label"));
}

TEST_F(ProxyInterfaceTest, NumberedValuesAreKept)
{
    std::uint32_t value = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_parameter)(kWifi0, 5, &value));
    EXPECT_EQ(0U, value);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_parameter)(kWifi0, 5, 77));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_parameter)(kWifi0, 5, &value));
    EXPECT_EQ(77U, value);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_parameter)(kWifi1, 5, &value));
    EXPECT_EQ(0U, value);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_parameter)(kWifi0, 65, 77));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_get_parameter)(kNobody, 5, &value));

    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_option)("wifi0", 2, 8));
    EXPECT_EQ(8, state("/radios/0/interfaces/0/options/2"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_option)("wifi0", 33, 8));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_extender_params)("wifi0", 1, 9));
    EXPECT_EQ(9, state("/radios/0/interfaces/0/extenderParameters/1"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_ac_agg_hold_time)(kWifi0, 0, 10));
    EXPECT_EQ(10, state("/radios/0/interfaces/0/aggregationHoldTimes/0"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_ac_agg_hold_time)(kWifi0, 4, 10));
}

// Both travel as command 27: an interface name makes the one, an empty one the other.
TEST_F(ProxyInterfaceTest, DscpTableAndMapAreToldApart)
{
    std::uint8_t list[64];
    for (std::uint8_t i = 0; i < 64; ++i)
        list[i] = static_cast<std::uint8_t>(i % 4);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_dscp_ac_table)(2, list, 1, 2));
    EXPECT_EQ(1, state("/module/dscpTables/2/valueA"));
    EXPECT_EQ(2, state("/module/dscpTables/2/valueB"));
    EXPECT_EQ(3, state("/module/dscpTables/2/list/63"));
    EXPECT_FALSE(state("/radios/0/interfaces/0").contains("dscpMap"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi0", list, 255, 0));
    EXPECT_EQ(255, state("/radios/0/interfaces/0/dscpMap/valueA"));
    EXPECT_EQ(1, state("/radios/0/interfaces/0/dscpMap/list/1"));
    EXPECT_EQ(1U, state("/module/dscpTables").size());

    list[7] = 4; // no such access category
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi0", list, 0, 0));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_dscp_ac_table)(8, list, 0, 0));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi9", list, 0, 0));
}

TEST_F(ProxyInterfaceTest, LimitsAndVlansAreKept)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 20));
    EXPECT_EQ(20, state("/module/groupLimits/1"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(16, 20));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_vlan_config)("wifi0", 1, 100));
    EXPECT_EQ(1, state("/radios/0/interfaces/0/vlanCommand"));
    TarnSsidIntfData raw;
    EXPECT_EQ(kDone, CALL(TarnGetSsidIntf)(1, 1, &raw));
    EXPECT_EQ(100U, recordOf("TarnSsidIntfData", raw).number("vlanId"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_vlan_config)("wifi0", 2, 4095));
    EXPECT_EQ(1, state("/radios/0/interfaces/0/vlanCommand"));
}

TEST_F(ProxyInterfaceTest, NewBssIsSeenByTheDeviceService)
{
    std::uint32_t number = 0;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi2", 1));
    EXPECT_EQ(kModuleAlreadyThere, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi2", 1));
    EXPECT_EQ(kModuleAlreadyThere, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wlan0", 1)); // taken by the other radio
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("", 1));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi3", 2));
    EXPECT_EQ(kDone, CALL(TarnGetSsidIntfNum)(1, &number));
    EXPECT_EQ(3U, number);
    TarnSsidIntfData raw;
    ASSERT_EQ(kDone, CALL(TarnGetSsidIntf)(1, 3, &raw));
    EXPECT_EQ("wifi2", recordOf("TarnSsidIntfData", raw).text("name"));
    EXPECT_EQ(1U, recordOf("TarnSsidIntfData", raw).number("enabled"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_SSID)("wifi2", "third"));
    EXPECT_EQ(0U, stationCount(1, 3));
    for (const char* name : {"wifi3", "wifi4", "wifi5", "wifi6", "wifi7"})
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)(name, 0));
    EXPECT_EQ(kModuleFull, CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi8", 0));
}

} // namespace simulator_test
