#include "support.h"

namespace simulator_test
{

using ProxySystemTest = SimulatorTest;

TEST_F(ProxySystemTest, TemperaturesAndVersionAreTheScenarios)
{
    std::uint32_t external = 0;
    std::uint32_t internal = 0;
    std::uint32_t baseband = 0;
    char version[65];
    EXPECT_EQ(CALL(tarn_qcsapi_get_temperature_info)(&external, &internal, &baseband), kDone);
    EXPECT_EQ(external, 47u);
    EXPECT_EQ(internal, 58u);
    EXPECT_EQ(baseband, 63u);
    EXPECT_EQ(CALL(tarn_qcsapi_firmware_get_version)(version, sizeof version), kDone);
    EXPECT_STREQ(version, "5.3.1-sim");
    EXPECT_EQ(CALL(tarn_qcsapi_firmware_get_version)(version, 4), kDone);
    EXPECT_STREQ(version, "5.3");
}

TEST_F(ProxySystemTest, InterfaceStatusFollowsItsSwitches)
{
    const auto status = [](const char* name)
    {
        char text[16];
        EXPECT_EQ(CALL(tarn_qcsapi_interface_get_status)(name, text, sizeof text), kDone);
        return std::string(text);
    };
    EXPECT_EQ(status("wifi0"), "up");
    EXPECT_EQ(CALL(tarn_qcsapi_interface_enable)("wifi0", 0), kDone);
    EXPECT_EQ(status("wifi0"), "down");
    EXPECT_EQ(status("wifi1"), "up");
    EXPECT_EQ(CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0), kDone);
    EXPECT_EQ(status("wifi1"), "down");
    char text[16];
    EXPECT_EQ(CALL(tarn_qcsapi_interface_get_status)("wlan0", text, sizeof text), kModuleNoSuchObject); // not the module's
    EXPECT_EQ(CALL(tarn_qcsapi_interface_get_status)("", text, sizeof text), kModuleNoSuchObject);
}

TEST_F(ProxySystemTest, ProductionTakesItsTime)
{
    std::uint32_t isDone = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_is_startprod_done)(&isDone), kDone);
    EXPECT_EQ(isDone, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_startprod)(), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_startprod)(), kModuleBusy);
    EXPECT_EQ(CALL(tarn_qcsapi_is_startprod_done)(&isDone), kDone);
    EXPECT_EQ(isDone, 0u);
    passSeconds(3);
    EXPECT_EQ(CALL(tarn_qcsapi_is_startprod_done)(&isDone), kDone);
    EXPECT_EQ(isDone, 1u);
}

TEST_F(ProxySystemTest, SwitchOfTheRadiosIsTheDeviceServicesToo)
{
    std::uint32_t isReady = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_rfenable)(0), kDone);
    EXPECT_EQ(CALL(TarnGetRadioIsReady)(1, &isReady), kDone);
    EXPECT_EQ(isReady, 0u);
    EXPECT_EQ(CALL(TarnGetRadioIsReady)(2, &isReady), kDone);
    EXPECT_EQ(isReady, 1u); // not the module's
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_rfenable)(2), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_radio_rfenable)("wifi1", 1), kDone);
    EXPECT_EQ(CALL(TarnGetRadioIsReady)(1, &isReady), kDone);
    EXPECT_EQ(isReady, 1u);
}

TEST_F(ProxySystemTest, CustomValuesAreReadBack)
{
    char value[129];
    EXPECT_EQ(CALL(tarn_qcsapi_get_custom_value)("colour", value, sizeof value), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)("colour", "green"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)("shape", ""), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_get_custom_value)("colour", value, sizeof value), kDone);
    EXPECT_STREQ(value, "green");
    EXPECT_EQ(CALL(tarn_qcsapi_get_custom_value)("shape", value, sizeof value), kDone);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)("", "green"), kModuleInvalidValue);
    for (int i = 0; i < 62; ++i)
        EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)(std::to_string(i).c_str(), "x"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)("one more", "x"), kModuleFull);
    EXPECT_EQ(CALL(tarn_qcsapi_set_custom_value)("colour", "blue"), kDone); // that one is there already
}

TEST_F(ProxySystemTest, ScriptsMustBeThere)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_run_script)("calibrate", "quickly"), kDone);
    EXPECT_EQ(state("/module/lastScript"), "calibrate");
    EXPECT_EQ(state("/module/lastScriptParameter"), "quickly");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_run_script)("explode", ""), kModuleNoSuchObject);
    EXPECT_EQ(state("/module/lastScript"), "calibrate");
}

TEST_F(ProxySystemTest, BootParametersAreReadAndUpdated)
{
    char value[129];
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("serial", value, sizeof value), kDone);
    EXPECT_STREQ(value, "SIM0000001");
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.mode", value, sizeof value), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_config_update_parameter)("wifi0", "mode", "ap"), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.mode", value, sizeof value), kDone);
    EXPECT_STREQ(value, "ap");
    EXPECT_EQ(CALL(tarn_qcsapi_config_update_parameter)("wifi9", "mode", "ap"), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_config_update_parameter)("wifi0", "", "ap"), kModuleInvalidValue);
}

