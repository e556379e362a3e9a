// The regular commands, which only set or read settings: one row for each argument. What follows from a change (events,
// stations that leave) is up to the model.
#include "handlers.h"

#include <cstring>
#include <utility>
#include <variant>
#include <vector>

namespace tarn::simulator
{

namespace
{

// A setting that an input sets and an output reads. Rows of one function are adjacent and take effect together.
template <typename Settings>
struct StoredSetting
{
    const char* function;
    const char* argument;
    std::variant<std::uint32_t Settings::*, std::string Settings::*> member;
};

constexpr StoredSetting<ServiceSettings> kServiceSettings[] = {
    {"TarnGetLogLevel", "level", &ServiceSettings::logLevel},
    {"TarnSetLogLevel", "level", &ServiceSettings::logLevel},
};

constexpr StoredSetting<RadioSettings> kRadioSettings[] = {
    {"TarnGetRadioCurrentTransmitPowerLevel", "power", &RadioSettings::transmitPower},
};

constexpr StoredSetting<RadioSettings> kModuleRadioSettings[] = {
    {"TarnGetRadioQuantennaQhopState", "enable", &RadioSettings::qhop},
    {"TarnSetRadioQuantennaQhopEnable", "enable", &RadioSettings::qhop},
    {"TarnSetQuantennaTdwrChannelsEnable", "enable", &RadioSettings::tdwrChannels},
    {"tarn_qcsapi_wifi_get_channel", "channel", &RadioSettings::channel},
    {"tarn_qcsapi_wifi_set_channel", "channel", &RadioSettings::channel},
    {"tarn_qcsapi_wifi_get_bw", "bandwidth", &RadioSettings::bandwidth},
    {"tarn_qcsapi_wifi_set_bw", "bandwidth", &RadioSettings::bandwidth},
    {"tarn_qcsapi_radio_rfenable", "value", &RadioSettings::enabled},
    {"tarn_qcsapi_wifi_get_phy_mode", "p_wifi_phy_mode", &RadioSettings::phyMode},
    {"tarn_qcsapi_wifi_set_phy_mode", "new_phy_mode", &RadioSettings::phyMode},
    {"tarn_qcsapi_wifi_get_scs_status", "p_scs_status", &RadioSettings::scs},
    {"tarn_qcsapi_wifi_scs_enable", "value", &RadioSettings::scs},
    {"tarn_qcsapi_wifi_set_current_tx_power_level", "value", &RadioSettings::transmitPower},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", "value1", &RadioSettings::nacMonitor},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", "value2", &RadioSettings::nacMonitorPeriod},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", "value3", &RadioSettings::nacMonitorOnTime},
    {"tarn_qcsapi_wifi_disable_11b", "value", &RadioSettings::disable11b},
    {"tarn_qcsapi_wifi_set_enable_mu", "value", &RadioSettings::multiUser},
    {"tarn_qcsapi_wifi_set_legacy_bbic", "value", &RadioSettings::legacyBaseband},
    {"tarn_qcsapi_wifi_set_wea_cac_en", "value", &RadioSettings::weatherCac},
};

constexpr StoredSetting<ModuleSettings> kModuleSettings[] = {
    {"TarnGetRadioQuantennaCarrierId", "id", &ModuleSettings::carrierId},
    {"TarnSetQuantennaATM", "value", &ModuleSettings::atm},
    {"TarnGetQuantennaATMState", "state", &ModuleSettings::atm},
    {"TarnSetQuantennaAtmActuate", "value", &ModuleSettings::atmActuate},
    {"TarnGetQuantennaAtmActuateState", "state", &ModuleSettings::atmActuate},
    {"TarnSetQuantennaDFSDaemon", "value", &ModuleSettings::dfsDaemon},
    {"TarnGetQuantennaDFSDaemonState", "state", &ModuleSettings::dfsDaemon},
    {"TarnGetQuantennaMauiState", "enable", &ModuleSettings::mauiEnabled},
    {"TarnSetQuantennaMauiEnable", "enable", &ModuleSettings::mauiEnabled},
    {"TarnSetQuantennaRPCDebugEnable", "enable", &ModuleSettings::debug},
    {"TarnGetQuantennaSmartWiFiState", "enable", &ModuleSettings::smartWiFiEnabled},
    {"TarnSetQuantennaSmartWiFiEnable", "enable", &ModuleSettings::smartWiFiEnabled},
    {"TarnGetQuantennaSmartWiFiQslCfgSyncing", "state", &ModuleSettings::qslCfgSyncing},
    {"TarnSetQuantennaSmartWiFiQslCfgSyncing", "value", &ModuleSettings::qslCfgSyncing},
    {"tarn_qcsapi_debug", "value", &ModuleSettings::debug},
    {"tarn_qcsapi_get_carrier_id", "p_carrier_id", &ModuleSettings::carrierId},
    {"tarn_qcsapi_set_carrier_id", "carrier_id", &ModuleSettings::carrierId},
    {"tarn_qcsapi_set_carrier_id", "value", &ModuleSettings::carrierIdKept},
    {"tarn_qcsapi_pm_set_mode", "mode", &ModuleSettings::powerMode},
    {"tarn_qcsapi_regulatory_apply_tx_power_cap", "value", &ModuleSettings::transmitPowerCap},
    {"tarn_qtn_mirror_get_mirror_status", "status", &ModuleSettings::mirror},
    {"tarn_qtn_mirror_set_mirror_enable", "enable", &ModuleSettings::mirror},
};

constexpr StoredSetting<InterfaceSettings> kInterfaceSettings[] = {
    {"TarnGetSsidOPXRoamingState", "enable", &InterfaceSettings::roaming},
    {"TarnSetSsidOPXRoamingEnable", "enable", &InterfaceSettings::roaming},
    {"TarnSetAccessPointSecurityExCfg", "value1", &InterfaceSettings::groupKeyInterval},
    {"TarnSetAccessPointSecurityExCfg", "value2", &InterfaceSettings::pmf},
    {"TarnGetAccessPointMacFilterMode", "mode", &InterfaceSettings::macFilterMode},
    {"TarnSetAccessPointMacFilterMode", "mode", &InterfaceSettings::macFilterMode},
    {"tarn_qcsapi_interface_enable", "value", &InterfaceSettings::enabled},
    {"tarn_qcsapi_wifi_set_SSID", "ssid", &InterfaceSettings::ssid},
    {"tarn_qcsapi_wifi_set_ieee80211r", "value", &InterfaceSettings::roaming},
    {"tarn_qcsapi_wps_upnp_enable", "value", &InterfaceSettings::wpsUpnp},
    {"tarn_qcsapi_wps_enable_ap_pin", "value", &InterfaceSettings::wpsApPinEnabled},
    {"tarn_qcsapi_wps_set_ap_pin", "wps_pin", &InterfaceSettings::wpsApPin},
    {"tarn_qcsapi_wps_set_configured_state", "state", &InterfaceSettings::wpsConfigured},
    {"tarn_qcsapi_wifi_set_mcs_rate", "new_mcs_rate", &InterfaceSettings::mcsRate},
    {"tarn_qcsapi_wifi_set_rts_threshold", "value", &InterfaceSettings::rtsThreshold},
    {"tarn_qcsapi_wifi_set_beacon_interval", "value", &InterfaceSettings::beaconInterval},
    {"tarn_qcsapi_wifi_set_dtim", "value", &InterfaceSettings::dtim},
    {"tarn_qcsapi_wifi_set_assoc_limit", "value", &InterfaceSettings::assocLimit},
    {"tarn_qcsapi_wifi_set_tx_amsdu", "value", &InterfaceSettings::txAmsdu},
    {"tarn_qcsapi_wifi_set_airfair", "value", &InterfaceSettings::airfair},
    {"tarn_qcsapi_wifi_set_security_defer_mode", "value", &InterfaceSettings::securityDeferMode},
    {"tarn_qcsapi_wifi_set_SSID_group_id", "value", &InterfaceSettings::ssidGroupId},
    {"tarn_qcsapi_wifi_set_priority", "priority", &InterfaceSettings::priority},
    {"tarn_qcsapi_wifi_set_intra_bss_isolate", "value", &InterfaceSettings::intraBssIsolate},
    {"tarn_qcsapi_wifi_set_bss_isolate", "value", &InterfaceSettings::bssIsolate},
    {"tarn_qcsapi_wifi_set_mac_address_filtering", "value", &InterfaceSettings::macFilterMode},
    {"tarn_qcsapi_wifi_get_mac_address_filtering", "current_mac_address_filtering", &InterfaceSettings::macFilterMode},
    {"tarn_qcsapi_wifi_vlan_config", "value1", &InterfaceSettings::vlanCommand},
    {"tarn_qcsapi_wifi_vlan_config", "value2", &InterfaceSettings::vlanId},
};

// Of the interface too, but applied at once or later as its securityDeferMode says.
constexpr StoredSetting<InterfaceSettings> kSecuritySettings[] = {
    {"tarn_qcsapi_wifi_set_beacon_type", "p_new_beacon", &InterfaceSettings::beaconType},
    {"tarn_qcsapi_wifi_set_WPA_authentication_mode", "authentication_mode", &InterfaceSettings::authenticationMode},
    {"tarn_qcsapi_wifi_set_WPA_encryption_modes", "encryption_modes", &InterfaceSettings::encryptionModes},
    {"tarn_qcsapi_wifi_set_key_passphrase", "passphrase", &InterfaceSettings::passphrase},
    {"tarn_qcsapi_wifi_set_group_key_interval", "value", &InterfaceSettings::groupKeyInterval},
    {"tarn_qcsapi_wifi_set_pmf", "value", &InterfaceSettings::pmf},
};

// Numbers stored under a number, in a table of an interface.
struct StoredEntry
{
    const char* function;
    const char* key;
    const char* value;
    NumberTable Interface::*table;
};

constexpr StoredEntry kStoredEntries[] = {
    {"tarn_qcsapi_wifi_set_option", "option", "value", &Interface::options},
    {"tarn_qcsapi_wifi_set_extender_params", "parameter", "value", &Interface::extenderParameters},
    {"tarn_qcsapi_wifi_set_parameter", "param", "value", &Interface::parameters},
    {"tarn_qcsapi_wifi_get_parameter", "param", "p_value", &Interface::parameters},
    {"tarn_qcsapi_wifi_set_ac_agg_hold_time", "value1", "value2", &Interface::aggregationHoldTimes},
};

template <typename Value>
Value argumentOf(const CommandRequest& request, const char* argument)
{
    if constexpr (std::is_same_v<Value, std::string>)
        return request.text(argument);
    else
        return request.number(argument);
}

void answer(CommandRequest& request, const char* argument, std::uint32_t value)
{
    request.setNumber(argument, value);
}

void answer(CommandRequest& request, const char* argument, const std::string& value)
{
    request.setText(argument, value);
}

template <typename Settings, typename Change>
void handle(const Settings& settings, Change change, CommandRequest& request, const std::vector<StoredSetting<Settings>>& rows)
{
    Changes<Settings> changes;
    bool isChange = false;
    const auto setOrRead = [&](const char* argument, auto member)
    {
        using Value = std::decay_t<decltype(settings.*member)>;
        if (request.command().argument(argument)->direction == contract::Direction::kOut)
            return answer(request, argument, settings.*member);
        changes.set(member, argumentOf<Value>(request, argument));
        isChange = true;
    };
    for (const StoredSetting<Settings>& row : rows)
        std::visit([&](auto member) { setOrRead(row.argument, member); }, row.member);
    if (isChange)
        change(changes);
}

// `owner` finds the object that has the settings, `change` changes it.
template <typename Settings, std::size_t size, typename Owner, typename Change>
void add(HandlerTable& table, const StoredSetting<Settings> (&all)[size], Owner owner, Change change)
{
    std::vector<StoredSetting<Settings>> rows;
    for (const StoredSetting<Settings>& row : all)
    {
        rows.push_back(row);
        const bool isLast = &row == std::end(all) - 1 || std::strcmp((&row + 1)->function, row.function) != 0;
        if (!isLast)
            continue;
        table.add(row.function,
                  [=, rows = std::exchange(rows, {})](Model& model, CommandRequest& request)
                  {
                      auto& object = owner(model, request);
                      handle(
                          object.settings, [&](const Changes<Settings>& changes) { change(model, object, changes); }, request,
                          rows);
                  });
    }
}

void handle(Model& model, CommandRequest& request, const StoredEntry& row)
{
    Interface& interface = interfaceOf(model, request);
    const std::uint32_t key = request.number(row.key);
    if (request.command().argument(row.value)->direction == contract::Direction::kIn)
        return put(interface, row.table, key, request.number(row.value));
    const NumberTable& table = interface.*row.table;
    request.setNumber(row.value, table.count(key) != 0 ? table.at(key) : 0);
}

} // namespace

