// Scans, parameters, the security agent, thermal mitigation.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using ScanParameterThermal = ProxyTest;

const char kName[kIfnameSize] = "wifi0";

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
    for (const std::uint32_t code : {0u, 1u, 0xFFFFFFFFu})
    {
        expectCommand(100).word(kParam1, code).replyText(kOut, "why");
        char message[8] = "";
        EXPECT_EQ(tarn_qcsapi_errno_get_message("ledd", code, message, sizeof message), 0);
        EXPECT_STREQ(message, "why");
    }
}

TEST_F(ScanParameterThermal, MissingErrorMessageIsRefused)
{
    EXPECT_EQ(tarn_qcsapi_errno_get_message("ledd", 0xFFFFFFFF, nullptr, 8), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("err_msg is NULL"));
}

TEST_F(ScanParameterThermal, ScanIsStartedAndWatched)
{
    expectOnWifi0(101).word(kParam1, 3);
    expectOnWifi0(102).replyWord(kOut, 1);
    expectOnWifi0(103).replyWord(kOut, 12);

    std::uint32_t scanning = 0;
    std::uint32_t count = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_start_scan_ext("ledd", "wifi0", 3), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_scan_status("ledd", "wifi0", &scanning), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_results_AP_scan("ledd", "wifi0", &count), 0);
    EXPECT_EQ(scanning, 1u);
    EXPECT_EQ(count, 12u);
}

TEST_F(ScanParameterThermal, TimeOutLeavesTheScanStatus)
{
    expectOnWifi0(102).fail(7);

    std::uint32_t scanning = kUntouched;
    EXPECT_EQ(tarn_qcsapi_wifi_get_scan_status("ledd", "wifi0", &scanning), -1);
    EXPECT_EQ(scanning, kUntouched);
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
    expectOnWifi0(110).word(kParam1, 4).replyWord(kOut, 77);
    expectOnWifi0(111).word(kParam1, 4).word(kParam2, 78);

    std::uint32_t value = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_parameter("ledd", kName, 4, &value), 0);
    EXPECT_EQ(value, 77u);
    EXPECT_EQ(tarn_qcsapi_wifi_set_parameter("ledd", kName, 4, 78), 0);
}

TEST_F(ScanParameterThermal, ParameterBlockFillsTheSecondParameterToItsEnd)
{
    const std::vector<std::uint8_t> block = nonZeroBytes(1040);
    expectOnWifi0(115).text(kParam1, kParam1Size, letters(32).c_str()).bytes(kParam2, block.data(), block.size());
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kName, letters(40).c_str(), block.data()), 0);
}

TEST_F(ScanParameterThermal, ParameterBlockNeedsNoName)
{
    const std::vector<std::uint8_t> block = nonZeroBytes(1040);
    expectOnWifi0(115).bytes(kParam2, block.data(), block.size());
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kName, nullptr, block.data()), 0);
}

TEST_F(ScanParameterThermal, MissingParameterBlockIsRefused)
{
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kName, "name", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", kName, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_set_params("ledd", nullptr, nullptr, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("set_params is NULL", "set_params is NULL", "ifname is NULL"));
}

TEST_F(ScanParameterThermal, LoneValuesHaveASlotOfTheirOwn)
{
    expectOnWifi0(118).word(kParam1, 5);
    expectCommand(119).word(kParam1, 5);
    expectOnWifi0(112).word(kParam2, 5);
    expectOnWifi0(114).word(kParam2, 5);
    expectOnWifi0(125).word(kParam2, 5);
    EXPECT_EQ(tarn_qcsapi_wifi_set_legacy_bbic("ledd", kName, 5), 0);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_init("ledd", 5), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_disable_11b("ledd", kName, 5), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_enable_mu("ledd", kName, 5), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_ieee80211r("ledd", kName, 5), 0);
}

TEST_F(ScanParameterThermal, HoldTimeTakesBothParametersInOrder)
{
    expectOnWifi0(117).word(kParam1, 5).word(kParam2, 6);
    EXPECT_EQ(tarn_qcsapi_wifi_set_ac_agg_hold_time("ledd", kName, 5, 6), 0);
}

TEST_F(ScanParameterThermal, ThermalMitigationMayBeCalledInAnyOrder)
{
    expectCommand(122);
    expectOnWifi0(121);
    expectOnWifi0(120).word(kParam1, 90).word(kParam2, 10);
    expectCommand(119).word(kParam1, 1);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_exit("ledd"), 0);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_stop("ledd", kName), 0);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_start("ledd", kName, 90, 10), 0);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_init("ledd", 1), 0);
}

TEST_F(ScanParameterThermal, ThermalMitigationChecksTheCallerId)
{
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_start(nullptr, kName, 90, 10), -1);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_stop("", kName), -1);
    EXPECT_EQ(tarn_qcsapi_thermal_mitig_exit(nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "handle is invalid", "handle is NULL"));
}

TEST_F(ScanParameterThermal, EachMissingArgumentIsNamed)
{
    char text[33] = "";
    EXPECT_EQ(tarn_qcsapi_get_custom_value("ledd", nullptr, nullptr, 8), -1);
    EXPECT_EQ(tarn_qcsapi_get_custom_value("ledd", "key", nullptr, 8), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_start_scan_ext("ledd", nullptr, 1), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_scan_status("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_results_AP_scan("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wps_cancel("ledd", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_security_set_sec_agent("ledd", nullptr, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_security_set_sec_agent("ledd", text, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_parameter("ledd", kName, 1, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("custom_key is NULL", "custom_value is NULL", "intf_name is NULL", "scanstatus is NULL",
                            "count_APs is NULL", "ifname is NULL", "action is NULL", "key is NULL", "p_value is NULL"));
}

} // namespace
} // namespace tarn::test
