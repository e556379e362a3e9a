#include "call_by_name.h"

#include "tarn_api.h"
#include "tarn_qtn_monitor_api.h"

#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace tarn::contract
{

namespace
{

template <typename Pointee>
constexpr std::size_t pointeeSize()
{
    if constexpr (std::is_void_v<Pointee>)
        return 0;
    else
        return sizeof(Pointee);
}

template <typename T>
Parameter describe()
{
    Parameter parameter;
    if constexpr (std::is_pointer_v<T>)
    {
        using Pointee = std::remove_pointer_t<T>;
        parameter.kind = ParameterKind::kPointer;
        parameter.size = pointeeSize<Pointee>();
        parameter.isConst = std::is_const_v<Pointee>;
        parameter.isCharacter = std::is_same_v<std::remove_cv_t<Pointee>, char>;
        parameter.isRecord = std::is_class_v<Pointee>;
    }
    else
    {
        static_assert(std::is_class_v<T> || std::is_unsigned_v<T>, "an argument is a pointer, a record or an unsigned number");
        parameter.kind = std::is_class_v<T> ? ParameterKind::kRecord : ParameterKind::kNumber;
        parameter.size = sizeof(T);
        parameter.isRecord = std::is_class_v<T>;
    }
    return parameter;
}

template <typename T>
T unpack(const Value& value)
{
    if constexpr (std::is_pointer_v<T>)
    {
        return static_cast<T>(value.pointer);
    }
    else if constexpr (std::is_class_v<T>)
    {
        T record;
        std::memcpy(&record, value.pointer, sizeof record);
        return record;
    }
    else
    {
        return static_cast<T>(value.number);
    }
}

// What is instantiated once for each distinct signature, however many functions have it.
template <typename Result, typename... Arguments>
struct Signature
{
    static const std::vector<Parameter>& parameters()
    {
        static const std::vector<Parameter> described = {describe<Arguments>()...};
        return described;
    }

    static std::int64_t invoke(AnyFunction function, const char* callerId, const Value* values)
    {
        return spread(function, callerId, values, std::index_sequence_for<Arguments...>());
    }

private:
    template <std::size_t... Index>
    static std::int64_t spread(AnyFunction function, const char* callerId, [[maybe_unused]] const Value* values,
                               std::index_sequence<Index...>)
    {
        const auto typed = reinterpret_cast<Result (*)(const char*, Arguments...)>(function);
        return typed(callerId, unpack<Arguments>(values[Index])...);
    }
};

template <typename Result, typename... Arguments>
Function entry(const char* name, Result (*function)(const char*, Arguments...))
{
    static_assert(std::is_same_v<Result, std::uint32_t> || std::is_same_v<Result, std::int32_t>, "a result is 32 bits");
    using Known = Signature<Result, Arguments...>;
    return {name, &Known::parameters(), std::is_signed_v<Result>, reinterpret_cast<AnyFunction>(function), &Known::invoke};
}

#define TARN_FUNCTION(name) entry(#name, &(name))

std::vector<Function> deviceFunctions()
{
    return {
        TARN_FUNCTION(TarnGetLogLevel),
        TARN_FUNCTION(TarnSetLogLevel),
        TARN_FUNCTION(TarnGetLastErrorMask),
        TARN_FUNCTION(TarnSetStopPollingEnable),
        TARN_FUNCTION(TarnGetRadioIsSupportedWFAAlliance),
        TARN_FUNCTION(TarnGetRadioNum),
        TARN_FUNCTION(TarnGetRadioAt),
        TARN_FUNCTION(TarnGetRadio),
        TARN_FUNCTION(TarnGetRadioIsReady),
        TARN_FUNCTION(TarnSetRadioCfg),
        TARN_FUNCTION(TarnSetRadioExCfg),
        TARN_FUNCTION(TarnGetRadioStats),
        TARN_FUNCTION(TarnGetRadioDriverVersion),
        TARN_FUNCTION(TarnGetRadioIsSupportedWdsInterface),
        TARN_FUNCTION(TarnGetRadioPossibleChannels),
        TARN_FUNCTION(TarnGetRadioCurrentTransmitPowerLevel),
        TARN_FUNCTION(TarnGetRadioChainNumber),
        TARN_FUNCTION(TarnGetRadioChainRssiAt),
        TARN_FUNCTION(TarnGetRadioChipTemperature),
        TARN_FUNCTION(TarnGetRadioPrimarySSIDIntfId),
        TARN_FUNCTION(TarnGetRadioNeighboringStatus),
        TARN_FUNCTION(TarnScanRadioNeighborhood),
        TARN_FUNCTION(TarnCancelRadioNeighborhoodScanning),
        TARN_FUNCTION(TarnGetRadioNeighboringResultNum),
        TARN_FUNCTION(TarnGetRadioNeighboringResultAt),
        TARN_FUNCTION(TarnGetRadioIsSupportedOPXRoaming),
        TARN_FUNCTION(TarnGetRadioQuantennaQhopState),
        TARN_FUNCTION(TarnSetRadioQuantennaQhopEnable),
        TARN_FUNCTION(TarnGetRadioQuantennaCurrentTransmitPower),
        TARN_FUNCTION(TarnGetRadioQuantennaCarrierId),
        TARN_FUNCTION(TarnSetQuantennaATM),
        TARN_FUNCTION(TarnGetQuantennaATMState),
        TARN_FUNCTION(TarnSetQuantennaAtmActuate),
        TARN_FUNCTION(TarnGetQuantennaAtmActuateState),
        TARN_FUNCTION(TarnSetQuantennaDFSDaemon),
        TARN_FUNCTION(TarnGetQuantennaDFSDaemonState),
        TARN_FUNCTION(TarnGetQuantennaMauiState),
        TARN_FUNCTION(TarnSetQuantennaMauiEnable),
        TARN_FUNCTION(TarnGetQuantennaMauiVersion),
        TARN_FUNCTION(TarnDownloadQuantennaWirelessConf),
        TARN_FUNCTION(TarnUpdateQuantennaPasswordFile),
        TARN_FUNCTION(TarnGetQuantennaDownloadState),
        TARN_FUNCTION(TarnGetSsidIntfNum),
        TARN_FUNCTION(TarnGetSsidIntfAt),
        TARN_FUNCTION(TarnGetSsidIntf),
        TARN_FUNCTION(TarnSetSsidIntfCfg),
        TARN_FUNCTION(TarnGetSsidIntfStats),
        TARN_FUNCTION(TarnGetSsidIntfIsPrimarySSIDIntf),
        TARN_FUNCTION(TarnGetSsidOPXRoamingState),
        TARN_FUNCTION(TarnSetSsidOPXRoamingEnable),
        TARN_FUNCTION(TarnGetSsidOPXRoamingMdid),
        TARN_FUNCTION(TarnSetSsidOPXRoamingMdid),
        TARN_FUNCTION(TarnGetSsidOPXShgwBlockAddrNum),
        TARN_FUNCTION(TarnGetSsidOPXShgwBlockAddrAt),
        TARN_FUNCTION(TarnAddSsidOPXShgwBlockAddr),
        TARN_FUNCTION(TarnDelSsidOPXShgwBlockAddr),
        TARN_FUNCTION(TarnGetAccessPoint),
        TARN_FUNCTION(TarnSetAccessPointCfg),
        TARN_FUNCTION(TarnGetAccessPointSecurity),
        TARN_FUNCTION(TarnSetAccessPointSecurityCfg),
        TARN_FUNCTION(TarnSetAccessPointSecurityExCfg),
        TARN_FUNCTION(TarnGetAccessPointWps),
        TARN_FUNCTION(TarnSetAccessPointWpsCfg),
        TARN_FUNCTION(TarnGetAccessPointWpsWindowStatus),
        TARN_FUNCTION(TarnTriggerAccessPointWpsWindow),
        TARN_FUNCTION(TarnCancelAccessPointWpsWindow),
        TARN_FUNCTION(TarnGetAccessPointAssociatedNum),
        TARN_FUNCTION(TarnGetAccessPointAssociatedAt),
        TARN_FUNCTION(TarnGetAccessPointAssociated),
        TARN_FUNCTION(TarnGetAccessPointAssociatedStats),
        TARN_FUNCTION(TarnKickOutAccessPointAssociated),
        TARN_FUNCTION(TarnGetAccessPointMacFilterMode),
        TARN_FUNCTION(TarnSetAccessPointMacFilterMode),
        TARN_FUNCTION(TarnAddAccessPointMacFilter),
        TARN_FUNCTION(TarnDelAccessPointMacFilter),
        TARN_FUNCTION(TarnGetAccessPointMacFilterNum),
        TARN_FUNCTION(TarnGetAccessPointMacFilterAt),
        TARN_FUNCTION(TarnSetQuantennaRPCDebugEnable),
        TARN_FUNCTION(TarnResetQuantennaSmartWiFiDaemon),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiState),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiEnable),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiVersion),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiDaemonVersion),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiBindingInterface),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiQcomm),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiQcommCfg),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiQslCfgSyncing),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiQslCfgSyncing),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiQslMdidNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiQslMdidAt),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiQsl),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiQslPart1Cfg),
        TARN_FUNCTION(TarnSetQuantennaSmartWiFiQslPart2Cfg),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiNonSteerNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiNonSteerAt),
        TARN_FUNCTION(TarnAddQuantennaSmartWiFiNonSteer),
        TARN_FUNCTION(TarnDelQuantennaSmartWiFiNonSteer),
        TARN_FUNCTION(TarnSyncQuantennaSmartWiFiBSSTable),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiBSSEntryNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiBSSEntryAt),
        TARN_FUNCTION(TarnSyncQuantennaSmartWiFiAssoiated),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiAssoiatedNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiAssoiatedAt),
        TARN_FUNCTION(TarnSyncQuantennaSmartWiFiRecordInfo),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiRecordInfoNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiRecordInfoAt),
        TARN_FUNCTION(TarnSyncQuantennaSmartWiFiSlaveDevice),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiSlaveDeviceNumber),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiSlaveDeviceAt),
        TARN_FUNCTION(TarnDoQuantennaSmartWiFiCfgPropagation),
        TARN_FUNCTION(TarnGetQuantennaSmartWiFiCfgToFile),
        TARN_FUNCTION(TarnGetQuantennaSoniqCurrentAssociationNumber),
        TARN_FUNCTION(TarnGetQuantennaSoniqCurrentAssociationAt),
        TARN_FUNCTION(TarnGetQuantennaSoniqCurrentAssociation),
        TARN_FUNCTION(TarnSetQuantennaTdwrChannelsEnable),
    };
}

