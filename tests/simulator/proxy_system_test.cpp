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
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_temperature_info)(&external, &internal, &baseband));
    EXPECT_EQ(47U, external);
    EXPECT_EQ(58U, internal);
    EXPECT_EQ(63U, baseband);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_firmware_get_version)(version, sizeof version));
    EXPECT_STREQ("5.3.1-sim", version);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_firmware_get_version)(version, 4));
    EXPECT_STREQ("5.3", version);
}

TEST_F(ProxySystemTest, InterfaceStatusFollowsItsSwitches)
{
    const auto status = [](const char* name)
    {
        char text[16];
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_interface_get_status)(name, text, sizeof text));
        return std::string(text);
    };
    EXPECT_EQ("up", status("wifi0"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_interface_enable)("wifi0", 0));
    EXPECT_EQ("down", status("wifi0"));
    EXPECT_EQ("up", status("wifi1"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0));
    EXPECT_EQ("down", status("wifi1"));
    char text[16];
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_interface_get_status)("wlan0", text, sizeof text)); // not the module's
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_interface_get_status)("", text, sizeof text));
}

TEST_F(ProxySystemTest, ProductionTakesItsTime)
{
    std::uint32_t isDone = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_is_startprod_done)(&isDone));
    EXPECT_EQ(0U, isDone);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_startprod)());
    EXPECT_EQ(kModuleBusy, CALL(tarn_qcsapi_wifi_startprod)());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_is_startprod_done)(&isDone));
    EXPECT_EQ(0U, isDone);
    passSeconds(3);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_is_startprod_done)(&isDone));
    EXPECT_EQ(1U, isDone);
}

TEST_F(ProxySystemTest, SwitchOfTheRadiosIsTheDeviceServicesToo)
{
    std::uint32_t isReady = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_rfenable)(0));
    EXPECT_EQ(kDone, CALL(TarnGetRadioIsReady)(1, &isReady));
    EXPECT_EQ(0U, isReady);
    EXPECT_EQ(kDone, CALL(TarnGetRadioIsReady)(2, &isReady));
    EXPECT_EQ(1U, isReady); // not the module's
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_rfenable)(2));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_radio_rfenable)("wifi1", 1));
    EXPECT_EQ(kDone, CALL(TarnGetRadioIsReady)(1, &isReady));
    EXPECT_EQ(1U, isReady);
}

TEST_F(ProxySystemTest, CustomValuesAreReadBack)
{
    char value[129];
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_get_custom_value)("colour", value, sizeof value));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_custom_value)("colour", "green"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_custom_value)("shape", ""));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_custom_value)("colour", value, sizeof value));
    EXPECT_STREQ("green", value);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_get_custom_value)("shape", value, sizeof value));
    EXPECT_STREQ("", value);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_set_custom_value)("", "green"));
    for (int i = 0; i < 62; ++i)
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_custom_value)(std::to_string(i).c_str(), "x"));
    EXPECT_EQ(kModuleFull, CALL(tarn_qcsapi_set_custom_value)("one more", "x"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_custom_value)("colour", "blue")); // that one is there already
}

TEST_F(ProxySystemTest, ScriptsMustBeThere)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_run_script)("calibrate", "quickly"));
    EXPECT_EQ("calibrate", state("/module/lastScript"));
    EXPECT_EQ("quickly", state("/module/lastScriptParameter"));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_wifi_run_script)("explode", ""));
    EXPECT_EQ("calibrate", state("/module/lastScript"));
}

TEST_F(ProxySystemTest, BootParametersAreReadAndUpdated)
{
    char value[129];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_bootcfg_get_parameter)("serial", value, sizeof value));
    EXPECT_STREQ("SIM0000001", value);
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.mode", value, sizeof value));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_config_update_parameter)("wifi0", "mode", "ap"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.mode", value, sizeof value));
    EXPECT_STREQ("ap", value);
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_config_update_parameter)("wifi9", "mode", "ap"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_config_update_parameter)("wifi0", "", "ap"));
}

// Two pairs: rate = 11, power = low.
Record twoParameters()
{
    std::vector<std::uint8_t> entries;
    for (const auto& [name, value] : {std::pair<const char*, const char*>{"rate", "11"}, {"power", "low"}})
    {
        Record entry = blank("tarn_qcsapi_set_params.set_params.entry");
        entry.setText("name", name);
        entry.setText("value", value);
        entries.insert(entries.end(), entry.bytes().begin(), entry.bytes().end());
    }
    Record block = blank("tarn_qcsapi_set_params.set_params");
    block.setNumber("number", 2);
    block.setBlock("entries", entries.data(), entries.size());
    return block;
}

