// The regular commands, which only set or read settings: one row for each argument. What follows from a change (events,
// stations that leave) is up to the model.
#include "handlers.h"

#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tarn::simulator
{

namespace
{

// The object whose setting it is.
enum class Owner
{
    kService,
    kModule,
    kRadio,
    kModuleRadio,
    kInterface,
    kSecurity // the interface's too, but applied at once or later as its securityDeferMode says
};

// An input sets the setting, an output reads it. Rows of one function are adjacent and take effect together.
struct StoredSetting
{
    const char* function;
    Owner owner;
    const char* argument;
    const char* setting;
};

constexpr StoredSetting kStoredSettings[] = {
    {"TarnGetLogLevel", Owner::kService, "level", "logLevel"},
    {"TarnSetLogLevel", Owner::kService, "level", "logLevel"},

    {"TarnGetRadioCurrentTransmitPowerLevel", Owner::kRadio, "power", "transmitPower"},
    {"TarnGetRadioQuantennaQhopState", Owner::kModuleRadio, "enable", "qhop"},
    {"TarnSetRadioQuantennaQhopEnable", Owner::kModuleRadio, "enable", "qhop"},
    {"TarnSetQuantennaTdwrChannelsEnable", Owner::kModuleRadio, "enable", "tdwrChannels"},

    {"TarnGetRadioQuantennaCarrierId", Owner::kModule, "id", "carrierId"},
    {"TarnSetQuantennaATM", Owner::kModule, "value", "atm"},
    {"TarnGetQuantennaATMState", Owner::kModule, "state", "atm"},
    {"TarnSetQuantennaAtmActuate", Owner::kModule, "value", "atmActuate"},
    {"TarnGetQuantennaAtmActuateState", Owner::kModule, "state", "atmActuate"},
    {"TarnSetQuantennaDFSDaemon", Owner::kModule, "value", "dfsDaemon"},
    {"TarnGetQuantennaDFSDaemonState", Owner::kModule, "state", "dfsDaemon"},
    {"TarnGetQuantennaMauiState", Owner::kModule, "enable", "mauiEnabled"},
    {"TarnSetQuantennaMauiEnable", Owner::kModule, "enable", "mauiEnabled"},
    {"TarnSetQuantennaRPCDebugEnable", Owner::kModule, "enable", "debug"},
    {"TarnGetQuantennaSmartWiFiState", Owner::kModule, "enable", "smartWiFiEnabled"},
    {"TarnSetQuantennaSmartWiFiEnable", Owner::kModule, "enable", "smartWiFiEnabled"},
    {"TarnGetQuantennaSmartWiFiQslCfgSyncing", Owner::kModule, "state", "qslCfgSyncing"},
    {"TarnSetQuantennaSmartWiFiQslCfgSyncing", Owner::kModule, "value", "qslCfgSyncing"},

    {"TarnGetSsidOPXRoamingState", Owner::kInterface, "enable", "roaming"},
    {"TarnSetAccessPointSecurityExCfg", Owner::kInterface, "value1", "groupKeyInterval"},
    {"TarnSetAccessPointSecurityExCfg", Owner::kInterface, "value2", "pmf"},
    {"TarnGetAccessPointMacFilterMode", Owner::kInterface, "mode", "macFilterMode"},
    {"TarnSetAccessPointMacFilterMode", Owner::kInterface, "mode", "macFilterMode"},

    {"tarn_qcsapi_debug", Owner::kModule, "value", "debug"},
    {"tarn_qcsapi_get_carrier_id", Owner::kModule, "p_carrier_id", "carrierId"},
    {"tarn_qcsapi_set_carrier_id", Owner::kModule, "carrier_id", "carrierId"},
    {"tarn_qcsapi_set_carrier_id", Owner::kModule, "value", "carrierIdKept"},
    {"tarn_qcsapi_pm_set_mode", Owner::kModule, "mode", "powerMode"},
    {"tarn_qcsapi_regulatory_apply_tx_power_cap", Owner::kModule, "value", "transmitPowerCap"},

    {"tarn_qcsapi_wifi_get_channel", Owner::kModuleRadio, "channel", "channel"},
    {"tarn_qcsapi_wifi_set_channel", Owner::kModuleRadio, "channel", "channel"},
    {"tarn_qcsapi_wifi_get_bw", Owner::kModuleRadio, "bandwidth", "bandwidth"},
    {"tarn_qcsapi_wifi_set_bw", Owner::kModuleRadio, "bandwidth", "bandwidth"},
    {"tarn_qcsapi_radio_rfenable", Owner::kModuleRadio, "value", "enabled"},
    {"tarn_qcsapi_wifi_get_phy_mode", Owner::kModuleRadio, "p_wifi_phy_mode", "phyMode"},
    {"tarn_qcsapi_wifi_set_phy_mode", Owner::kModuleRadio, "new_phy_mode", "phyMode"},
    {"tarn_qcsapi_wifi_get_scs_status", Owner::kModuleRadio, "p_scs_status", "scs"},
    {"tarn_qcsapi_wifi_scs_enable", Owner::kModuleRadio, "value", "scs"},
    {"tarn_qcsapi_wifi_set_current_tx_power_level", Owner::kModuleRadio, "value", "transmitPower"},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", Owner::kModuleRadio, "value1", "nacMonitor"},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", Owner::kModuleRadio, "value2", "nacMonitorPeriod"},
    {"tarn_qcsapi_wifi_set_nac_mon_mode", Owner::kModuleRadio, "value3", "nacMonitorOnTime"},
    {"tarn_qcsapi_wifi_disable_11b", Owner::kModuleRadio, "value", "disable11b"},
    {"tarn_qcsapi_wifi_set_enable_mu", Owner::kModuleRadio, "value", "multiUser"},
    {"tarn_qcsapi_wifi_set_legacy_bbic", Owner::kModuleRadio, "value", "legacyBaseband"},
    {"tarn_qcsapi_wifi_set_wea_cac_en", Owner::kModuleRadio, "value", "weatherCac"},

    {"tarn_qcsapi_interface_enable", Owner::kInterface, "value", "enabled"},
    {"tarn_qcsapi_wifi_set_SSID", Owner::kInterface, "ssid", "ssid"},
    {"tarn_qcsapi_wifi_set_ieee80211r", Owner::kInterface, "value", "roaming"},
    {"tarn_qcsapi_wifi_set_ieee80211r_mobility_domain", Owner::kInterface, "value", "mobilityDomain"},
    {"tarn_qcsapi_wps_upnp_enable", Owner::kInterface, "value", "wpsUpnp"},
    {"tarn_qcsapi_wps_enable_ap_pin", Owner::kInterface, "value", "wpsApPinEnabled"},
    {"tarn_qcsapi_wps_set_ap_pin", Owner::kInterface, "wps_pin", "wpsApPin"},
    {"tarn_qcsapi_wps_set_configured_state", Owner::kInterface, "state", "wpsConfigured"},
    {"tarn_qcsapi_wifi_set_mcs_rate", Owner::kInterface, "new_mcs_rate", "mcsRate"},
    {"tarn_qcsapi_wifi_set_rts_threshold", Owner::kInterface, "value", "rtsThreshold"},
    {"tarn_qcsapi_wifi_set_beacon_interval", Owner::kInterface, "value", "beaconInterval"},
    {"tarn_qcsapi_wifi_set_dtim", Owner::kInterface, "value", "dtim"},
    {"tarn_qcsapi_wifi_set_assoc_limit", Owner::kInterface, "value", "assocLimit"},
    {"tarn_qcsapi_wifi_set_tx_amsdu", Owner::kInterface, "value", "txAmsdu"},
    {"tarn_qcsapi_wifi_set_airfair", Owner::kInterface, "value", "airfair"},
    {"tarn_qcsapi_wifi_set_security_defer_mode", Owner::kInterface, "value", "securityDeferMode"},
    {"tarn_qcsapi_wifi_set_SSID_group_id", Owner::kInterface, "value", "ssidGroupId"},
    {"tarn_qcsapi_wifi_set_priority", Owner::kInterface, "priority", "priority"},
    {"tarn_qcsapi_wifi_set_intra_bss_isolate", Owner::kInterface, "value", "intraBssIsolate"},
    {"tarn_qcsapi_wifi_set_bss_isolate", Owner::kInterface, "value", "bssIsolate"},
    {"tarn_qcsapi_wifi_set_mac_address_filtering", Owner::kInterface, "value", "macFilterMode"},
    {"tarn_qcsapi_wifi_get_mac_address_filtering", Owner::kInterface, "current_mac_address_filtering", "macFilterMode"},
    {"tarn_qcsapi_wifi_vlan_config", Owner::kInterface, "value1", "vlanCommand"},
    {"tarn_qcsapi_wifi_vlan_config", Owner::kInterface, "value2", "vlanId"},

    {"tarn_qcsapi_wifi_set_beacon_type", Owner::kSecurity, "p_new_beacon", "beaconType"},
    {"tarn_qcsapi_wifi_set_WPA_authentication_mode", Owner::kSecurity, "authentication_mode", "authenticationMode"},
    {"tarn_qcsapi_wifi_set_WPA_encryption_modes", Owner::kSecurity, "encryption_modes", "encryptionModes"},
    {"tarn_qcsapi_wifi_set_key_passphrase", Owner::kSecurity, "passphrase", "passphrase"},
    {"tarn_qcsapi_wifi_set_group_key_interval", Owner::kSecurity, "value", "groupKeyInterval"},
    {"tarn_qcsapi_wifi_set_pmf", Owner::kSecurity, "value", "pmf"},

    {"tarn_qtn_mirror_get_mirror_status", Owner::kModule, "status", "mirror"},
    {"tarn_qtn_mirror_set_mirror_enable", Owner::kModule, "enable", "mirror"},
};

// Numbers stored under a number, in tables of an interface.
struct StoredEntry
{
    const char* function;
    const char* table;
    const char* key;
    const char* value;
    std::uint32_t lowestKey;
    std::uint32_t highestKey;
};

constexpr StoredEntry kStoredEntries[] = {
    {"tarn_qcsapi_wifi_set_option", "options", "option", "value", 1, 32},
    {"tarn_qcsapi_wifi_set_extender_params", "extenderParameters", "parameter", "value", 1, 32},
    {"tarn_qcsapi_wifi_set_parameter", "parameters", "param", "value", 1, 64},
    {"tarn_qcsapi_wifi_get_parameter", "parameters", "param", "p_value", 1, 64},
    {"tarn_qcsapi_wifi_set_ac_agg_hold_time", "aggregationHoldTimes", "value1", "value2", 0, 3},
};

Settings& settingsOf(Model& model, const CommandRequest& request, Owner owner)
{
    switch (owner)
    {
    case Owner::kService:
        return model.service;
    case Owner::kModule:
        return model.module.settings;
    case Owner::kRadio:
        return radioOf(model, request).settings;
    case Owner::kModuleRadio:
        return moduleRadioOf(model, request).settings;
    case Owner::kInterface:
    case Owner::kSecurity:
        return interfaceOf(model, request).settings;
    }
    throw std::logic_error("no such owner");
}

void change(Model& model, const CommandRequest& request, Owner owner, const Changes& changes)
{
    if (owner == Owner::kService || owner == Owner::kModule)
        Model::change(settingsOf(model, request, owner), changes);
    else if (owner == Owner::kRadio)
        model.change(radioOf(model, request), changes);
    else if (owner == Owner::kModuleRadio)
        model.change(moduleRadioOf(model, request), changes);
    else if (owner == Owner::kInterface)
        Model::change(interfaceOf(model, request), changes);
    else
        Model::changeSecurity(interfaceOf(model, request), changes);
}

void handle(Model& model, CommandRequest& request, const std::vector<StoredSetting>& rows)
{
    Changes changes;
    const Settings& settings = settingsOf(model, request, rows.front().owner);
    for (const StoredSetting& row : rows)
    {
        const bool isOutput = request.command().argument(row.argument)->direction == contract::Direction::kOut;
        const bool isText = settings.property(row.setting)->isText();
        if (isOutput && isText)
            request.setText(row.argument, settings.text(row.setting));
        else if (isOutput)
            request.setNumber(row.argument, settings.number(row.setting));
        else if (isText)
            changes.emplace_back(row.setting, request.text(row.argument));
        else
            changes.emplace_back(row.setting, request.number(row.argument));
    }
    if (!changes.empty())
        change(model, request, rows.front().owner, changes);
}

void handle(Model& model, CommandRequest& request, const StoredEntry& row)
{
    NumberTable& table = interfaceOf(model, request).tables[row.table];
    const std::uint32_t key = request.number(row.key);
    if (key < row.lowestKey || key > row.highestKey)
        throw Refused{ReplyStatus::kInvalidValue};
    if (request.command().argument(row.value)->direction == contract::Direction::kIn)
        table[key] = request.number(row.value);
    else
        request.setNumber(row.value, table.count(key) != 0 ? table[key] : 0);
}

} // namespace

void addStoredSettings(HandlerTable& table)
{
    std::vector<StoredSetting> rows;
    for (const StoredSetting& row : kStoredSettings)
    {
        rows.push_back(row);
        const bool isLast = &row == std::end(kStoredSettings) - 1 || std::strcmp((&row + 1)->function, row.function) != 0;
        if (!isLast)
            continue;
        table.add(row.function,
                  [rows = std::exchange(rows, {})](Model& model, CommandRequest& request) { handle(model, request, rows); });
    }
    for (const StoredEntry& row : kStoredEntries)
        table.add(row.function, [&row](Model& model, CommandRequest& request) { handle(model, request, row); });
}

} // namespace tarn::simulator
