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
    for (const StoredNumber& number : kNumbers)
    {
        const std::string path = std::string("/radios/0/interfaces/0/") + number.setting;
        const std::string neighbour = std::string("/radios/0/interfaces/1/") + number.setting;
        const Json before = state(neighbour);
        EXPECT_NE(state(path), number.good) << number.setting;
        EXPECT_EQ(number.set("wifi0", number.good), kDone) << number.setting;
        EXPECT_EQ(state(path), number.good) << number.setting;
        EXPECT_EQ(number.set("wifi0", number.bad), kModuleInvalidValue) << number.setting;
        EXPECT_EQ(state(path), number.good) << number.setting;
        EXPECT_EQ(number.set("wifi9", number.good), kModuleNoSuchObject) << number.setting;
        EXPECT_EQ(state(neighbour), before) << number.setting;
    }
}

TEST_F(ProxyInterfaceTest, TextsAreStored)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "renamed"), kDone);
    TarnSsidIntfData raw;
    EXPECT_EQ(CALL(TarnGetSsidIntf)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnSsidIntfData", raw).text("ssid"), "renamed");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", ""), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", "MCS7"), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/mcsRate"), "MCS7");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_mcs_rate)("wifi0", ""), kModuleInvalidValue);
}

Record security()
{
    TarnAccessPointSecurityData raw;
    EXPECT_EQ(CALL(TarnGetAccessPointSecurity)(1, 1, &raw), kDone);
    return recordOf("TarnAccessPointSecurityData", raw);
}

TEST_F(ProxyInterfaceTest, SecurityIsTheDeviceServicesToo)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa3"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_WPA_authentication_mode)("wifi0", "eap"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_WPA_encryption_modes)("wifi0", "aes"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_key_passphrase)("wifi0", "a better one"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_group_key_interval)("wifi0", 60), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 2), kDone);
    const Record data = security();
    EXPECT_EQ(data.text("beaconType"), "wpa3");
    EXPECT_EQ(data.text("authenticationMode"), "eap");
    EXPECT_EQ(data.text("encryptionModes"), "aes");
    EXPECT_EQ(data.text("passphrase"), "a better one");
    EXPECT_EQ(data.number("groupKeyInterval"), 60u);
    EXPECT_EQ(data.number("pmf"), 2u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa9"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_key_passphrase)("wifi0", "short"), kModuleInvalidValue);
}

TEST_F(ProxyInterfaceTest, DeferredSecurityWaitsToBeApplied)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_security_defer_mode)("wifi0", 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_beacon_type)("wifi0", "wpa3"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 2), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_pmf)("wifi0", 9), kModuleInvalidValue); // what could not be applied is refused at once
    EXPECT_EQ(security().text("beaconType"), "wpa2");
    EXPECT_EQ(state("/radios/0/interfaces/0/deferredSecurity/beaconType"), "wpa3");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_apply_security_config)("wifi0"), kDone);
    EXPECT_EQ(security().text("beaconType"), "wpa3");
    EXPECT_EQ(security().number("pmf"), 2u);
    EXPECT_TRUE(state("/radios/0/interfaces/0/deferredSecurity").empty());
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_apply_security_config)("wifi9"), kModuleNoSuchObject);
}

TEST_F(ProxyInterfaceTest, ApPinIsSetAndSaved)
{
    TarnAccessPointWpsData raw;
    EXPECT_EQ(CALL(tarn_qcsapi_wps_set_ap_pin)("wifi0", "12345678"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_set_ap_pin)("wifi0", "00000000"), kDone);
    EXPECT_EQ(CALL(TarnGetAccessPointWps)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).text("wpsApPin"), "00000000");
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).text("savedApPin"), "");
    EXPECT_EQ(CALL(tarn_qcsapi_wps_save_ap_pin)("wifi0"), kDone);
    EXPECT_EQ(CALL(TarnGetAccessPointWps)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).text("savedApPin"), "00000000");
}