TEST_F(ProxySystemTest, ParameterBlockSetsWhatItNames)
{
    char value[129];
    Record block = twoParameters();
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_params)(kWifi0, "power", block.bytes().data()));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.power", value, sizeof value));
    EXPECT_STREQ("low", value);
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.rate", value, sizeof value));
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_set_params)(kWifi0, "height", block.bytes().data()));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data())); // all of them
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_bootcfg_get_parameter)("wifi0.rate", value, sizeof value));
    EXPECT_STREQ("11", value);
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_set_params)(kNobody, nullptr, block.bytes().data()));

    block.setNumber("number", 3); // the third has no name
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()));
    block.setNumber("number", 17);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()));
    block.setNumber("number", 0);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_set_params)(kWifi0, nullptr, block.bytes().data()));
}

TEST_F(ProxySystemTest, ServicesAreControlled)
{
    std::uint32_t enable = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_service_control)(1, 0));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaMauiState)(&enable));
    EXPECT_EQ(0U, enable);
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_service_control)(1, 2)); // what is stopped cannot be restarted
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_service_control)(1, 1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_service_control)(1, 2));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaMauiState)(&enable));
    EXPECT_EQ(1U, enable);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_service_control)(3, 0));
    EXPECT_EQ(kDone, CALL(TarnGetQuantennaDFSDaemonState)(&enable));
    EXPECT_EQ(0U, enable);
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_service_control)(0, 1));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_service_control)(5, 1));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_service_control)(1, 3));
}

TEST_F(ProxySystemTest, TimeSinceStartGoesOn)
{
    std::uint32_t elapsed = 99;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed));
    EXPECT_EQ(0U, elapsed);
    passSeconds(90.9);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_system_get_time_since_start)(&elapsed));
    EXPECT_EQ(90U, elapsed);
}

TEST_F(ProxySystemTest, StatusesHaveTexts)
{
    const auto text = [](std::int64_t status)
    {
        char message[64];
        EXPECT_EQ(kDone, CALL(tarn_qcsapi_errno_get_message)(static_cast<std::uint32_t>(status), message, sizeof message));
        return std::string(message);
    };
    EXPECT_EQ("done", text(kDone));
    EXPECT_EQ("no such object", text(kModuleNoSuchObject));
    EXPECT_EQ("invalid value", text(kModuleInvalidValue));
    EXPECT_EQ("busy", text(kModuleBusy));
    EXPECT_EQ("no room left", text(kModuleFull));
    EXPECT_EQ("already there", text(kModuleAlreadyThere));
    EXPECT_EQ("not there", text(kModuleNotThere));
    EXPECT_EQ("switched off", text(kModuleSwitchedOff));
    char message[64];
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_errno_get_message)(1, message, sizeof message));
}

TEST_F(ProxySystemTest, PowerModeIsKept)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_pm_set_mode)(4));
    EXPECT_EQ(4, state("/module/powerMode"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_pm_set_mode)(5));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_regulatory_apply_tx_power_cap)(1));
    EXPECT_EQ(1, state("/module/transmitPowerCap"));
}

TEST_F(ProxySystemTest, SecurityAgentKeepsItsEntries)
{
    char key[33] = "agent";
    char set[33] = "set";
    char clear[33] = "clear";
    char other[33] = "other";
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_security_set_sec_agent)(set, key, 5));
    EXPECT_EQ(5, state("/module/securityAgent/agent"));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_security_set_sec_agent)(other, key, 5));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_security_set_sec_agent)(clear, key, 0));
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_security_set_sec_agent)(clear, key, 0));
    EXPECT_TRUE(state("/module/securityAgent").empty());
}

TEST_F(ProxySystemTest, ThermalMitigationHasItsOrder)
{
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80));
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_thermal_mitig_exit)());
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_thermal_mitig_init)(4));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_thermal_mitig_init)(2));
    EXPECT_EQ(kModuleAlreadyThere, CALL(tarn_qcsapi_thermal_mitig_init)(2));
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80));
    EXPECT_EQ(kModuleAlreadyThere, CALL(tarn_qcsapi_thermal_mitig_start)(kWifi0, 90, 80));
    EXPECT_EQ(kModuleNoSuchObject, CALL(tarn_qcsapi_thermal_mitig_start)(kNobody, 90, 80));
    EXPECT_EQ(90, state("/radios/0/interfaces/0/thermalStart"));
    EXPECT_EQ(Json({"wifi0"}), state("/module/thermalInterfaces"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_thermal_mitig_exit)());
    EXPECT_EQ(kModuleSwitchedOff, CALL(tarn_qcsapi_thermal_mitig_stop)(kWifi0));
}

} // namespace simulator_test