// Two pairs: rate = 11, power = low.
Record twoParameters()
{
    Record block = blank("tarn_qcsapi_set_params.set_params");
    block.setNumber("number", 2);
    block.setText("entries[0].name", "rate");
    block.setText("entries[0].value", "11");
    block.setText("entries[1].name", "power");
    block.setText("entries[1].value", "low");
    return block;
}

TEST_F(ProxySystemTest, ParameterBlockSetsWhatItNames)
{
    char value[129];
    Record block = twoParameters();
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, "power", block.bytes().data()), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.power", value, sizeof value), kDone);
    EXPECT_STREQ(value, "low");
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.rate", value, sizeof value), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, "height", block.bytes().data()), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()), kDone); // all of them
    EXPECT_EQ(CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.rate", value, sizeof value), kDone);
    EXPECT_STREQ(value, "11");
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kNobody, nullptr, block.bytes().data()), kModuleNoSuchObject);

    block.setNumber("number", 3); // the third has no name
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()), kModuleInvalidValue);
    block.setNumber("number", 17);
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()), kModuleInvalidValue);
    block.setNumber("number", 0);
    EXPECT_EQ(CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()), kModuleInvalidValue);
}

TEST_F(ProxySystemTest, ServicesAreControlled)
{
    std::uint32_t enable = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(1, 0), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaMauiState)(&enable), kDone);
    EXPECT_EQ(enable, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(1, 2), kModuleSwitchedOff); // what is stopped cannot be restarted
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(1, 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(1, 2), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaMauiState)(&enable), kDone);
    EXPECT_EQ(enable, 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(3, 0), kDone);
    EXPECT_EQ(CALL(TarnGetQuantennaDFSDaemonState)(&enable), kDone);
    EXPECT_EQ(enable, 0u);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(0, 1), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(5, 1), kModuleNoSuchObject);
    EXPECT_EQ(CALL(tarn_qcsapi_service_control)(1, 3), kModuleInvalidValue);
}

TEST_F(ProxySystemTest, TimeSinceStartGoesOn)
{
    std::uint32_t elapsed = 99;
    EXPECT_EQ(CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed), kDone);
    EXPECT_EQ(elapsed, 0u);
    passSeconds(90.9);
    EXPECT_EQ(CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed), kDone);
    EXPECT_EQ(elapsed, 90u);
}

TEST_F(ProxySystemTest, StatusesHaveTexts)
{
    const auto text = [](std::int64_t status)
    {
        char message[64];
        EXPECT_EQ(CALL(tarn_qcsapi_errno_get_message)(static_cast<std::uint32_t>(status), message, sizeof message), kDone);
        return std::string(message);
    };
    EXPECT_EQ(text(kDone), "done");
    EXPECT_EQ(text(kModuleNoSuchObject), "no such object");
    EXPECT_EQ(text(kModuleInvalidValue), "invalid value");
    EXPECT_EQ(text(kModuleBusy), "busy");
    EXPECT_EQ(text(kModuleFull), "no room left");
    EXPECT_EQ(text(kModuleAlreadyThere), "already there");
    EXPECT_EQ(text(kModuleNotThere), "not there");
    EXPECT_EQ(text(kModuleSwitchedOff), "switched off");
    char message[64];
    EXPECT_EQ(CALL(tarn_qcsapi_errno_get_message)(1, message, sizeof message), kModuleNoSuchObject);
}

TEST_F(ProxySystemTest, PowerModeIsKept)
{
    EXPECT_EQ(CALL(tarn_qcsapi_pm_set_mode)(4), kDone);
    EXPECT_EQ(state("/module/powerMode"), 4);
    EXPECT_EQ(CALL(tarn_qcsapi_pm_set_mode)(5), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_regulatory_apply_tx_power_cap)(1), kDone);
    EXPECT_EQ(state("/module/transmitPowerCap"), 1);
}

TEST_F(ProxySystemTest, SecurityAgentKeepsItsEntries)
{
    char key[33] = "agent";
    char set[33] = "set";
    char clear[33] = "clear";
    char other[33] = "other";
    EXPECT_EQ(CALL(tarn_qcsapi_security_set_sec_agent)(set, key, 5), kDone);
    EXPECT_EQ(state("/module/securityAgent/agent"), 5);
    EXPECT_EQ(CALL(tarn_qcsapi_security_set_sec_agent)(other, key, 5), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_security_set_sec_agent)(clear, key, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_security_set_sec_agent)(clear, key, 0), kModuleNotThere);
    EXPECT_TRUE(state("/module/securityAgent").empty());
}

TEST_F(ProxySystemTest, ThermalMitigationHasItsOrder)
{
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80), kModuleSwitchedOff);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_exit)(), kModuleSwitchedOff);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_init)(4), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_init)(2), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_init)(2), kModuleAlreadyThere);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80), kModuleAlreadyThere);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_start)(kNobody, 90, 80), kModuleNoSuchObject);
    EXPECT_EQ(state("/radios/0/interfaces/0/thermalStart"), 90);
    EXPECT_EQ(state("/module/thermalInterfaces"), Json({"wifi0"}));
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_exit)(), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0), kModuleSwitchedOff);
}

} // namespace simulator_test
