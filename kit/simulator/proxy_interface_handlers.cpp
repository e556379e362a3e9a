// The proxy's calls about one interface of the Wi-Fi module: WPS, DSCP maps, security, MAC address filter, making a BSS.
#include "base/quote.h"
#include "handlers.h"

namespace tarn::simulator
{

namespace
{

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
        throw Refused{ReplyStatus::kInvalidValue, "dscp_list has a category that there is not; expected 0 to 3"};
    map.valueA = request.number("value_a");
    map.valueB = request.number("value_b");
    return map;
}

// While only listed addresses are admitted, to authorise is to add and to deny is to remove; while listed addresses are
// excluded, the reverse.
void authorize(Model& model, Interface& interface, const MacAddress& address, bool authorized)
{
    const auto mode = static_cast<MacFilterMode>(interface.settings.macFilterMode);
    if (mode == MacFilterMode::kOff)
        throw Refused{ReplyStatus::kSwitchedOff, "the MAC address filter of interface " + interface.name + " is off"};
    if ((mode == MacFilterMode::kAllow) == authorized)
        model.add(interface, &Interface::macFilter, address, kMacFilterRoom);
    else
        model.remove(interface, &Interface::macFilter, address);
}

} // namespace

void addProxyInterfaceHandlers(HandlerTable& table)
{
    table.add({

        // WPS.
        {"tarn_qcsapi_wps_get_state",
         [](Model& model, CommandRequest& request)
         {
             static const char* const kStates[] = {"idle", "open", "expired", "cancelled"};
             const Interface& interface = interfaceOf(model, request);
             const bool isEnabled = interface.settings.wpsEnabled != 0;
             request.setText("wps_state",
                             isEnabled ? kStates[static_cast<std::uint32_t>(interface.window.status)] : "disabled");
         }},
        {"tarn_qcsapi_wps_registrar_report_pin", [](Model& model, CommandRequest& request)
         { model.openWpsWindow(interfaceOf(model, request), WpsMethod::kPin, request.text("wps_pin")); }},
        {"tarn_qcsapi_wps_registrar_report_button_press", [](Model& model, CommandRequest& request)
         { model.openWpsWindow(interfaceOf(model, request), WpsMethod::kButton, ""); }},
        {"tarn_qcsapi_wps_cancel",
         [](Model& model, CommandRequest& request) { model.cancelWpsWindow(interfaceOf(model, request)); }},
        {"tarn_qcsapi_wifi_disable_wps",
         [](Model& model, CommandRequest& request)
         {
             const std::uint32_t enabled = request.number("disable") != 0 ? 0 : 1;
             model.change(interfaceOf(model, request),
                          Changes<InterfaceSettings>().set(&InterfaceSettings::wpsEnabled, enabled));
         }},
        {"tarn_qcsapi_wps_save_ap_pin",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             interface.savedApPin = interface.settings.wpsApPin;
         }},
        {"tarn_qcsapi_wps_set_param",
         [](Model& model, CommandRequest& request) {
             put(interfaceOf(model, request), &Interface::wpsParameters, request.number("param_id"),
                 request.text("param_value"));
         }},
        {"tarn_qcsapi_wps_get_param",
         [](Model& model, CommandRequest& request)
         {
             const std::map<std::uint32_t, std::string>& parameters = interfaceOf(model, request).wpsParameters;
             const auto found = parameters.find(request.number("param_id"));
             if (found == parameters.end())
                 throw Refused{ReplyStatus::kNotThere,
                               "WPS parameter " + std::to_string(request.number("param_id")) + " has not been set"};
             request.setText("param_value", found->second);
         }},

        // DSCP maps.
        {"tarn_qcsapi_wifi_set_dscp_ac_table", [](Model& model, CommandRequest& request)
         { put(model.module, &Module::dscpTables, request.number("table_id"), dscpMap(request)); }},
        {"tarn_qcsapi_wifi_set_dscp_ac_map",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             interface.dscpMap = dscpMap(request);
         }},

        // Stations and their filter.
        {"tarn_qcsapi_wifi_disassociate_sta",
         [](Model& model, CommandRequest& request) { model.kickOut(interfaceOf(model, request), request.address("mac")); }},
        {"tarn_qcsapi_wifi_set_bss_assoc_limit",
         [](Model& model, CommandRequest& request)
         {
             put(model.module, &Module::groupLimits, request.number("value1"), request.number("value2"));
             model.settle();
         }},
        {"tarn_qcsapi_wifi_authorize_mac_address", [](Model& model, CommandRequest& request)
         { authorize(model, interfaceOf(model, request), request.address("address_to_authorize"), true); }},
        {"tarn_qcsapi_wifi_deny_mac_address", [](Model& model, CommandRequest& request)
         { authorize(model, interfaceOf(model, request), request.address("address_to_deny"), false); }},
        {"tarn_qcsapi_wifi_clear_mac_address_filters",
         [](Model& model, CommandRequest& request)
         {
             Interface& interface = interfaceOf(model, request);
             interface.macFilter.clear();
             model.settle(interface);
         }},

        // The interface as a whole.
        {"tarn_qcsapi_wifi_set_ieee80211r_mobility_domain",
         [](Model& model, CommandRequest& request)
         {
             const std::optional<MobilityDomain> domain = parseMobilityDomain(request.text("value"));
             Interface& interface = interfaceOf(model, request);
             if (!domain)
                 throw Refused{ReplyStatus::kInvalidValue, "mobility domain " + base::inQuotes(request.text("value")) +
                                                               "; expected four hexadecimal digits"};
             interface.settings.mobilityDomain = *domain;
         }},
        {"tarn_qcsapi_wifi_apply_security_config",
         [](Model& model, CommandRequest& request) { model.applySecurity(interfaceOf(model, request)); }},
        {"tarn_qcsapi_wifi_create_bss_with_ifstate",
         [](Model& model, CommandRequest& request) { model.createInterface(request.text("ifname"), request.flag("value")); }},
    });
}

} // namespace tarn::simulator
