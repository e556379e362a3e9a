// SSIDs, WPS, the DSCP map, and stations sent away.
#include "proxy_test.h"

using testing::ElementsAre;

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
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", "wifi0", list.data(), 0xA5, 0x5A), 0);
}

TEST_F(SsidWpsQos, DscpListIsNoText)
{
    std::vector<std::uint8_t> list(64);
    list[63] = 7;
    expectOnWifi0(27).byte(kParam2 + 63, 7);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", "wifi0", list.data(), 0, 0), 0);
}

TEST_F(SsidWpsQos, MissingDscpListIsRefused)
{
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_table("ledd", 1, nullptr, 1, 2), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", "wifi0", nullptr, 1, 2), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dscp_ac_map("ledd", nullptr, nullptr, 1, 2), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("dscp_list is NULL", "dscp_list is NULL", "intf_name is NULL"));
}

TEST_F(SsidWpsQos, DisableWpsSendsTheOppositeOfItsFlag)
{
    expectOnWifi0(32).word(kParam2, 1);
    expectOnWifi0(32).word(kParam2, 0);
    expectOnWifi0(32).word(kParam2, 0);
    expectOnWifi0(32).word(kParam2, 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 0), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 1), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 7), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_wps("ledd", "wifi0", 0x80000000), 0);
}

TEST_F(SsidWpsQos, MissingWpsParameterValueIsReportedAsTheInterfaceName)
{
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", "wifi0", 1, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", nullptr, 1, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("ifname is NULL", "ifname is NULL"));
}

TEST_F(SsidWpsQos, WpsParameterIsReadUnderItsOwnName)
{
    EXPECT_EQ(tarn_qcsapi_wps_get_param("ledd", "wifi0", 1, nullptr, 0), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("param_value is NULL"));
}

TEST_F(SsidWpsQos, WpsParameterValueIsCutTo128Characters)
{
    expectOnWifi0(37).word(kParam1, 4).text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_set_param("ledd", "wifi0", 4, letters(200).c_str()), 0);
}

TEST_F(SsidWpsQos, WpsParameterIsReadByItsId)
{
    expectOnWifi0(38).word(kParam1, 4).replyText(kOut, "gateway");

    char value[16] = "";
    EXPECT_EQ(tarn_qcsapi_wps_get_param("ledd", "wifi0", 4, value, sizeof value), 0);
    EXPECT_STREQ(value, "gateway");
}

TEST_F(SsidWpsQos, PinsAreCutTo32Characters)
{
    expectOnWifi0(30).text(kParam1, kParam1Size, letters(32).c_str());
    expectOnWifi0(35).text(kParam1, kParam1Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_pin("ledd", "wifi0", letters(40).c_str()), 0);
    EXPECT_EQ(tarn_qcsapi_wps_set_ap_pin("ledd", "wifi0", letters(40).c_str()), 0);
}

TEST_F(SsidWpsQos, SsidIsCutTo32Characters)
{
    expectOnWifi0(26).text(kParam1, kParam1Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_set_SSID("ledd", "wifi0", letters(33).c_str()), 0);
}

TEST_F(SsidWpsQos, MobilityDomainIsCutTo16Characters)
{
    expectOnWifi0(28).text(kParam1, kParam1Size, letters(16).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain("ledd", "wifi0", letters(17).c_str()), 0);
}

TEST_F(SsidWpsQos, StationIsSentAwayByItsSixRawBytes)
{
    const std::uint8_t mac[6] = {0x02, 0x00, 0xFF, 0x00, 0x80, 0x09};
    expectOnWifi0(40).bytes(kParam2, mac, sizeof mac);
    EXPECT_EQ(tarn_qcsapi_wifi_disassociate_sta("ledd", "wifi0", mac), 0);
}

TEST_F(SsidWpsQos, MissingStationIsRefused)
{
    EXPECT_EQ(tarn_qcsapi_wifi_disassociate_sta("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_disassociate_sta("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("ifname is NULL", "mac is NULL"));
}

TEST_F(SsidWpsQos, ApplyingTheSecurityConfigurationWaitsLonger)
{
    expectOnWifi0(41).wait(5);
    EXPECT_EQ(tarn_qcsapi_wifi_apply_security_config("ledd", "wifi0"), 0);
}

TEST_F(SsidWpsQos, SwitchesGoToTheSecondParameterAndTheConfiguredStateToTheFirst)
{
    expectOnWifi0(33).word(kParam2, 1);
    expectOnWifi0(34).word(kParam2, 1);
    expectOnWifi0(39).word(kParam1, 1);
    EXPECT_EQ(tarn_qcsapi_wps_upnp_enable("ledd", "wifi0", 1), 0);
    EXPECT_EQ(tarn_qcsapi_wps_enable_ap_pin("ledd", "wifi0", 1), 0);
    EXPECT_EQ(tarn_qcsapi_wps_set_configured_state("ledd", "wifi0", 1), 0);
}

TEST_F(SsidWpsQos, ButtonAndSavingThePinNeedTheInterfaceAlone)
{
    expectOnWifi0(31);
    expectOnWifi0(36);
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_button_press("ledd", "wifi0"), 0);
    EXPECT_EQ(tarn_qcsapi_wps_save_ap_pin("ledd", "wifi0"), 0);
}

TEST_F(SsidWpsQos, MissingTextsAreNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_set_SSID("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_SSID("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wps_registrar_report_pin("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wps_set_ap_pin("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("intf_name is NULL", "ssid is NULL", "value is NULL", "wps_pin is NULL", "wps_pin is NULL"));
}

} // namespace
} // namespace tarn::test