TEST_F(ProxyInterfaceTest, WpsParametersAreReadBack)
{
    char text[129];
    EXPECT_EQ(CALL(tarn_qcsapi_wps_get_param)("wifi0", 3, text, sizeof text), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_set_param)("wifi0", 3, "label"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_get_param)("wifi0", 3, text, sizeof text), kDone);
    EXPECT_STREQ(text, "label");
    EXPECT_EQ(CALL(tarn_qcsapi_wps_get_param)("wifi1", 3, text, sizeof text), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_set_param)("wifi0", 0, "label"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_set_param)("wifi0", 33, "label"), kModuleInvalidValue);
}

TEST_F(ProxyInterfaceTest, NumberedValuesAreKept)
{
    std::uint32_t value = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_parameter)(kWifi0, 5, &value), kDone);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_parameter)(kWifi0, 5, 77), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_parameter)(kWifi0, 5, &value), kDone);
    EXPECT_EQ(value, 77u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_parameter)(kWifi1, 5, &value), kDone);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_parameter)(kWifi0, 65, 77), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_parameter)(kNobody, 5, &value), kModuleNoSuchObject);

    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_option)("wifi0", 2, 8), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/options/2"), 8);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_option)("wifi0", 33, 8), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_extender_params)("wifi0", 1, 9), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/extenderParameters/1"), 9);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_ac_agg_hold_time)(kWifi0, 0, 10), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/aggregationHoldTimes/0"), 10);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_ac_agg_hold_time)(kWifi0, 4, 10), kModuleInvalidValue);
}

// Both travel as command 27: an interface name makes the one, an empty one the other.
TEST_F(ProxyInterfaceTest, DscpTableAndMapAreToldApart)
{
    std::uint8_t list[64];
    for (std::uint8_t i = 0; i < 64; ++i)
        list[i] = static_cast<std::uint8_t>(i % 4);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_dscp_ac_table)(2, list, 1, 2), kDone);
    EXPECT_EQ(state("/module/dscpTables/2/valueA"), 1);
    EXPECT_EQ(state("/module/dscpTables/2/valueB"), 2);
    EXPECT_EQ(state("/module/dscpTables/2/list/63"), 3);
    EXPECT_FALSE(state("/radios/0/interfaces/0").contains("dscpMap"));
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi0", list, 255, 0), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/dscpMap/valueA"), 255);
    EXPECT_EQ(state("/radios/0/interfaces/0/dscpMap/list/1"), 1);
    EXPECT_EQ(state("/module/dscpTables").size(), 1u);

    list[7] = 4; // no such access category
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi0", list, 0, 0), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_dscp_ac_table)(8, list, 0, 0), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_dscp_ac_map)("wifi9", list, 0, 0), kModuleNoSuchObject);
}

TEST_F(ProxyInterfaceTest, LimitsAndVlansAreKept)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(1, 20), kDone);
    EXPECT_EQ(state("/module/groupLimits/1"), 20);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_bss_assoc_limit)(16, 20), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_vlan_config)("wifi0", 1, 100), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/vlanCommand"), 1);
    TarnSsidIntfData raw;
    EXPECT_EQ(CALL(TarnGetSsidIntf)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnSsidIntfData", raw).number("vlanId"), 100u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_vlan_config)("wifi0", 2, 4095), kModuleInvalidValue);
    EXPECT_EQ(state("/radios/0/interfaces/0/vlanCommand"), 1);
}

TEST_F(ProxyInterfaceTest, NewBssIsSeenByTheDeviceService)
{
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi2", 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi2", 1), kModuleAlreadyThere);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wlan0", 1), kModuleAlreadyThere); // taken by the other radio
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("", 1), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi3", 2), kModuleInvalidValue);
    EXPECT_EQ(CALL(TarnGetSsidIntfNum)(1, &number), kDone);
    EXPECT_EQ(number, 3u);
    TarnSsidIntfData raw;
    ASSERT_EQ(CALL(TarnGetSsidIntf)(1, 3, &raw), kDone);
    EXPECT_EQ(recordOf("TarnSsidIntfData", raw).text("name"), "wifi2");
    EXPECT_EQ(recordOf("TarnSsidIntfData", raw).number("enabled"), 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi2", "third"), kDone);
    EXPECT_EQ(stationCount(1, 3), 0u);
    for (const char* name : {"wifi3", "wifi4", "wifi5", "wifi6", "wifi7"})
        EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)(name, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_create_bss_with_ifstate)("wifi8", 0), kModuleFull);
}

} // namespace simulator_test
