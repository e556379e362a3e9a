// The proxy's calls that address the Wi-Fi module as a whole.
#include "base/join.h"
#include "base/quote.h"
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

// Sets the text of a key in a table of limited size.
void setText(std::map<std::string, std::string>& texts, const std::string& key, const std::string& value)
{
    if (key.empty())
        throw Refused{ReplyStatus::kInvalidValue, "an empty name"};
    requireRoom(texts, key);
    texts[key] = value;
}

const std::string& textOf(const std::map<std::string, std::string>& texts, const std::string& key)
{
    const auto found = texts.find(key);
    if (found == texts.end())
        throw Refused{ReplyStatus::kNotThere, base::inQuotes(key) + " has not been set"};
    return found->second;
}

void requireThermalMitigation(const Model& model)
{
    if (!model.module.thermalInitialised)
        throw Refused{ReplyStatus::kSwitchedOff, "thermal mitigation has not been initialised"};
}

} // namespace

void addProxySystemHandlers(HandlerTable& table)
{
    table.add({
        {"tarn_qcsapi_init", [](Model& model, CommandRequest&) { model.module.initialised = true; }},
        {"tarn_qcsapi_get_temperature_info",
         [](Model& model, CommandRequest& request)
         {
             request.setNumber("tempsens_ex", model.module.temperatureExternal);
             request.setNumber("tempsens_in", model.module.temperatureInternal);
             request.setNumber("temsens_bbic", model.module.temperatureBaseband);
         }},
        {"tarn_qcsapi_interface_get_status",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             request.setText("status", interface.isUp() ? "up" : "down");
         }},
        {"tarn_qcsapi_wifi_startprod", [](Model& model, CommandRequest&) { model.startProduction(); }},
        {"tarn_qcsapi_is_startprod_done", [](Model& model, CommandRequest& request)
         { request.setNumber("is_start_prod_done", model.isProductionDone() ? 1 : 0); }},
        // All radios of the module.
        {"tarn_qcsapi_wifi_rfenable",
         [](Model& model, CommandRequest& request)
         {
             std::vector<Radio*> ofModule;
             for (Radio& radio : model.radios)
                 if (radio.onModule)
                     ofModule.push_back(&radio);
             model.change(ofModule, Changes<RadioSettings>().set(&RadioSettings::enabled, request.number("value")));
         }},
        {"tarn_qcsapi_set_custom_value", [](Model& model, CommandRequest& request)
         { setText(model.module.customValues, request.text("custom_key"), request.text("custom_value")); }},
        {"tarn_qcsapi_get_custom_value", [](Model& model, CommandRequest& request)
         { request.setText("custom_value", textOf(model.module.customValues, request.text("custom_key"))); }},
        {"tarn_qcsapi_wifi_run_script",
         [](Model& model, CommandRequest& request)
         {
             const std::string name = request.text("scriptname");
             if (!contains(model.module.scripts, name))
                 throw Refused{ReplyStatus::kNoSuchObject,
                               "script " + base::inQuotes(name) + "; there are: " + base::join(model.module.scripts)};
             model.module.lastScript = name;
             model.module.lastScriptParameter = request.text("param");
         }},
        {"tarn_qcsapi_bootcfg_get_parameter", [](Model& model, CommandRequest& request)
         { request.setText("param_value", textOf(model.module.bootParameters, request.text("param_name"))); }},
        // A parameter of an interface is a boot parameter with the name INTERFACE.NAME.
        {"tarn_qcsapi_config_update_parameter",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             const std::string name = request.text("param_name");
             if (name.empty())
                 throw Refused{ReplyStatus::kInvalidValue, "an empty name"};
             setText(model.module.bootParameters, interface.name + "." + name, request.text("param_value"));
         }},
        // Up to 16 pairs of name and value; if the caller gives a name, only the pair of that name.
        {"tarn_qcsapi_set_params",
         [](Model& model, CommandRequest& request)
         {
             constexpr std::uint32_t kMostEntries = 16;
             const Interface& interface = interfaceOf(model, request);
             const std::string only = request.text("param_name");
             const Record block = request.record("set_params");
             const std::uint32_t number = block.number("number");
             if (number == 0 || number > kMostEntries)
                 throw Refused{ReplyStatus::kInvalidValue,
                               std::to_string(number) + " entries; expected 1 to " + std::to_string(kMostEntries)};

             std::map<std::string, std::string> chosen;
             for (std::size_t i = 0; i < number; ++i)
             {
                 const std::string entry = "entries[" + std::to_string(i) + "].";
                 const std::string name = block.text(entry + "name");
                 if (name.empty())
                     throw Refused{ReplyStatus::kInvalidValue, "entry " + std::to_string(i) + " has an empty name"};
                 if (only.empty() || name == only)
                     chosen[interface.name + "." + name] = block.text(entry + "value");
             }
             if (chosen.empty())
                 throw Refused{ReplyStatus::kNotThere, "no entry has the name " + base::inQuotes(only)};
             std::map<std::string, std::string> changed = model.module.bootParameters;
             for (const auto& [name, value] : chosen)
                 setText(changed, name, value);
             model.module.bootParameters = std::move(changed);
         }},
        // The proxy's own switch counts as one more process.
        {"tarn_qcsapi_telnet_enable",
         [](Model& model, CommandRequest& request)
         {
             constexpr std::uint32_t kProxy = 0;
             if (request.flag("value"))
                 model.module.telnetHolders.insert(kProxy);
             else
                 model.module.telnetHolders.erase(kProxy);
         }},
        {"tarn_qcsapi_service_control",
         [](Model& model, CommandRequest& request)
         {
             static constexpr std::uint32_t ModuleSettings::*kSwitches[] = {
                 &ModuleSettings::mauiEnabled, &ModuleSettings::smartWiFiEnabled, &ModuleSettings::dfsDaemon,
                 &ModuleSettings::webServer};
             enum Action : std::uint32_t
             {
                 kStop,
                 kStart,
                 kRestart
             };
             const std::uint32_t service = request.number("service");
             const std::uint32_t action = request.number("action");
             if (service == 0 || service > std::size(kSwitches))
                 throw Refused{ReplyStatus::kNoSuchObject, "service " + std::to_string(service) + "; there are 1 to " +
                                                               std::to_string(std::size(kSwitches))};
             if (action > kRestart)
                 throw Refused{ReplyStatus::kInvalidValue,
                               "action " + std::to_string(action) + "; expected 0 stop, 1 start or 2 restart"};
             std::uint32_t& isOn = model.module.settings.*kSwitches[service - 1];
             if (action != kRestart)
                 isOn = action == kStart ? 1 : 0;
             else if (isOn == 0)
                 throw Refused{ReplyStatus::kSwitchedOff, "service " + std::to_string(service) + " is stopped"};
         }},
        {"tarn_qcsapi_system_get_time_since_start",
         [](Model& model, CommandRequest& request) { request.setNumber("p_elapsed_time", model.secondsSinceStart()); }},
        {"tarn_qcsapi_firmware_get_version",
         [](Model& model, CommandRequest& request) { request.setText("firmware_version", model.module.firmwareVersion); }},
        {"tarn_qcsapi_errno_get_message",
         [](Model& model, CommandRequest& request)
         {
             const layout::Status* const status = model.layout.used().status("QTN_RPC_PROXY", request.number("error_code"));
             if (status == nullptr)
                 throw Refused{ReplyStatus::kNoSuchObject,
                               "no status has the number " +
                                   std::to_string(static_cast<std::int32_t>(request.number("error_code")))};
             request.setText("err_msg", status->text);
         }},
        {"tarn_qcsapi_security_set_sec_agent",
         [](Model& model, CommandRequest& request)
         {
             std::map<std::string, std::uint32_t>& entries = model.module.securityAgent;
             const std::string action = request.text("action");
             const std::string key = request.text("key");
             if ((action != "set" && action != "clear") || key.empty())
                 throw Refused{ReplyStatus::kInvalidValue, "action " + base::inQuotes(action) + " of key " +
                                                               base::inQuotes(key) +
                                                               "; expected set or clear, of a key that is not empty"};
             if (action == "clear" && entries.erase(key) == 0)
                 throw Refused{ReplyStatus::kNotThere, "key " + base::inQuotes(key) + " has not been set"};
             if (action == "clear")
                 return;
             requireRoom(entries, key);
             entries[key] = request.number("value");
         }},

        // Thermal mitigation.
        {"tarn_qcsapi_thermal_mitig_init",
         [](Model& model, CommandRequest& request)
         {
             if (model.module.thermalInitialised)
                 throw Refused{ReplyStatus::kAlreadyThere, "thermal mitigation has been initialised already"};
             assign(model.module.settings, &ModuleSettings::thermalLevel, request.number("value"));
             model.module.thermalInitialised = true;
         }},
        {"tarn_qcsapi_thermal_mitig_start",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             requireThermalMitigation(model);
             if (model.module.thermalInterfaces.count(interface.name) != 0)
                 throw Refused{ReplyStatus::kAlreadyThere,
                               "thermal mitigation of interface " + interface.name + " has been started already"};
             model.change(interface, Changes<InterfaceSettings>()
                                         .set(&InterfaceSettings::thermalStart, request.number("value1"))
                                         .set(&InterfaceSettings::thermalStop, request.number("value2")));
             model.module.thermalInterfaces.insert(interface.name);
         }},
        {"tarn_qcsapi_thermal_mitig_stop",
         [](Model& model, CommandRequest& request)
         {
             const Interface& interface = interfaceOf(model, request);
             requireThermalMitigation(model);
             if (model.module.thermalInterfaces.erase(interface.name) == 0)
                 throw Refused{ReplyStatus::kNotThere,
                               "thermal mitigation of interface " + interface.name + " has not been started"};
         }},
        {"tarn_qcsapi_thermal_mitig_exit",
         [](Model& model, CommandRequest&)
         {
             requireThermalMitigation(model);
             model.module.thermalInitialised = false;
             model.module.thermalInterfaces.clear();
         }},
    });
}

} // namespace tarn::simulator
