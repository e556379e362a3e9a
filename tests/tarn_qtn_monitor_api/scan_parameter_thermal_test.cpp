// Scans, parameters, the security agent, thermal mitigation.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using ScanParameterThermal = ProxyTest;

// Written by command 14, read by 98.
TEST_F(ScanParameterThermal, CustomKeyIsCutTo32CharactersForReadingToo)
{
    expectCommand(98).text(kParam1, kParam1Size, letters(32).c_str()).replyText(kOut, "value");

    char value[8] = "";
    EXPECT_EQ(tarn_qcsapi_get_custom_value("ledd", letters(40).c_str(), value, sizeof value), 0);
    EXPECT_STREQ(value, "value");
}

TEST_F(ScanParameterThermal, ErrorMessageIsAskedForByAnyNumber)
{
    expectCommand(100).word(kParam1, 0xFFFFFFFF).replyText(kOut, "why");

    char message[8] = "";
    EXPECT_EQ(tarn_qcsapi_errno_get_message("ledd", 0xFFFFFFFF, message, sizeof message), 0);
    EXPECT_STREQ(message, "why");
}

TEST_F(ScanParameterThermal, ScanIsStartedAndWatched)
{
    expectNumbersAt({kParam1}, 101, tarn_qcsapi_wifi_start_scan_ext);
    expectWordsFrom({kOut}, 102, tarn_qcsapi_wifi_get_scan_status);
    expectWordsFrom({kOut}, 103, tarn_qcsapi_wifi_get_results_AP_scan);
}

// Buffers of exactly 33 bytes, neither with a NUL.
TEST_F(ScanParameterThermal, SecurityAgentSends33BytesOfEachTextAsTheyStand)
{
    const std::vector<std::uint8_t> action = nonZeroBytes(33);
    const std::vector<std::uint8_t> key(action.rbegin(), action.rend());
    expectCommand(108).bytes(68, action.data(), 33).bytes(104, key.data(), 33).word(1144, 0x01020304);
    EXPECT_EQ(tarn_qcsapi_security_set_sec_agent("ledd", reinterpret_cast<const char*>(action.data()),
                                                 reinterpret_cast<const char*>(key.data()), 0x01020304),
              0);
}

TEST_F(ScanParameterThermal, SecurityAgentSendsWhatIsBehindANul)
{
    const char action[33] = "start\0left over";
    const char key[33] = "\0all of it";
    expectCommand(108).bytes(68, action, sizeof action).bytes(104, key, sizeof key);
    EXPECT_EQ(tarn_qcsapi_security_set_sec_agent("ledd", action, key, 0), 0);
}

TEST_F(ScanParameterThermal, ParameterIsReadAndSetByItsNumber)
{
    expectWordsFrom({kOut}, 110, tarn_qcsapi_wifi_get_parameter);
    expectNumbersAt({kParam1, kParam2}, 111, tarn_qcsapi_wifi_set_parameter);
}

TEST_F(ScanParameterThermal, ParameterBlockFillsTheSecondParameterToItsEnd)
{
    const std::vector<std::uint8_t> block = nonZeroBytes(1040);
    expectOnWifi0(115).text(kParam1, kParam1Size, letters(32).c_str()).bytes(kParam2, block.data(), block.size());
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kWifi0, letters(40).c_str(), block.data()), 0);
}

TEST_F(ScanParameterThermal, ParameterBlockNeedsNoName)
{
    const std::vector<std::uint8_t> block = nonZeroBytes(1040);
    expectOnWifi0(115).bytes(kParam2, block.data(), block.size());
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kWifi0, nullptr, block.data()), 0);
}

TEST_F(ScanParameterThermal, MissingParameterBlockIsRefused)
{
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kWifi0, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", nullptr, nullptr, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("set_params is NULL", "ifname is NULL"));
}

TEST_F(ScanParameterThermal, LoneValuesHaveASlotOfTheirOwn)
{
    expectNumbersAt({kParam1}, 118, tarn_qcsapi_wifi_set_legacy_bbic);
    expectNumbersAt({kParam2}, 112, tarn_qcsapi_wifi_disable_11b);
    expectNumbersAt({kParam2}, 114, tarn_qcsapi_wifi_set_enable_mu);
    expectNumbersAt({kParam2}, 125, tarn_qcsapi_wifi_set_ieee80211r);
}

TEST_F(ScanParameterThermal, HoldTimeTakesBothParametersInOrder)
{
    expectNumbersAt({kParam1, kParam2}, 117, tarn_qcsapi_wifi_set_ac_agg_hold_time);
}

TEST_F(ScanParameterThermal, ThermalMitigationMayBeCalledInAnyOrder)
{
    expectNumbersAt({}, 122, tarn_qcsapi_thermal_mitig_exit);
    expectNumbersAt({}, 121, tarn_qcsapi_thermal_mitig_stop);
    expectNumbersAt({kParam1, kParam2}, 120, tarn_qcsapi_thermal_mitig_start);
    expectNumbersAt({kParam1}, 119, tarn_qcsapi_thermal_mitig_init);
}

TEST_F(ScanParameterThermal, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_get_custom_value), "custom_key, custom_value");
    EXPECT_EQ(missing(tarn_qcsapi_errno_get_message), "err_msg");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_start_scan_ext), "intf_name");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_scan_status), "intf_name, scanstatus");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_results_AP_scan), "intf_name, count_APs");
    EXPECT_EQ(missing(tarn_qcsapi_wps_cancel), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_security_set_sec_agent), "action, key");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_parameter), "ifname, p_value");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_parameter), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_disable_11b), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_enable_mu), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_ac_agg_hold_time), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_legacy_bbic), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_ieee80211r), "ifname");
}

} // namespace
} // namespace tarn::test
