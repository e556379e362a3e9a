// The proxy's calls about one interface of the Wi-Fi module: WPS, DSCP maps, security, MAC address filter, making a BSS.
#include "handlers.h"

#include <algorithm>

namespace tarn::simulator
{

namespace
{

// --- WPS ---------------------------------------------------------------------------------------------------------------------

void getWpsState(Model& model, Exchange& exchange)
{
    static const char* const kStates[] = {"idle", "open", "expired", "cancelled"};
    const Interface& interface = interfaceOf(model, exchange);
    const bool isEnabled = interface.settings.number("wpsEnabled") != 0;
    exchange.setText("wps_state", isEnabled ? kStates[static_cast<std::uint32_t>(interface.window.status)] : "disabled");
}

void reportPin(Model& model, Exchange& exchange)
{
    model.openWpsWindow(interfaceOf(model, exchange), WpsMethod::kPin, exchange.text("wps_pin"));
}

void reportButtonPress(Model& model, Exchange& exchange)
{
    model.openWpsWindow(interfaceOf(model, exchange), WpsMethod::kButton, "");
}

void cancelWps(Model& model, Exchange& exchange)
{
    model.cancelWpsWindow(interfaceOf(model, exchange));
}

void disableWps(Model& model, Exchange& exchange)
{
    model.change(interfaceOf(model, exchange), {{"wpsEnabled", exchange.number("disable") != 0 ? 0u : 1u}});
}

void saveApPin(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    interface.savedApPin = interface.settings.text("wpsApPin");
}

std::uint32_t wpsParameterId(const Exchange& exchange)
{
    constexpr std::uint32_t kMostId = 32;
    const std::uint32_t id = exchange.number("param_id");
    if (id == 0 || id > kMostId)
        throw Refused{Outcome::kInvalidValue};
    return id;
}

void setWpsParameter(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    interface.wpsParameters[wpsParameterId(exchange)] = exchange.text("param_value");
}

void getWpsParameter(Model& model, Exchange& exchange)
{
    const std::map<std::uint32_t, std::string>& parameters = interfaceOf(model, exchange).wpsParameters;
    const auto found = parameters.find(wpsParameterId(exchange));
    if (found == parameters.end())
        throw Refused{Outcome::kNotThere};
    exchange.setText("param_value", found->second);
}

// --- DSCP maps ---------------------------------------------------------------------------------------------------------------

// One access category, 0 to 3, for each of the 64 code points.
DscpMap dscpMap(const Exchange& exchange)
{
    const std::vector<std::uint8_t> list = exchange.block("dscp_list");
    if (std::any_of(list.begin(), list.end(), [](std::uint8_t category) { return category > 3; }))
        throw Refused{Outcome::kInvalidValue};
    DscpMap map;
    std::copy(list.begin(), list.end(), map.list.begin());
    map.valueA = exchange.number("value_a");
    map.valueB = exchange.number("value_b");
    return map;
}

void setDscpTable(Model& model, Exchange& exchange)
{
    constexpr std::uint32_t kMostTableId = 7;
    const std::uint32_t id = exchange.number("table_id");
    if (id > kMostTableId)
        throw Refused{Outcome::kInvalidValue};
    model.module.dscpTables[id] = dscpMap(exchange);
}

void setDscpMap(Model& model, Exchange& exchange)
{
    Interface& interface = interfaceOf(model, exchange);
    interface.dscpMap = dscpMap(exchange);
}

// --- Stations and their filter -----------------------------------------------------------------------------------------------

void disassociate(Model& model, Exchange& exchange)
{
    model.kickOut(interfaceOf(model, exchange), exchange.address("mac"));
}

void setGroupLimit(Model& model, Exchange& exchange)
{
    constexpr std::uint32_t kMostGroup = 15;
    constexpr std::uint32_t kMostStations = 128;
    if (exchange.number("value1") > kMostGroup || exchange.number("value2") > kMostStations)
        throw Refused{Outcome::kInvalidValue};
    model.module.groupLimits[exchange.number("value1")] = exchange.number("value2");
}

// In a list of those who may come, to authorise is to add and to deny is to remove; in one of those who may not, the other way
// round.
void authorize(Interface& interface, const MacAddress& address, bool authorized)
{
    const auto mode = static_cast<MacFilterMode>(interface.settings.number("macFilterMode"));
    if (mode == MacFilterMode::kOff)
        throw Refused{Outcome::kSwitchedOff};
    if ((mode == MacFilterMode::kAllow) == authorized)
        Model::addAddress(interface.macFilter, address, kMacFilterRoom);
    else
        Model::removeAddress(interface.macFilter, address);
}

void authorizeAddress(Model& model, Exchange& exchange)
{
    authorize(interfaceOf(model, exchange), exchange.address("address_to_authorize"), true);
}

void denyAddress(Model& model, Exchange& exchange)
{
    authorize(interfaceOf(model, exchange), exchange.address("address_to_deny"), false);
}

void clearFilter(Model& model, Exchange& exchange)
{
    interfaceOf(model, exchange).macFilter.clear();
}

// --- The interface as a whole ------------------------------------------------------------------------------------------------

void applySecurity(Model& model, Exchange& exchange)
{
    model.applySecurity(interfaceOf(model, exchange));
}

void createBss(Model& model, Exchange& exchange)
{
    if (exchange.number("value") > 1)
        throw Refused{Outcome::kInvalidValue};
    model.createInterface(exchange.text("ifname"), exchange.number("value") != 0);
}

} // namespace

void addProxyInterfaceHandlers(HandlerTable& table)
{
    table.add("tarn_qcsapi_wps_get_state", getWpsState);
    table.add("tarn_qcsapi_wps_registrar_report_pin", reportPin);
    table.add("tarn_qcsapi_wps_registrar_report_button_press", reportButtonPress);
    table.add("tarn_qcsapi_wps_cancel", cancelWps);
    table.add("tarn_qcsapi_wifi_disable_wps", disableWps);
    table.add("tarn_qcsapi_wps_save_ap_pin", saveApPin);
    table.add("tarn_qcsapi_wps_set_param", setWpsParameter);
    table.add("tarn_qcsapi_wps_get_param", getWpsParameter);
    table.add("tarn_qcsapi_wifi_set_dscp_ac_table", setDscpTable);
    table.add("tarn_qcsapi_wifi_set_dscp_ac_map", setDscpMap);
    table.add("tarn_qcsapi_wifi_disassociate_sta", disassociate);
    table.add("tarn_qcsapi_wifi_set_bss_assoc_limit", setGroupLimit);
    table.add("tarn_qcsapi_wifi_authorize_mac_address", authorizeAddress);
    table.add("tarn_qcsapi_wifi_deny_mac_address", denyAddress);
    table.add("tarn_qcsapi_wifi_clear_mac_address_filters", clearFilter);
    table.add("tarn_qcsapi_wifi_apply_security_config", applySecurity);
    table.add("tarn_qcsapi_wifi_create_bss_with_ifstate", createBss);
}

} // namespace tarn::simulator
