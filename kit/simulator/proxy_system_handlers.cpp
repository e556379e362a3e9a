// The proxy's calls that address the Wi-Fi module as a whole.
#include "handlers.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

// Sets one text of a limited number of them.
void setText(std::map<std::string, std::string>& texts, const std::string& key, const std::string& value)
{
    if (key.empty())
        throw Refused{Outcome::kInvalidValue};
    if (texts.count(key) == 0 && texts.size() >= kTableRoom)
        throw Refused{Outcome::kFull};
    texts[key] = value;
}

const std::string& textOf(const std::map<std::string, std::string>& texts, const std::string& key)
{
    const auto found = texts.find(key);
    if (found == texts.end())
        throw Refused{Outcome::kNotThere};
    return found->second;
}

void init(Model& model, Exchange&)
{
    model.module.initialised = true;
}

void getTemperatureInfo(Model& model, Exchange& exchange)
{
    exchange.setNumber("tempsens_ex", model.module.temperatureExternal);
    exchange.setNumber("tempsens_in", model.module.temperatureInternal);
    exchange.setNumber("temsens_bbic", model.module.temperatureBaseband);
}

void getStatus(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    const bool isUp = interface.settings.number("enabled") != 0 && Model::isReady(*interface.radio);
    exchange.setText("status", isUp ? "up" : "down");
}

void startProduction(Model& model, Exchange&)
{
    model.startProduction();
}

void isProductionDone(Model& model, Exchange& exchange)
{
    const bool isDone = model.module.productionStarted && model.now() >= model.module.productionDone;
    exchange.setNumber("is_start_prod_done", isDone ? 1 : 0);
}

// All radios of the module.
void enableRadios(Model& model, Exchange& exchange)
{
    for (Radio& radio : model.radios)
        if (radio.onModule)
            model.change(radio, {{"enabled", exchange.number("value")}});
}

void setCustomValue(Model& model, Exchange& exchange)
{
    setText(model.module.customValues, exchange.text("custom_key"), exchange.text("custom_value"));
}

void getCustomValue(Model& model, Exchange& exchange)
{
    exchange.setText("custom_value", textOf(model.module.customValues, exchange.text("custom_key")));
}

void runScript(Model& model, Exchange& exchange)
{
    const std::vector<std::string>& scripts = model.module.scripts;
    const std::string name = exchange.text("scriptname");
    if (std::find(scripts.begin(), scripts.end(), name) == scripts.end())
        throw Refused{Outcome::kNoSuchObject};
    model.module.lastScript = name;
    model.module.lastScriptParameter = exchange.text("param");
}

void getBootParameter(Model& model, Exchange& exchange)
{
    exchange.setText("param_value", textOf(model.module.bootParameters, exchange.text("param_name")));
}

// A parameter of an interface stands among the boot parameters under INTERFACE.NAME.
void updateParameter(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    const std::string name = exchange.text("param_name");
    if (name.empty())
        throw Refused{Outcome::kInvalidValue};
    setText(model.module.bootParameters, interface.name + "." + name, exchange.text("param_value"));
}

// Up to 16 pairs of name and value; only the one of that name if the caller gives one.
void setParameters(Model& model, Exchange& exchange)
{
    const Layout& entryLayout = layout("tarn_qcsapi_set_params.set_params.entry");
    const Interface& interface = interfaceOf(model, exchange);
    const std::string only = exchange.text("param_name");
    const Record block = exchange.record("set_params");
    const std::vector<std::uint8_t> entries = block.block("entries");
    const std::uint32_t number = block.number("number");
    if (number == 0 || number > entries.size() / entryLayout.size)
        throw Refused{Outcome::kInvalidValue};

    std::map<std::string, std::string> chosen;
    for (std::uint32_t i = 0; i < number; ++i)
    {
        const auto begin = entries.begin() + static_cast<std::ptrdiff_t>(i * entryLayout.size);
        const Record entry(entryLayout, {begin, begin + static_cast<std::ptrdiff_t>(entryLayout.size)});
        const std::string name = entry.text("name");
        if (name.empty())
            throw Refused{Outcome::kInvalidValue};
        if (only.empty() || name == only)
            chosen[interface.name + "." + name] = entry.text("value");
    }
    if (chosen.empty())
        throw Refused{Outcome::kNotThere};
    std::map<std::string, std::string> changed = model.module.bootParameters;
    for (const auto& [name, value] : chosen)
        setText(changed, name, value);
    model.module.bootParameters = std::move(changed);
}

// The proxy's own switch holds telnet open like any process.
void enableTelnet(Model& model, Exchange& exchange)
{
    constexpr std::uint32_t kProxy = 0;
    if (exchange.number("value") > 1)
        throw Refused{Outcome::kInvalidValue};
    if (exchange.number("value") != 0)
        model.module.telnetHolders.insert(kProxy);
    else
        model.module.telnetHolders.erase(kProxy);
}

