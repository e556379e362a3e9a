// PHY and BSS settings of an interface.
#include "proxy_test.h"

namespace tarn::test
{
namespace
{

using PhyBss = ProxyTest;

TEST_F(PhyBss, McsRateIsCutToEightCharacters)
{
    expectTextAt(kParam1, 8, 52, tarn_qcsapi_wifi_set_mcs_rate);
}

TEST_F(PhyBss, PhyModeIsCutTo32Characters)
{
    expectTextAt(kParam1, 32, 45, tarn_qcsapi_wifi_set_phy_mode);
}

TEST_F(PhyBss, ScsStatusIsReadAsWord)
{
    expectWordsFrom({kOut}, 49, tarn_qcsapi_wifi_get_scs_status);
}

TEST_F(PhyBss, SomeSettingsGoToTheFirstParameter)
{
    expectNumbersAt({kParam1}, 53, tarn_qcsapi_wifi_set_rts_threshold);
    expectNumbersAt({kParam1}, 54, tarn_qcsapi_wifi_set_beacon_interval);
    expectNumbersAt({kParam1}, 55, tarn_qcsapi_wifi_set_dtim);
    expectNumbersAt({kParam1}, 62, tarn_qcsapi_wifi_set_SSID_group_id);
}

TEST_F(PhyBss, OtherSettingsGoToTheSecondParameter)
{
    expectNumbersAt({kParam2}, 44, tarn_qcsapi_interface_enable);
    expectNumbersAt({kParam2}, 50, tarn_qcsapi_wifi_scs_enable);
    expectNumbersAt({kParam2}, 56, tarn_qcsapi_wifi_set_assoc_limit);
    expectNumbersAt({kParam2}, 57, tarn_qcsapi_wifi_set_tx_amsdu);
    expectNumbersAt({kParam2}, 58, tarn_qcsapi_wifi_set_airfair);
    expectNumbersAt({kParam2}, 60, tarn_qcsapi_wifi_set_security_defer_mode);
}

TEST_F(PhyBss, NumberedSettingsTakeBothParametersInOrder)
{
    expectNumbersAt({kParam1, kParam2}, 51, tarn_qcsapi_wifi_set_option);
    expectNumbersAt({kParam1, kParam2}, 59, tarn_qcsapi_wifi_set_extender_params);
}

// On a big-endian host a word of the same value would be other bytes.
TEST_F(PhyBss, PriorityIsOneByte)
{
    expectOnWifi0(63).byte(68, 0xC3);
    EXPECT_EQ(tarn_qcsapi_wifi_set_priority("ledd", kWifi0, 0xC3), 0);
}

TEST_F(PhyBss, CreatingABssWaitsLonger)
{
    expectNumbersAt({kParam2}, 61, tarn_qcsapi_wifi_create_bss_with_ifstate, 5);
}

TEST_F(PhyBss, EveryFunctionNeedsAnInterface)
{
    EXPECT_EQ(missing(tarn_qcsapi_interface_enable), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_phy_mode), "ifname, new_phy_mode");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_phy_mode), "ifname, p_wifi_phy_mode");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_scs_status), "ifname, p_scs_status");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_scs_enable), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_option), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_mcs_rate), "ifname, new_mcs_rate");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_rts_threshold), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_beacon_interval), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_dtim), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_assoc_limit), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_tx_amsdu), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_airfair), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_extender_params), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_security_defer_mode), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_create_bss_with_ifstate), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_SSID_group_id), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_priority), "ifname");
}

} // namespace
} // namespace tarn::test
