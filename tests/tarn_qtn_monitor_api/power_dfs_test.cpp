// Transmit power, DFS and channel availability.
#include "proxy_test.h"

namespace tarn::test
{
namespace
{

using PowerDfs = ProxyTest;

// The second argument is the first in the message.
TEST_F(PowerDfs, MonitorModeCrossesItsFirstTwoValues)
{
    expectNumbersAt({104, 68, 1144}, 82, tarn_qcsapi_wifi_set_nac_mon_mode);
}

TEST_F(PowerDfs, BackoffSendsTheLowByteOfEachValueAsAWord)
{
    const auto low = [](std::uint32_t value) { return static_cast<std::uint8_t>(value); };
    expectOnWifi0(81).word(68, 0xFF).word(104, 0x00).word(1144, 0x2A);
    expectOnWifi0(81).word(68, 0x00).word(104, 0x2A).word(1144, 0xFF);
    EXPECT_EQ(tarn_qcsapi_reg_chan_txpower_backoff_set("ledd", kWifi0, low(0x1FF), low(0x100), low(0x2A)), 0);
    EXPECT_EQ(tarn_qcsapi_reg_chan_txpower_backoff_set("ledd", kWifi0, low(0x100), low(0x2A), low(0x1FF)), 0);
}

TEST_F(PowerDfs, PowerCapNamesNoInterface)
{
    expectNumbersAt({kParam2}, 97, tarn_qcsapi_regulatory_apply_tx_power_cap);
}

TEST_F(PowerDfs, LoneValuesHaveASlotOfTheirOwn)
{
    expectNumbersAt({kParam1}, 80, tarn_qcsapi_wifi_set_current_tx_power_level);
    expectNumbersAt({kParam1}, 83, tarn_qcsapi_wifi_start_dfs_s_radio);
    expectNumbersAt({kParam2}, 127, tarn_qcsapi_wifi_set_wea_cac_en);
}

TEST_F(PowerDfs, InactivePrimaryChannelTakesBothParametersInOrder)
{
    expectNumbersAt({kParam1, kParam2}, 95, tarn_qcsapi_wifi_set_chan_pri_inactive);
}

TEST_F(PowerDfs, SecondaryChannelIsSetWithTheWholeNameBuffer)
{
    expectNumbersAt({kParam1, kParam2}, 113, tarn_qcsapi_wifi_set_sec_chan);
}

TEST_F(PowerDfs, CacStatesAreWords)
{
    expectWordsFrom({kOut}, 85, tarn_qcsapi_wifi_get_cac_status);
    expectWordsFrom({kOut}, 99, tarn_qcsapi_wifi_get_icac_status);
}

TEST_F(PowerDfs, DfsRadioIsStoppedByTheInterfaceAlone)
{
    expectNumbersAt({}, 84, tarn_qcsapi_wifi_stop_dfs_s_radio);
}

TEST_F(PowerDfs, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_supported_tx_power_levels), "ifname, available_percentages");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_current_tx_power_level), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_reg_chan_txpower_backoff_set), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_nac_mon_mode), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_start_dfs_s_radio), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_stop_dfs_s_radio), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_cac_status), "ifname, cacstatus");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_chan_pri_inactive), "intf_name");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_icac_status), "intf_name, status");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_sec_chan), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_chan_avail_status), "intf_name, chan_avail_status");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_wea_cac_en), "intf_name");
}

} // namespace
} // namespace tarn::test
