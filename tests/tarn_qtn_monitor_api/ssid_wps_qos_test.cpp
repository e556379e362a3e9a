// SSIDs, WPS, the DSCP map, and stations sent away.
#include "proxy_test.h"

namespace tarn::test
{
namespace
{

using SsidWpsQos = ProxyTest;

TEST_F(SsidWpsQos, DscpTableIsSentByItsIdAndWithoutInterface)
{
    const std::vector<std::uint8_t> list = nonZeroBytes(64);
    expectCommand(27).word(kParam1, 0x01020304).bytes(kParam2, list.data(), 64).byte(1144, 0xA5).byte(1148, 0x5A);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_table("ledd", 0x01020304, list.data(), 0xA5, 0x5A), 0);
}

// The same command as the table's. Only these fields tell the two apart.
TEST_F(SsidWpsQos, DscpMapIsSentByItsInterfaceAndWithoutId)
{
    const std::vector<std::uint8_t> list = nonZeroBytes(64);
    expectOnWifi0(27).bytes(kParam2, list.data(), 64).byte(1144, 0xA5).byte(1148, 0x5A);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", kWifi0, list.data(), 0xA5, 0x5A), 0);
}

TEST_F(SsidWpsQos, DscpListIsNoText)
{
    std::vector<std::uint8_t> list(64);
    list[63] = 7;
    expectOnWifi0(27).byte(kParam2 + 63, 7);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", kWifi0, list.data(), 0, 0), 0);
}

TEST_F(SsidWpsQos, DisableWpsSendsTheOppositeOfItsFlag)
{
    expectOnWifi0(32).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", kWifi0, 0), 0);
    for (const std::uint32_t flag : {1u, 7u, 0x80000000u})
    {
        expectOnWifi0(32).word(kParam2, 0);
        EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", kWifi0, flag), 0);
    }
}

TEST_F(SsidWpsQos, MissingWpsParameterValueIsReportedAsTheInterfaceName)
{
    EXPECT_EQ(missing(tarn_qcsapi_wps_set_param), "ifname, ifname");
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", nullptr, 1, "value"), -1);
    EXPECT_EQ(platform.traceTexts().back(), "ifname is NULL");
}

TEST_F(SsidWpsQos, WpsParameterIsReadUnderItsOwnName)
{
    EXPECT_EQ(missing(tarn_qcsapi_wps_get_param), "ifname, param_value");
}

TEST_F(SsidWpsQos, WpsParameterValueIsCutTo128Characters)
{
    expectOnWifi0(37).word(kParam1, 4).text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", kWifi0, 4, letters(200).c_str()), 0);
}

TEST_F(SsidWpsQos, WpsParameterIsReadByItsId)
{
    expectOnWifi0(38).word(kParam1, 4).replyText(kOut, "gateway");

    char value[16] = "";
    EXPECT_EQ(tarn_qcsapi_wps_get_param("ledd", kWifi0, 4, value, sizeof value), 0);
    EXPECT_STREQ(value, "gateway");
}

TEST_F(SsidWpsQos, PinsAreCutTo32Characters)
{
    expectTextAt(kParam1, 32, 30, tarn_qcsapi_wps_registrar_report_pin);
    expectTextAt(kParam1, 32, 35, tarn_qcsapi_wps_set_ap_pin);
}

TEST_F(SsidWpsQos, SsidIsCutTo32Characters)
{
    expectTextAt(kParam1, 32, 26, tarn_qcsapi_wifi_set_SSID);
}

TEST_F(SsidWpsQos, MobilityDomainIsCutTo16Characters)
{
    expectTextAt(kParam1, 16, 28, tarn_qcsapi_wifi_set_ieee80211r_mobility_domain);
}

TEST_F(SsidWpsQos, StationIsSentAwayByItsSixRawBytes)
{
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectOnWifi0(40).bytes(kParam2, mac, sizeof mac);
    EXPECT_EQ(tarn_qcsapi_wifi_disassociate_sta("ledd", kWifi0, mac), 0);
}

TEST_F(SsidWpsQos, ApplyingTheSecurityConfigurationWaitsLonger)
{
    expectNumbersAt({}, 41, tarn_qcsapi_wifi_apply_security_config, 5);
}

TEST_F(SsidWpsQos, SwitchesGoToTheSecondParameterAndTheConfiguredStateToTheFirst)
{
    expectNumbersAt({kParam2}, 33, tarn_qcsapi_wps_upnp_enable);
    expectNumbersAt({kParam2}, 34, tarn_qcsapi_wps_enable_ap_pin);
    expectNumbersAt({kParam1}, 39, tarn_qcsapi_wps_set_configured_state);
}

TEST_F(SsidWpsQos, ButtonAndSavingThePinNeedTheInterfaceAlone)
{
    expectNumbersAt({}, 31, tarn_qcsapi_wps_registrar_report_button_press);
    expectNumbersAt({}, 36, tarn_qcsapi_wps_save_ap_pin);
}

TEST_F(SsidWpsQos, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_wps_get_state), "intf_name, wps_state");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_SSID), "intf_name, ssid");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_dscp_ac_table), "dscp_list");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_dscp_ac_map), "intf_name, dscp_list");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain), "intf_name, value");
    EXPECT_EQ(missing(tarn_qcsapi_wps_registrar_report_pin), "ifname, wps_pin");
    EXPECT_EQ(missing(tarn_qcsapi_wps_registrar_report_button_press), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_disable_wps), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wps_upnp_enable), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wps_enable_ap_pin), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wps_set_ap_pin), "ifname, wps_pin");
    EXPECT_EQ(missing(tarn_qcsapi_wps_save_ap_pin), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wps_set_configured_state), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_disassociate_sta), "ifname, mac");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_apply_security_config), "ifname");
}

} // namespace
} // namespace tarn::test