std::vector<Function> proxyFunctions()
{
    return {
        TARN_FUNCTION(tarn_qcsapi_debug),
        TARN_FUNCTION(tarn_qcsapi_init),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_channel),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_bw),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_sec_chan),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_dfs_s_radio_status),
        TARN_FUNCTION(tarn_qcsapi_get_temperature_info),
        TARN_FUNCTION(tarn_qcsapi_interface_get_status),
        TARN_FUNCTION(tarn_qcsapi_wps_get_state),
        TARN_FUNCTION(tarn_qcsapi_wifi_startprod),
        TARN_FUNCTION(tarn_qcsapi_is_startprod_done),
        TARN_FUNCTION(tarn_qcsapi_wifi_rfenable),
        TARN_FUNCTION(tarn_qcsapi_radio_rfenable),
        TARN_FUNCTION(tarn_qcsapi_set_custom_value),
        TARN_FUNCTION(tarn_qcsapi_wifi_run_script),
        TARN_FUNCTION(tarn_qcsapi_bootcfg_get_parameter),
        TARN_FUNCTION(tarn_qcsapi_config_update_parameter),
        TARN_FUNCTION(tarn_qcsapi_telnet_enable),
        TARN_FUNCTION(tarn_qcsapi_service_control),
        TARN_FUNCTION(tarn_qcsapi_get_carrier_id),
        TARN_FUNCTION(tarn_qcsapi_set_carrier_id),
        TARN_FUNCTION(tarn_qcsapi_pm_set_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_list_channels),
        TARN_FUNCTION(tarn_qcsapi_regulatory_get_list_regulatory_channels),
        TARN_FUNCTION(tarn_qcsapi_regulatory_get_list_regulatory_channels_if),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_SSID),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_dscp_ac_table),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_dscp_ac_map),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain),
        TARN_FUNCTION(tarn_qcsapi_system_get_time_since_start),
        TARN_FUNCTION(tarn_qcsapi_wps_registrar_report_pin),
        TARN_FUNCTION(tarn_qcsapi_wps_registrar_report_button_press),
        TARN_FUNCTION(tarn_qcsapi_wifi_disable_wps),
        TARN_FUNCTION(tarn_qcsapi_wps_upnp_enable),
        TARN_FUNCTION(tarn_qcsapi_wps_enable_ap_pin),
        TARN_FUNCTION(tarn_qcsapi_wps_set_ap_pin),
        TARN_FUNCTION(tarn_qcsapi_wps_save_ap_pin),
        TARN_FUNCTION(tarn_qcsapi_wps_set_param),
        TARN_FUNCTION(tarn_qcsapi_wps_get_param),
        TARN_FUNCTION(tarn_qcsapi_wps_set_configured_state),
        TARN_FUNCTION(tarn_qcsapi_wifi_disassociate_sta),
        TARN_FUNCTION(tarn_qcsapi_wifi_apply_security_config),
        TARN_FUNCTION(tarn_qcsapi_firmware_get_version),
        TARN_FUNCTION(tarn_qcsapi_regulatory_overwrite_country_code),
        TARN_FUNCTION(tarn_qcsapi_interface_enable),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_phy_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_phy_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_bw),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_channel),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_scs_status),
        TARN_FUNCTION(tarn_qcsapi_wifi_scs_enable),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_option),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_mcs_rate),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_rts_threshold),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_beacon_interval),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_dtim),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_assoc_limit),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_tx_amsdu),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_airfair),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_extender_params),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_security_defer_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_create_bss_with_ifstate),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_SSID_group_id),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_priority),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_bss_assoc_limit),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_intra_bss_isolate),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_beacon_type),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_WPA_authentication_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_WPA_encryption_modes),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_key_passphrase),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_group_key_interval),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_pmf),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_mac_address_filtering),
        TARN_FUNCTION(tarn_qcsapi_wifi_clear_mac_address_filters),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_mac_address_filtering),
        TARN_FUNCTION(tarn_qcsapi_wifi_authorize_mac_address),
        TARN_FUNCTION(tarn_qcsapi_wifi_deny_mac_address),
        TARN_FUNCTION(tarn_qcsapi_wifi_vlan_config),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_bss_isolate),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_supported_tx_power_levels),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_current_tx_power_level),
        TARN_FUNCTION(tarn_qcsapi_reg_chan_txpower_backoff_set),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_nac_mon_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_start_dfs_s_radio),
        TARN_FUNCTION(tarn_qcsapi_wifi_stop_dfs_s_radio),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_cac_status),
        TARN_FUNCTION(tarn_qcsapi_get_interface_stats),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_rssi_by_chain),
        TARN_FUNCTION(tarn_qcsapi_calcmd_get_tx_power),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_connection_mode),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_rssi_in_dbm_per_association),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_tx_mcs_per_association),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_rx_mcs_per_association),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_time_associated_per_association),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_node_stats),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_chan_pri_inactive),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_associated_device_mac_addr),
        TARN_FUNCTION(tarn_qcsapi_regulatory_apply_tx_power_cap),
        TARN_FUNCTION(tarn_qcsapi_get_custom_value),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_icac_status),
        TARN_FUNCTION(tarn_qcsapi_errno_get_message),
        TARN_FUNCTION(tarn_qcsapi_wifi_start_scan_ext),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_scan_status),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_results_AP_scan),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_properties_AP),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_node_infoset),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_rates),
        TARN_FUNCTION(tarn_qcsapi_wps_cancel),
        TARN_FUNCTION(tarn_qcsapi_security_set_sec_agent),
        TARN_FUNCTION(tarn_qcsapi_get_vap_extstats),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_parameter),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_parameter),
        TARN_FUNCTION(tarn_qcsapi_wifi_disable_11b),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_sec_chan),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_enable_mu),
        TARN_FUNCTION(tarn_qcsapi_set_params),
        TARN_FUNCTION(tarn_qcsapi_get_max_bitrate),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_ac_agg_hold_time),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_legacy_bbic),
        TARN_FUNCTION(tarn_qcsapi_thermal_mitig_init),
        TARN_FUNCTION(tarn_qcsapi_thermal_mitig_start),
        TARN_FUNCTION(tarn_qcsapi_thermal_mitig_stop),
        TARN_FUNCTION(tarn_qcsapi_thermal_mitig_exit),
        TARN_FUNCTION(tarn_qcsapi_get_cca_stats),
        TARN_FUNCTION(tarn_qcsapi_get_preamble_error),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_ieee80211r),
        TARN_FUNCTION(tarn_qcsapi_wifi_get_chan_avail_status),
        TARN_FUNCTION(tarn_qcsapi_wifi_set_wea_cac_en),
    };
}

