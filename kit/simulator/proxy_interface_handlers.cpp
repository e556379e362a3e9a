// The proxy's calls about one interface of the Wi-Fi module: WPS, DSCP maps, security, MAC address filter, making a BSS.
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

// --- WPS ---------------------------------------------------------------------------------------------------------------------

void getWpsState(Model& model, CommandRequest& request)
{
    static const char* const kStates[] = {"idle", "open", "expired", "cancelled"};
    const Interface& interface = interfaceOf(model, request);
    const bool isEnabled = interface.settings.wpsEnabled != 0;
    request.setText("wps_state", isEnabled ? kStates[static_cast<std::uint32_t>(interface.window.status)] : "disabled");
}

void reportPin(Model& model, CommandRequest& request)
{
    model.openWpsWindow(interfaceOf(model, request), WpsMethod::kPin, request.text("wps_pin"));
}

void reportButtonPress(Model& model, CommandRequest& request)
{
    model.openWpsWindow(interfaceOf(model, request), WpsMethod::kButton, "");
}

void cancelWps(Model& model, CommandRequest& request)
{
    model.cancelWpsWindow(interfaceOf(model, request));
}

void disableWps(Model& model, CommandRequest& request)
{
    interfaceOf(model, request).settings.wpsEnabled = request.number("disable") != 0 ? 0 : 1;
}

void saveApPin(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    interface.savedApPin = interface.settings.wpsApPin;
}

void setWpsParameter(Model& model, CommandRequest& request)
{
    put(interfaceOf(model, request), &Interface::wpsParameters, request.number("param_id"), request.text("param_value"));
}

void getWpsParameter(Model& model, CommandRequest& request)
{
    const std::map<std::uint32_t, std::string>& parameters = interfaceOf(model, request).wpsParameters;
    const auto found = parameters.find(request.number("param_id"));
    if (found == parameters.end())
        throw Refused{ReplyStatus::kNotThere};
    request.setText("param_value", found->second);
}

// --- DSCP maps ---------------------------------------------------------------------------------------------------------------

DscpMap dscpMap(const CommandRequest& request)
{
    const Record list = request.record("dscp_list");
    DscpMap map;
    for (std::size_t i = 0; i < map.list.size(); ++i)
    {
        const std::uint32_t category = list.number("categories[" + std::to_string(i) + "]");
        map.list.at(i) = static_cast<std::uint8_t>(category);
    }
    if (!descriptionOf<DscpMap>().accepts(map))
        throw Refused{ReplyStatus::kInvalidValue};
    map.valueA = request.number("value_a");
    map.valueB = request.number("value_b");
    return map;
}

void setDscpTable(Model& model, CommandRequest& request)
{
    put(model.module, &Module::dscpTables, request.number("table_id"), dscpMap(request));
}

void setDscpMap(Model& model, CommandRequest& request)
{
    Interface& interface = interfaceOf(model, request);
    interface.dscpMap = dscpMap(request);
}

// --- Stations and their filter -----------------------------------------------------------------------------------------------

void disassociate(Model& model, CommandRequest& request)
{
    model.kickOut(interfaceOf(model, request), request.address("mac"));
}

void setGroupLimit(Model& model, CommandRequest& request)
{
    put(model.module, &Module::groupLimits, request.number("value1"), request.number("value2"));
}

// While only listed addresses are admitted, to authorise is to add and to deny is to remove; while listed addresses are
// excluded, the reverse.
void authorize(Interface& interface, const MacAddress& address, bool authorized)
{
    const auto mode = static_cast<MacFilterMode>(interface.settings.macFilterMode);
    if (mode == MacFilterMode::kOff)
        throw Refused{ReplyStatus::kSwitchedOff};
    if ((mode == MacFilterMode::kAllow) == authorized)
        Model::addAddress(interface.macFilter, address, kMacFilterRoom);
    else
        Model::removeAddress(interface.macFilter, address);
}

void authorizeAddress(Model& model, CommandRequest& request)
{
    authorize(interfaceOf(model, request), request.address("address_to_authorize"), true);
}

void denyAddress(Model& model, CommandRequest& request)
{
    authorize(interfaceOf(model, request), request.address("address_to_deny"), false);
}

void clearFilter(Model& model, CommandRequest& request)
{
    interfaceOf(model, request).macFilter.clear();
}

// --- The interface as a whole ------------------------------------------------------------------------------------------------

void setMobilityDomain(Model& model, CommandRequest& request)
{
    const std::optional<MobilityDomain> domain = parseMobilityDomain(request.text("value"));
    Interface& interface = interfaceOf(model, request);
    if (!domain)
        throw Refused{ReplyStatus::kInvalidValue};
    interface.settings.mobilityDomain = *domain;
}

void applySecurity(Model& model, CommandRequest& request)
{
    interfaceOf(model, request).applySecurity();
}

void createBss(Model& model, CommandRequest& request)
{
    model.createInterface(request.text("ifname"), request.flag("value"));
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
    table.add("tarn_qcsapi_wifi_set_ieee80211r_mobility_domain", setMobilityDomain);
    table.add("tarn_qcsapi_wifi_apply_security_config", applySecurity);
    table.add("tarn_qcsapi_wifi_create_bss_with_ifstate", createBss);
}

} // namespace tarn::simulator
