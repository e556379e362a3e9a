// PHY and BSS settings of an interface.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using PhyBss = ProxyTest;

TEST_F(PhyBss, McsRateIsCutToEightCharacters)
{
    expectOnWifi0(52).text(kParam1, kParam1Size, "MCS76abc");
    EXPECT_EQ(tarn_qcsapi_wifi_set_mcs_rate("ledd", "wifi0", "MCS76abcde"), 0);
}

TEST_F(PhyBss, PhyModeIsCutTo32Characters)
{
    expectOnWifi0(45).text(kParam1, kParam1Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_set_phy_mode("ledd", "wifi0", letters(40).c_str()), 0);
}

TEST_F(PhyBss, PhyModeIsReadAsText)
{
    expectOnWifi0(46).replyText(kOut, "11ac");

    char mode[8] = "";
    EXPECT_EQ(tarn_qcsapi_wifi_get_phy_mode("ledd", "wifi0", mode, sizeof mode), 0);
    EXPECT_STREQ(mode, "11ac");
}

TEST_F(PhyBss, ScsStatusIsReadAsWord)
{
    expectOnWifi0(49).replyWord(kOut, 3);

    std::uint32_t status = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_scs_status("ledd", "wifi0", &status), 0);
    EXPECT_EQ(status, 3u);
}

TEST_F(PhyBss, SomeSettingsGoToTheFirstParameter)
{
    expectOnWifi0(53).word(kParam1, 0x01020304);
    expectOnWifi0(54).word(kParam1, 0x01020304);
    expectOnWifi0(55).word(kParam1, 0x01020304);
    expectOnWifi0(62).word(kParam1, 0x01020304);
    EXPECT_EQ(tarn_qcsapi_wifi_set_rts_threshold("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_beacon_interval("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_dtim("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_SSID_group_id("ledd", "wifi0", 0x01020304), 0);
}

TEST_F(PhyBss, OtherSettingsGoToTheSecondParameter)
{
    expectOnWifi0(44).word(kParam2, 0x01020304);
    expectOnWifi0(50).word(kParam2, 0x01020304);
    expectOnWifi0(56).word(kParam2, 0x01020304);
    expectOnWifi0(57).word(kParam2, 0x01020304);
    expectOnWifi0(58).word(kParam2, 0x01020304);
    expectOnWifi0(60).word(kParam2, 0x01020304);
    EXPECT_EQ(tarn_qcsapi_interface_enable("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_scs_enable("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_assoc_limit("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_tx_amsdu("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_airfair("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_security_defer_mode("ledd", "wifi0", 0x01020304), 0);
}

TEST_F(PhyBss, NumberedSettingsTakeBothParametersInOrder)
{
    expectOnWifi0(51).word(kParam1, 7).word(kParam2, 8);
    expectOnWifi0(59).word(kParam1, 9).word(kParam2, 10);
    EXPECT_EQ(tarn_qcsapi_wifi_set_option("ledd", "wifi0", 7, 8), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_extender_params("ledd", "wifi0", 9, 10), 0);
}

// On a big-endian host a word of the same value would be other bytes.
TEST_F(PhyBss, PriorityIsOneByte)
{
    expectOnWifi0(63).byte(68, 0xC3);
    EXPECT_EQ(tarn_qcsapi_wifi_set_priority("ledd", "wifi0", 0xC3), 0);
}

TEST_F(PhyBss, CreatingABssWaitsLonger)
{
    expectOnWifi0(61).wait(5).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_wifi_create_bss_with_ifstate("ledd", "wifi0", 1), 0);
}

TEST_F(PhyBss, EveryFunctionNeedsAnInterface)
{
    std::uint32_t word = 0;
    char text[8] = "";
    const std::int32_t results[] = {
        tarn_qcsapi_interface_enable("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_phy_mode("ledd", nullptr, "11ac"),
        tarn_qcsapi_wifi_get_phy_mode("ledd", nullptr, text, sizeof text),
        tarn_qcsapi_wifi_get_scs_status("ledd", nullptr, &word),
        tarn_qcsapi_wifi_scs_enable("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_option("ledd", nullptr, 1, 1),
        tarn_qcsapi_wifi_set_mcs_rate("ledd", nullptr, "MCS76"),
        tarn_qcsapi_wifi_set_rts_threshold("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_beacon_interval("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_dtim("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_assoc_limit("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_tx_amsdu("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_airfair("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_extender_params("ledd", nullptr, 1, 1),
        tarn_qcsapi_wifi_set_security_defer_mode("ledd", nullptr, 1),
        tarn_qcsapi_wifi_create_bss_with_ifstate("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_SSID_group_id("ledd", nullptr, 1),
        tarn_qcsapi_wifi_set_priority("ledd", nullptr, 1),
    };
    EXPECT_THAT(results, testing::Each(-1));
    EXPECT_EQ(platform.traceTexts(), std::vector<std::string>(std::size(results), "ifname is NULL"));
}

TEST_F(PhyBss, EachMissingFurtherArgumentIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_set_phy_mode("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_phy_mode("ledd", "wifi0", nullptr, 8), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_scs_status("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_mcs_rate("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("new_phy_mode is NULL", "p_wifi_phy_mode is NULL", "p_scs_status is NULL", "new_mcs_rate is NULL"));
}

} // namespace
} // namespace tarn::test