std::vector<Function> mirrorFunctions()
{
    return {
        TARN_FUNCTION(tarn_qtn_mirror_get_mirror_status),
        TARN_FUNCTION(tarn_qtn_mirror_get_telnet_status),
        TARN_FUNCTION(tarn_qtn_mirror_set_telnet_enable),
        TARN_FUNCTION(tarn_qtn_mirror_set_mirror_enable),
    };
}

#undef TARN_FUNCTION

} // namespace

std::int64_t Function::call(const char* callerId, const Value* values, std::size_t count) const
{
    if (count != parameters->size())
        throw std::invalid_argument(std::string(name) + " takes " + std::to_string(parameters->size()) +
                                    " arguments behind the caller id, not " + std::to_string(count));
    for (std::size_t i = 0; i < count; ++i)
        if ((*parameters)[i].kind == ParameterKind::kRecord && values[i].pointer == nullptr)
            throw std::invalid_argument(std::string(name) + ": argument " + std::to_string(i + 1) +
                                        " behind the caller id is a record of " + std::to_string((*parameters)[i].size) +
                                        " bytes, not a null pointer");
    return invoke(address, callerId, values);
}

const std::vector<Function>& functions()
{
    static const std::vector<Function> everyFunction = []
    {
        std::vector<Function> result = deviceFunctions();
        for (const std::vector<Function>& more : {proxyFunctions(), mirrorFunctions()})
            result.insert(result.end(), more.begin(), more.end());
        return result;
    }();
    return everyFunction;
}

const Function* findFunction(std::string_view name)
{
    static const std::unordered_map<std::string_view, const Function*> byName = []
    {
        std::unordered_map<std::string_view, const Function*> result;
        for (const Function& function : functions())
            result.emplace(function.name, &function);
        return result;
    }();
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

} // namespace tarn::contract
