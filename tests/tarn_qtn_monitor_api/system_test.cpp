// The module as a whole: temperatures, scripts, parameters, services, carrier, firmware.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using System = ProxyTest;

TEST_F(System, TemperaturesComeInTheOrderExternalInternalBaseband)
{
    expectWordsFrom({1152, 1156, 1160}, 6, tarn_qcsapi_get_temperature_info);
}

TEST_F(System, InternalTemperatureIsCheckedBeforeTheExternal)
{
    std::uint32_t word = kUntouched;
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", nullptr, &word, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", &word, &word, nullptr), -1);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("tempsens_in is NULL", "tempsens_ex is NULL", "temsens_bbic is NULL"));
    EXPECT_EQ(word, kUntouched);
}

TEST_F(System, CustomKeyIsCutTo32CharactersAndCustomValueTo128)
{
    expectCommand(14).text(kParam1, kParam1Size, letters(32).c_str()).text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", letters(40).c_str(), letters(200).c_str()), 0);
}

TEST_F(System, ScriptNameIsCutTo32CharactersAndItsParametersTo128)
{
    expectCommand(15).text(kParam1, kParam1Size, letters(32).c_str()).text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_run_script("ledd", letters(40).c_str(), letters(200).c_str()), 0);
}

TEST_F(System, BootParameterNameIsCutTo32Characters)
{
    expectCommand(16).text(kParam1, kParam1Size, letters(32).c_str()).replyText(kOut, "on");

    char value[8] = "";
    EXPECT_EQ(tarn_qcsapi_bootcfg_get_parameter("ledd", letters(40).c_str(), value, sizeof value), 0);
    EXPECT_STREQ(value, "on");
}

TEST_F(System, ConfigurationParameterFillsThreeTexts)
{
    expectCommand(17)
        .text(kIfname, kIfnameSize, letters(64).c_str())
        .text(kParam1, kParam1Size, letters(32).c_str())
        .text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", letters(70).c_str(), letters(40).c_str(), letters(200).c_str()), 0);
}

TEST_F(System, EmptyTextsAreNoError)
{
    expectCommand(14);
    expectCommand(15);
    expectCommand(17);
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", "", ""), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_run_script("ledd", "", ""), 0);
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", "", "", ""), 0);
}

TEST_F(System, LoneValueGoesToTheSecondParameter)
{
    expectNumbersAt({kParam2}, 18, tarn_qcsapi_telnet_enable);
    expectNumbersAt({kParam2}, 22, tarn_qcsapi_pm_set_mode);
}

TEST_F(System, OnlyTheTwoRadioSwitchesWaitLonger)
{
    expectNumbersAt({kParam2}, 12, tarn_qcsapi_wifi_rfenable, 5);
    expectNumbersAt({kParam2}, 13, tarn_qcsapi_radio_rfenable, 5);
}

TEST_F(System, FirstOfTwoValuesGoesToTheFirstParameter)
{
    expectNumbersAt({kParam1, kParam2}, 19, tarn_qcsapi_service_control);
    expectNumbersAt({kParam1, kParam2}, 21, tarn_qcsapi_set_carrier_id);
}

TEST_F(System, CommandsWithoutInterfaceLeaveTheNameZero)
{
    expectNumbersAt({}, 10, tarn_qcsapi_wifi_startprod);
    expectWordsFrom({kOut}, 11, tarn_qcsapi_is_startprod_done);
    expectWordsFrom({kOut}, 20, tarn_qcsapi_get_carrier_id);
    expectWordsFrom({kOut}, 29, tarn_qcsapi_system_get_time_since_start);
}

TEST_F(System, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_interface_get_status), "intf_name, status");
    EXPECT_EQ(missing(tarn_qcsapi_is_startprod_done), "is_start_prod_done");
    EXPECT_EQ(missing(tarn_qcsapi_radio_rfenable), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_set_custom_value), "custom_key, custom_value");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_run_script), "scriptname, param");
    EXPECT_EQ(missing(tarn_qcsapi_bootcfg_get_parameter), "param_name, param_value");
    EXPECT_EQ(missing(tarn_qcsapi_config_update_parameter), "intf_name, param_name, param_value");
    EXPECT_EQ(missing(tarn_qcsapi_get_carrier_id), "p_carrier_id");
    EXPECT_EQ(missing(tarn_qcsapi_system_get_time_since_start), "p_elapsed_time");
    EXPECT_EQ(missing(tarn_qcsapi_firmware_get_version), "firmware_version");
}

} // namespace
} // namespace tarn::test
