// Transmit power, DFS and channel availability.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using PowerDfs = ProxyTest;

// The first argument's slot stands behind the second's.
TEST_F(PowerDfs, MonitorModeCrossesItsFirstTwoValues)
{
    expectOnWifi0(82).word(68, 2).word(104, 1).word(1144, 3);
    EXPECT_EQ(tarn_qcsapi_wifi_set_nac_mon_mode("ledd", "wifi0", 1, 2, 3), 0);
}

TEST_F(PowerDfs, BackoffSendsTheLowByteOfEachValueAsAWord)
{
    const std::uint32_t wide[] = {0x1FF, 0x100, 0x2A};
    expectOnWifi0(81).word(68, 0xFF).word(104, 0x00).word(1144, 0x2A);
    EXPECT_EQ(tarn_qcsapi_reg_chan_txpower_backoff_set("ledd", "wifi0", static_cast<std::uint8_t>(wide[0]),
                                                       static_cast<std::uint8_t>(wide[1]), static_cast<std::uint8_t>(wide[2])),
              0);
}

TEST_F(PowerDfs, PowerCapNamesNoInterface)
{
    expectCommand(97).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_regulatory_apply_tx_power_cap("ledd", 1), 0);
}

TEST_F(PowerDfs, PowerCapChecksTheCallerIdAlone)
{
    EXPECT_EQ(tarn_qcsapi_regulatory_apply_tx_power_cap(nullptr, 1), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_apply_tx_power_cap("", 1), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "handle is invalid"));
}

TEST_F(PowerDfs, PowerLevelsInNoRoomLeaveTheBuffer)
{
    expectOnWifi0(79).replyText(kOut, "25,50,75,100").status(3);

    char levels[4] = "#";
    EXPECT_EQ(tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", "wifi0", levels, 0), 3);
    EXPECT_STREQ(levels, "#");
}

TEST_F(PowerDfs, LoneValuesHaveASlotOfTheirOwn)
{
    expectOnWifi0(80).word(kParam1, 50);
    expectOnWifi0(83).word(kParam1, 100);
    expectOnWifi0(127).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_current_tx_power_level("ledd", "wifi0", 50), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_start_dfs_s_radio("ledd", "wifi0", 100), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_wea_cac_en("ledd", "wifi0", 1), 0);
}

TEST_F(PowerDfs, InactivePrimaryChannelTakesBothParametersInOrder)
{
    expectOnWifi0(95).word(kParam1, 36).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_chan_pri_inactive("ledd", "wifi0", 36, 1), 0);
}

TEST_F(PowerDfs, SecondaryChannelIsSetWithTheWholeNameBuffer)
{
    const std::vector<std::uint8_t> name = nonZeroBytes(65);
    expectCommand(113).bytes(kIfname, name.data(), 65).word(kParam1, 36).word(kParam2, 1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_sec_chan("ledd", reinterpret_cast<const char*>(name.data()), 36, 1), 0);
}

TEST_F(PowerDfs, CacStatesAreWords)
{
    expectOnWifi0(85).replyWord(kOut, 1);
    expectOnWifi0(99).replyWord(kOut, 2);

    std::uint32_t cac = 0;
    std::uint32_t initialCac = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_cac_status("ledd", "wifi0", &cac), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_icac_status("ledd", "wifi0", &initialCac), 0);
    EXPECT_EQ(cac, 1u);
    EXPECT_EQ(initialCac, 2u);
}

TEST_F(PowerDfs, DfsRadioIsStoppedByTheInterfaceAlone)
{
    expectOnWifi0(84);
    EXPECT_EQ(tarn_qcsapi_wifi_stop_dfs_s_radio("ledd", "wifi0"), 0);
}

TEST_F(PowerDfs, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", nullptr, nullptr, 8), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_supported_tx_power_levels("ledd", "wifi0", nullptr, 8), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_cac_status("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_chan_pri_inactive("ledd", nullptr, 1, 1), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_icac_status("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_icac_status("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_chan_avail_status("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_chan_avail_status("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_wea_cac_en("ledd", nullptr, 1), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_sec_chan("ledd", nullptr, 1, 1), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("ifname is NULL", "available_percentages is NULL", "cacstatus is NULL", "intf_name is NULL",
                            "intf_name is NULL", "status is NULL", "intf_name is NULL", "chan_avail_status is NULL",
                            "intf_name is NULL", "ifname is NULL"));
}

} // namespace
} // namespace tarn::test