void controlService(Model& model, Exchange& exchange)
{
    static const char* const kSettings[] = {"mauiEnabled", "smartWiFiEnabled", "dfsDaemon", "webServer"};
    enum Action : std::uint32_t
    {
        kStop,
        kStart,
        kRestart
    };
    const std::uint32_t service = exchange.number("service");
    const std::uint32_t action = exchange.number("action");
    if (service == 0 || service > std::size(kSettings))
        throw Refused{Outcome::kNoSuchObject};
    if (action > kRestart)
        throw Refused{Outcome::kInvalidValue};
    Settings& settings = model.module.settings;
    const char* setting = kSettings[service - 1];
    if (action != kRestart)
        settings.set(setting, action == kStart ? 1u : 0u);
    else if (settings.number(setting) == 0)
        throw Refused{Outcome::kSwitchedOff};
}

void getTimeSinceStart(Model& model, Exchange& exchange)
{
    exchange.setNumber("p_elapsed_time", model.secondsSinceStart());
}

void getFirmwareVersion(Model& model, Exchange& exchange)
{
    exchange.setText("firmware_version", model.module.firmwareVersion);
}

void getStatusMessage(Model&, Exchange& exchange)
{
    exchange.setText("err_msg", moduleStatusText(exchange.number("error_code")));
}

void setSecurityAgent(Model& model, Exchange& exchange)
{
    std::map<std::string, SecurityAgentEntry>& entries = model.module.securityAgent;
    const std::string action = exchange.text("action");
    const std::string key = exchange.text("key");
    if ((action != "set" && action != "clear") || key.empty())
        throw Refused{Outcome::kInvalidValue};
    if (action == "clear" && entries.erase(key) == 0)
        throw Refused{Outcome::kNotThere};
    if (action == "clear")
        return;
    if (entries.count(key) == 0 && entries.size() >= kTableRoom)
        throw Refused{Outcome::kFull};
    entries[key] = {action, exchange.number("value")};
}

// --- Thermal mitigation ------------------------------------------------------------------------------------------------------

void requireThermalMitigation(const Model& model)
{
    if (!model.module.thermalInitialised)
        throw Refused{Outcome::kSwitchedOff};
}

void initThermalMitigation(Model& model, Exchange& exchange)
{
    if (model.module.thermalInitialised)
        throw Refused{Outcome::kAlreadyThere};
    Model::change(model.module.settings, {{"thermalLevel", exchange.number("value")}});
    model.module.thermalInitialised = true;
}

void startThermalMitigation(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    requireThermalMitigation(model);
    if (model.module.thermalInterfaces.count(interface.name) != 0)
        throw Refused{Outcome::kAlreadyThere};
    model.change(interface, {{"thermalStart", exchange.number("value1")}, {"thermalStop", exchange.number("value2")}});
    model.module.thermalInterfaces.insert(interface.name);
}

void stopThermalMitigation(Model& model, Exchange& exchange)
{
    const Interface& interface = interfaceOf(model, exchange);
    requireThermalMitigation(model);
    if (model.module.thermalInterfaces.erase(interface.name) == 0)
        throw Refused{Outcome::kNotThere};
}

void exitThermalMitigation(Model& model, Exchange&)
{
    requireThermalMitigation(model);
    model.module.thermalInitialised = false;
    model.module.thermalInterfaces.clear();
}

} // namespace

void addProxySystemHandlers(HandlerTable& table)
{
    table.add("tarn_qcsapi_init", init);
    table.add("tarn_qcsapi_get_temperature_info", getTemperatureInfo);
    table.add("tarn_qcsapi_interface_get_status", getStatus);
    table.add("tarn_qcsapi_wifi_startprod", startProduction);
    table.add("tarn_qcsapi_is_startprod_done", isProductionDone);
    table.add("tarn_qcsapi_wifi_rfenable", enableRadios);
    table.add("tarn_qcsapi_set_custom_value", setCustomValue);
    table.add("tarn_qcsapi_get_custom_value", getCustomValue);
    table.add("tarn_qcsapi_wifi_run_script", runScript);
    table.add("tarn_qcsapi_bootcfg_get_parameter", getBootParameter);
    table.add("tarn_qcsapi_config_update_parameter", updateParameter);
    table.add("tarn_qcsapi_set_params", setParameters);
    table.add("tarn_qcsapi_telnet_enable", enableTelnet);
    table.add("tarn_qcsapi_service_control", controlService);
    table.add("tarn_qcsapi_system_get_time_since_start", getTimeSinceStart);
    table.add("tarn_qcsapi_firmware_get_version", getFirmwareVersion);
    table.add("tarn_qcsapi_errno_get_message", getStatusMessage);
    table.add("tarn_qcsapi_security_set_sec_agent", setSecurityAgent);
    table.add("tarn_qcsapi_thermal_mitig_init", initThermalMitigation);
    table.add("tarn_qcsapi_thermal_mitig_start", startThermalMitigation);
    table.add("tarn_qcsapi_thermal_mitig_stop", stopThermalMitigation);
    table.add("tarn_qcsapi_thermal_mitig_exit", exitThermalMitigation);
}

} // namespace tarn::simulator