void addStoredSettings(HandlerTable& table)
{
    const auto store = [](Model&, auto& object, const auto& changes) { changes.applyTo(object.settings); };
    const auto changeRadio = [](Model& model, Radio& radio, const Changes<RadioSettings>& changes)
    { model.change(radio, changes); };
    const auto changeInterface = [](Model& model, Interface& interface, const Changes<InterfaceSettings>& changes)
    { model.change(interface, changes); };
    const auto changeSecurity = [](Model& model, Interface& interface, const Changes<InterfaceSettings>& changes)
    { model.changeSecurity(interface, changes); };
    add(
        table, kServiceSettings, [](Model& model, const CommandRequest&) -> Service& { return model.service; }, store);
    const auto changeModule = [](Model& model, Module&, const Changes<ModuleSettings>& changes) { model.change(changes); };
    add(
        table, kModuleSettings, [](Model& model, const CommandRequest&) -> Module& { return model.module; }, changeModule);
    add(table, kRadioSettings, radioOf, changeRadio);
    add(table, kModuleRadioSettings, moduleRadioOf, changeRadio);
    add(table, kInterfaceSettings, interfaceOf, changeInterface);
    add(table, kSecuritySettings, interfaceOf, changeSecurity);
    for (const StoredEntry& row : kStoredEntries)
        table.add(row.function, [&row](Model& model, CommandRequest& request) { handle(model, request, row); });
}

} // namespace tarn::simulator
