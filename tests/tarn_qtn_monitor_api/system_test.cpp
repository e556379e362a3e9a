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
    expectCommand(6).replyWord(1152, 41).replyWord(1156, 52).replyWord(1160, 63);

    std::uint32_t external = 0;
    std::uint32_t internal = 0;
    std::uint32_t baseband = 0;
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", &external, &internal, &baseband), 0);
    EXPECT_EQ(external, 41u);
    EXPECT_EQ(internal, 52u);
    EXPECT_EQ(baseband, 63u);
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

TEST_F(System, FailureLeavesAllThreeTemperatures)
{
    expectCommand(6).fail(5);

    std::uint32_t external = kUntouched;
    std::uint32_t internal = kUntouched;
    std::uint32_t baseband = kUntouched;
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", &external, &internal, &baseband), -1);
    EXPECT_EQ(external, kUntouched);
    EXPECT_EQ(internal, kUntouched);
    EXPECT_EQ(baseband, kUntouched);
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

TEST_F(System, TextsThatJustFitAreSentWhole)
{
    expectCommand(14).text(kParam1, kParam1Size, letters(32).c_str()).text(kParam2, kParam2Size, letters(128).c_str());
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", letters(32).c_str(), letters(128).c_str()), 0);
}

TEST_F(System, EachMissingTextIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", "key", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_run_script("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_run_script("ledd", "script", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", "wifi0", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", "wifi0", "name", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("custom_key is NULL", "custom_value is NULL", "scriptname is NULL", "param is NULL",
                            "intf_name is NULL", "param_name is NULL", "param_value is NULL"));
}

TEST_F(System, EachMissingWordIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_is_startprod_done("ledd", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_get_carrier_id("ledd", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_system_get_time_since_start("ledd", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("is_start_prod_done is NULL", "p_carrier_id is NULL", "p_elapsed_time is NULL"));
}

TEST_F(System, LoneValueGoesToTheSecondParameter)
{
    expectCommand(12).wait(5).word(kParam2, 9);
    expectOnWifi0(13).wait(5).word(kParam2, 9);
    expectCommand(18).word(kParam2, 9);
    expectCommand(22).word(kParam2, 9);
    EXPECT_EQ(tarn_qcsapi_wifi_rfenable("ledd", 9), 0);
    EXPECT_EQ(tarn_qcsapi_radio_rfenable("ledd", "wifi0", 9), 0);
    EXPECT_EQ(tarn_qcsapi_telnet_enable("ledd", 9), 0);
    EXPECT_EQ(tarn_qcsapi_pm_set_mode("ledd", 9), 0);
}

TEST_F(System, FirstOfTwoValuesGoesToTheFirstParameter)
{
    expectCommand(19).word(kParam1, 3).word(kParam2, 4);
    expectCommand(21).word(kParam1, 5).word(kParam2, 6);
    EXPECT_EQ(tarn_qcsapi_service_control("ledd", 3, 4), 0);
    EXPECT_EQ(tarn_qcsapi_set_carrier_id("ledd", 5, 6), 0);
}

TEST_F(System, OnlyTheTwoRadioSwitchesWaitLonger)
{
    const std::uint32_t commands[] = {6, 7, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 29, 42};
    for (const std::uint32_t command : commands)
        platform.expect("QTN_RPC_PROXY", command, kMessageSize).wait(command == 12 || command == 13 ? 5 : 3);

    std::uint32_t word = 0;
    char text[8] = "";
    EXPECT_EQ(tarn_qcsapi_get_temperature_info("ledd", &word, &word, &word), 0);
    EXPECT_EQ(tarn_qcsapi_interface_get_status("ledd", "wifi0", text, sizeof text), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_startprod("ledd"), 0);
    EXPECT_EQ(tarn_qcsapi_is_startprod_done("ledd", &word), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_rfenable("ledd", 1), 0);
    EXPECT_EQ(tarn_qcsapi_radio_rfenable("ledd", "wifi0", 1), 0);
    EXPECT_EQ(tarn_qcsapi_set_custom_value("ledd", "key", "value"), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_run_script("ledd", "script", ""), 0);
    EXPECT_EQ(tarn_qcsapi_bootcfg_get_parameter("ledd", "name", text, sizeof text), 0);
    EXPECT_EQ(tarn_qcsapi_config_update_parameter("ledd", "wifi0", "name", "value"), 0);
    EXPECT_EQ(tarn_qcsapi_telnet_enable("ledd", 1), 0);
    EXPECT_EQ(tarn_qcsapi_service_control("ledd", 1, 1), 0);
    EXPECT_EQ(tarn_qcsapi_get_carrier_id("ledd", &word), 0);
    EXPECT_EQ(tarn_qcsapi_set_carrier_id("ledd", 1, 1), 0);
    EXPECT_EQ(tarn_qcsapi_pm_set_mode("ledd", 1), 0);
    EXPECT_EQ(tarn_qcsapi_system_get_time_since_start("ledd", &word), 0);
    EXPECT_EQ(tarn_qcsapi_firmware_get_version("ledd", text, sizeof text), 0);
}

TEST_F(System, CommandsWithoutInterfaceLeaveTheNameZero)
{
    expectCommand(10);
    expectCommand(11).replyWord(kOut, 1);
    expectCommand(20).replyWord(kOut, 2);
    expectCommand(29).replyWord(kOut, 3);

    std::uint32_t done = 0;
    std::uint32_t carrier = 0;
    std::uint32_t elapsed = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_startprod("ledd"), 0);
    EXPECT_EQ(tarn_qcsapi_is_startprod_done("ledd", &done), 0);
    EXPECT_EQ(tarn_qcsapi_get_carrier_id("ledd", &carrier), 0);
    EXPECT_EQ(tarn_qcsapi_system_get_time_since_start("ledd", &elapsed), 0);
    EXPECT_EQ(done, 1u);
    EXPECT_EQ(carrier, 2u);
    EXPECT_EQ(elapsed, 3u);
}

TEST_F(System, FirmwareVersionIsCutToTheCallersBuffer)
{
    expectCommand(42).replyText(kOut, "v36.7.1.95");

    char version[9] = "########";
    EXPECT_EQ(tarn_qcsapi_firmware_get_version("ledd", version, 8), 0);
    EXPECT_STREQ(version, "v36.7.1");
}

} // namespace
} // namespace tarn::test
