// The command functions of the Wi-Fi module: calls that the proxy carries to it, and the mirror service.
//
// Each function reads the same way: refuse, fill, send, copy out, return. What looks irregular (a slot, an order, a text) is
// that way on the wire; a comment says that it is meant. Which slot takes which argument depends on the command: a lone value
// goes to param1 in some and to param2 in others.
//
// A trace record shows the unit's tag and a line of this file, which is how a reader of a log finds the function that failed.
// All functions with this tag are therefore in this one file.
//
// openOn stores the interface's name as text, cut to 64 characters; copyName stores all of its 65 bytes unchanged.
#include "tarn_qtn_monitor_api.h"

#include "proxy_call.h"

namespace
{

using namespace tarn;

using Call = ProxyCall;
using MirrorCall = BasicCall<Family::kMirror, std::int32_t, MirrorMessage>;

// Commands that take the module longer.
constexpr std::uint32_t kLongWait = 5;

constexpr std::size_t kMacAddressSize = 6;
constexpr std::size_t kDscpListSize = 64; // one entry for each code point (RFC 2474)

// Commands 105 to 107, 109 to 118, 120 and 121 take the interface's name as a block: all 65 bytes unchanged, with no NUL added.
void copyName(Call& call, const char* name)
{
    std::memcpy(call.message.ifname, name, sizeof call.message.ifname);
}

// For outputs that a caller may leave out.
void storeIfWanted(std::uint32_t* to, std::uint32_t value)
{
    if (to != nullptr)
        *to = value;
}

} // namespace

// ----------------------------------------------------------------------------------------------------------------------------
// Proxy settings: commands 0 and 1
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_debug(const char* handle, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param2.word(value);

    return call.finish(0);
}

int32_t tarn_qcsapi_init(const char* handle)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    return call.finish(1);
}

// ----------------------------------------------------------------------------------------------------------------------------
// System, boot and services: commands 6, 7, 10 to 22, 29 and 42
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_get_temperature_info(const char* handle, uint32_t* tempsens_ex, uint32_t* tempsens_in,
                                         uint32_t* temsens_bbic)
{
    Call call;
    // Meant: the second pointer is checked first, and "temsens" has no "p".
    if (const int32_t refusal = call.open(handle, {tempsens_in, "tempsens_in is NULL"}, {tempsens_ex, "tempsens_ex is NULL"},
                                          {temsens_bbic, "temsens_bbic is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(6))
        return failure;

    *tempsens_ex = call.message.out.words[0];
    *tempsens_in = call.message.out.words[1];
    *temsens_bbic = call.message.out.words[2];
    return call.message.status;
}

int32_t tarn_qcsapi_interface_get_status(const char* handle, const char* intf_name, char* status, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {status, "status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(7))
        return failure;

    call.message.out.text(status, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_startprod(const char* handle)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    return call.finish(10);
}

int32_t tarn_qcsapi_is_startprod_done(const char* handle, uint32_t* is_start_prod_done)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {is_start_prod_done, "is_start_prod_done is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(11))
        return failure;

    *is_start_prod_done = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_rfenable(const char* handle, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param2.word(value);

    return call.finish(12, kLongWait);
}

int32_t tarn_qcsapi_radio_rfenable(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(13, kLongWait);
}

int32_t tarn_qcsapi_set_custom_value(const char* handle, const char* custom_key, const char* custom_value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {custom_key, "custom_key is NULL"}, {custom_value, "custom_value is NULL"}))
        return refusal;

    call.message.param1.text<33>(custom_key);
    call.message.param2.text<129>(custom_value);

    return call.finish(14); // read back by command 98
}

int32_t tarn_qcsapi_wifi_run_script(const char* handle, const char* scriptname, const char* param)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {scriptname, "scriptname is NULL"}, {param, "param is NULL"}))
        return refusal;

    call.message.param1.text<33>(scriptname);
    call.message.param2.text<129>(param);

    return call.finish(15);
}

int32_t tarn_qcsapi_bootcfg_get_parameter(const char* handle, const char* param_name, char* param_value, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {param_name, "param_name is NULL"}, {param_value, "param_value is NULL"}))
        return refusal;

    call.message.param1.text<33>(param_name);

    if (const int32_t failure = call.execute(16))
        return failure;

    call.message.out.text(param_value, size);
    return call.message.status;
}

int32_t tarn_qcsapi_config_update_parameter(const char* handle, const char* intf_name, const char* param_name,
                                            const char* param_value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {param_name, "param_name is NULL"},
                                            {param_value, "param_value is NULL"}))
        return refusal;

    call.message.param1.text<33>(param_name);
    call.message.param2.text<129>(param_value);

    return call.finish(17);
}

int32_t tarn_qcsapi_telnet_enable(const char* handle, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param2.word(value);

    return call.finish(18);
}

int32_t tarn_qcsapi_service_control(const char* handle, uint32_t service, uint32_t action)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param1.word(service);
    call.message.param2.word(action);

    return call.finish(19);
}

int32_t tarn_qcsapi_get_carrier_id(const char* handle, uint32_t* p_carrier_id)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {p_carrier_id, "p_carrier_id is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(20))
        return failure;

    *p_carrier_id = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_set_carrier_id(const char* handle, uint32_t carrier_id, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param1.word(carrier_id);
    call.message.param2.word(value);

    return call.finish(21);
}

int32_t tarn_qcsapi_pm_set_mode(const char* handle, uint32_t mode)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param2.word(mode);

    return call.finish(22);
}

int32_t tarn_qcsapi_system_get_time_since_start(const char* handle, uint32_t* p_elapsed_time)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {p_elapsed_time, "p_elapsed_time is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(29))
        return failure;

    *p_elapsed_time = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_firmware_get_version(const char* handle, char* firmware_version, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {firmware_version, "firmware_version is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(42))
        return failure;

    call.message.out.text(firmware_version, size);
    return call.message.status;
}

// ----------------------------------------------------------------------------------------------------------------------------
// Channels, bandwidth and regulation: commands 2 to 5, 23 to 25, 43, 47 and 48
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_wifi_get_channel(const char* handle, const char* intf_name, uint32_t* channel)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {channel, "channel is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(2))
        return failure;

    *channel = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_bw(const char* handle, const char* intf_name, uint32_t* bandwidth)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {bandwidth, "bandwidth is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(3))
        return failure;

    *bandwidth = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_sec_chan(const char* handle, const char* intf_name, uint32_t channel, uint32_t* secondary_channel)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {intf_name, "intf_name is NULL"}, {secondary_channel, "secondary_channel is NULL"}))
        return refusal;

    call.message.param1.word(channel);

    if (const int32_t failure = call.execute(4))
        return failure;

    *secondary_channel = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_dfs_s_radio_status(const char* handle, const char* intf_name, uint32_t* status)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {status, "status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(5))
        return failure;

    *status = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_list_channels(const char* handle, const char* intf_name, char* list_of_channels, uint32_t size)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {intf_name, "intf_name is NULL"}, {list_of_channels, "list_of_channels is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(23))
        return failure;

    call.message.out.text(list_of_channels, size);
    return call.message.status;
}

int32_t tarn_qcsapi_regulatory_get_list_regulatory_channels(const char* handle, const char* region_by_name, uint32_t bandwidth,
                                                            char* list_of_channels, uint32_t size)
{
    Call call;
    if (const int32_t refusal =
            call.open(handle, {region_by_name, "region_by_name is NULL"}, {list_of_channels, "list_of_channels is NULL"}))
        return refusal;

    call.message.param1.text<33>(region_by_name);
    call.message.param2.word(bandwidth);

    if (const int32_t failure = call.execute(24))
        return failure;

    call.message.out.text(list_of_channels, size);
    return call.message.status;
}

int32_t tarn_qcsapi_regulatory_get_list_regulatory_channels_if(const char* handle, const char* ifname, const char* region_name,
                                                               uint32_t bandwidth, uint32_t value, char* list_of_channels,
                                                               uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {region_name, "region_name is NULL"},
                                            {list_of_channels, "list_of_channels is NULL"}))
        return refusal;

    call.message.param1.text<33>(region_name);
    call.message.param2.word(bandwidth);
    call.message.param3.word(value);

    if (const int32_t failure = call.execute(25))
        return failure;

    call.message.out.text(list_of_channels, size);
    return call.message.status;
}

int32_t tarn_qcsapi_regulatory_overwrite_country_code(const char* handle, const char* ifname, const char* curr_country_name,
                                                      const char* new_country_name)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {ifname, "ifname is NULL"}, {curr_country_name, "curr_country_name is NULL"},
                        {new_country_name, "new_country_name is NULL"}))
        return refusal;

    call.message.param1.text<33>(curr_country_name);
    call.message.param2.text<33>(new_country_name);

    return call.finish(43);
}

int32_t tarn_qcsapi_wifi_set_bw(const char* handle, const char* ifname, uint32_t bandwidth)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(bandwidth);

    return call.finish(47);
}

int32_t tarn_qcsapi_wifi_set_channel(const char* handle, const char* ifname, uint32_t channel)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(channel);

    return call.finish(48);
}

// ----------------------------------------------------------------------------------------------------------------------------
// SSID, WPS and QoS map: commands 8, 26 to 28 and 30 to 41
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_wps_get_state(const char* handle, const char* intf_name, char* wps_state, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {wps_state, "wps_state is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(8))
        return failure;

    call.message.out.text(wps_state, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_SSID(const char* handle, const char* intf_name, const char* ssid)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {ssid, "ssid is NULL"}))
        return refusal;

    call.message.param1.text<33>(ssid);

    return call.finish(26);
}

// The next two share command 27, which is meant: the service tells them apart by the message's contents. Their two
// trailing values are single bytes.

int32_t tarn_qcsapi_wifi_set_dscp_ac_table(const char* handle, uint32_t table_id, const uint8_t* dscp_list, uint8_t value_a,
                                           uint8_t value_b)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {dscp_list, "dscp_list is NULL"}))
        return refusal;

    call.message.param1.word(table_id);
    call.message.param2.block<kDscpListSize>(dscp_list);
    call.message.param3.byte(value_a);
    call.message.param4.byte(value_b);

    return call.finish(27);
}

int32_t tarn_qcsapi_wifi_set_dscp_ac_map(const char* handle, const char* intf_name, const uint8_t* dscp_list, uint8_t value_a,
                                         uint8_t value_b)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {dscp_list, "dscp_list is NULL"}))
        return refusal;

    call.message.param2.block<kDscpListSize>(dscp_list);
    call.message.param3.byte(value_a);
    call.message.param4.byte(value_b);

    return call.finish(27);
}

int32_t tarn_qcsapi_wifi_set_ieee80211r_mobility_domain(const char* handle, const char* intf_name, const char* value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {value, "value is NULL"}))
        return refusal;

    call.message.param1.text<17>(value);

    return call.finish(28);
}

int32_t tarn_qcsapi_wps_registrar_report_pin(const char* handle, const char* ifname, const char* wps_pin)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {wps_pin, "wps_pin is NULL"}))
        return refusal;

    call.message.param1.text<33>(wps_pin);

    return call.finish(30);
}

int32_t tarn_qcsapi_wps_registrar_report_button_press(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    return call.finish(31);
}

int32_t tarn_qcsapi_wifi_disable_wps(const char* handle, const char* ifname, uint32_t disable)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(disable == 0 ? 1 : 0); // meant: the flag is sent inverted

    return call.finish(32);
}

int32_t tarn_qcsapi_wps_upnp_enable(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(33);
}

int32_t tarn_qcsapi_wps_enable_ap_pin(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(34);
}

int32_t tarn_qcsapi_wps_set_ap_pin(const char* handle, const char* ifname, const char* wps_pin)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {wps_pin, "wps_pin is NULL"}))
        return refusal;

    call.message.param1.text<33>(wps_pin);

    return call.finish(35);
}

int32_t tarn_qcsapi_wps_save_ap_pin(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    return call.finish(36);
}

int32_t tarn_qcsapi_wps_set_param(const char* handle, const char* ifname, uint32_t param_id, const char* param_value)
{
    Call call;
    // Meant: a missing value is reported with the interface name's text.
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {param_value, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(param_id);
    call.message.param2.text<129>(param_value);

    return call.finish(37);
}

int32_t tarn_qcsapi_wps_get_param(const char* handle, const char* ifname, uint32_t param_id, char* param_value, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {param_value, "param_value is NULL"}))
        return refusal;

    call.message.param1.word(param_id);

    if (const int32_t failure = call.execute(38))
        return failure;

    call.message.out.text(param_value, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wps_set_configured_state(const char* handle, const char* ifname, uint32_t state)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(state);

    return call.finish(39);
}

int32_t tarn_qcsapi_wifi_disassociate_sta(const char* handle, const char* ifname, const uint8_t* mac)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {mac, "mac is NULL"}))
        return refusal;

    call.message.param2.block<kMacAddressSize>(mac);

    return call.finish(40);
}

int32_t tarn_qcsapi_wifi_apply_security_config(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    return call.finish(41, kLongWait);
}

// ----------------------------------------------------------------------------------------------------------------------------
// PHY and BSS: commands 44 to 46 and 49 to 63
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_interface_enable(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(44);
}

int32_t tarn_qcsapi_wifi_set_phy_mode(const char* handle, const char* ifname, const char* new_phy_mode)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {new_phy_mode, "new_phy_mode is NULL"}))
        return refusal;

    call.message.param1.text<33>(new_phy_mode);

    return call.finish(45);
}

int32_t tarn_qcsapi_wifi_get_phy_mode(const char* handle, const char* ifname, char* p_wifi_phy_mode, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {p_wifi_phy_mode, "p_wifi_phy_mode is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(46))
        return failure;

    call.message.out.text(p_wifi_phy_mode, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_scs_status(const char* handle, const char* ifname, uint32_t* p_scs_status)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {p_scs_status, "p_scs_status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(49))
        return failure;

    *p_scs_status = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_scs_enable(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(50);
}

int32_t tarn_qcsapi_wifi_set_option(const char* handle, const char* ifname, uint32_t option, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(option);
    call.message.param2.word(value);

    return call.finish(51);
}

int32_t tarn_qcsapi_wifi_set_mcs_rate(const char* handle, const char* ifname, const char* new_mcs_rate)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {new_mcs_rate, "new_mcs_rate is NULL"}))
        return refusal;

    call.message.param1.text<9>(new_mcs_rate);

    return call.finish(52);
}

int32_t tarn_qcsapi_wifi_set_rts_threshold(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(53);
}

int32_t tarn_qcsapi_wifi_set_beacon_interval(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(54);
}

int32_t tarn_qcsapi_wifi_set_dtim(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(55);
}

int32_t tarn_qcsapi_wifi_set_assoc_limit(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(56);
}

int32_t tarn_qcsapi_wifi_set_tx_amsdu(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(57);
}

int32_t tarn_qcsapi_wifi_set_airfair(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(58);
}

int32_t tarn_qcsapi_wifi_set_extender_params(const char* handle, const char* ifname, uint32_t parameter, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(parameter);
    call.message.param2.word(value);

    return call.finish(59);
}

int32_t tarn_qcsapi_wifi_set_security_defer_mode(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(60);
}

int32_t tarn_qcsapi_wifi_create_bss_with_ifstate(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(61, kLongWait);
}

int32_t tarn_qcsapi_wifi_set_SSID_group_id(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(62);
}

int32_t tarn_qcsapi_wifi_set_priority(const char* handle, const char* ifname, uint8_t priority)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.byte(priority); // meant: a byte, unlike its neighbours' words

    return call.finish(63);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Security and access control: commands 64 to 78
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_wifi_set_bss_assoc_limit(const char* handle, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(64);
}

int32_t tarn_qcsapi_wifi_set_intra_bss_isolate(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(65);
}

int32_t tarn_qcsapi_wifi_set_beacon_type(const char* handle, const char* ifname, const char* p_new_beacon)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {p_new_beacon, "p_new_beacon is NULL"}))
        return refusal;

    call.message.param1.text<33>(p_new_beacon);

    return call.finish(66);
}

int32_t tarn_qcsapi_wifi_set_WPA_authentication_mode(const char* handle, const char* ifname, const char* authentication_mode)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {ifname, "ifname is NULL"}, {authentication_mode, "authentication_mode is NULL"}))
        return refusal;

    call.message.param1.text<33>(authentication_mode);

    return call.finish(67);
}

int32_t tarn_qcsapi_wifi_set_WPA_encryption_modes(const char* handle, const char* ifname, const char* encryption_modes)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {encryption_modes, "encryption_modes is NULL"}))
        return refusal;

    call.message.param1.text<33>(encryption_modes);

    return call.finish(68);
}

int32_t tarn_qcsapi_wifi_set_key_passphrase(const char* handle, const char* ifname, const char* passphrase)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {passphrase, "passphrase is NULL"}))
        return refusal;

    // Meant: 63 characters, the longest passphrase (IEEE 802.11). A key of 64 digits loses its last.
    call.message.param2.text<64>(passphrase);

    return call.finish(69);
}

int32_t tarn_qcsapi_wifi_set_group_key_interval(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(70);
}

int32_t tarn_qcsapi_wifi_set_pmf(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(71);
}

int32_t tarn_qcsapi_wifi_set_mac_address_filtering(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(72);
}

int32_t tarn_qcsapi_wifi_clear_mac_address_filters(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    return call.finish(73);
}

int32_t tarn_qcsapi_wifi_get_mac_address_filtering(const char* handle, const char* ifname,
                                                   uint32_t* current_mac_address_filtering)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"},
                                            {current_mac_address_filtering, "current_mac_address_filtering is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(74))
        return failure;

    *current_mac_address_filtering = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_authorize_mac_address(const char* handle, const char* ifname, const uint8_t* address_to_authorize)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {ifname, "ifname is NULL"}, {address_to_authorize, "address_to_authorize is NULL"}))
        return refusal;

    call.message.param2.block<kMacAddressSize>(address_to_authorize);

    return call.finish(75);
}

int32_t tarn_qcsapi_wifi_deny_mac_address(const char* handle, const char* ifname, const uint8_t* address_to_deny)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {address_to_deny, "address_to_deny is NULL"}))
        return refusal;

    call.message.param2.block<kMacAddressSize>(address_to_deny);

    return call.finish(76);
}

int32_t tarn_qcsapi_wifi_vlan_config(const char* handle, const char* ifname, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(77);
}

int32_t tarn_qcsapi_wifi_set_bss_isolate(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(78);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Transmit power, DFS and channel availability: commands 79 to 85, 95, 97, 99, 113, 126 and 127
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_wifi_get_supported_tx_power_levels(const char* handle, const char* ifname, char* available_percentages,
                                                       uint32_t size)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {ifname, "ifname is NULL"}, {available_percentages, "available_percentages is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(79))
        return failure;

    call.message.out.text(available_percentages, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_current_tx_power_level(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(80);
}

int32_t tarn_qcsapi_reg_chan_txpower_backoff_set(const char* handle, const char* ifname, uint8_t value1, uint8_t value2,
                                                 uint8_t value3)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value1); // meant: 8-bit values, each widened to a whole word
    call.message.param2.word(value2);
    call.message.param3.word(value3);

    return call.finish(81);
}

int32_t tarn_qcsapi_wifi_set_nac_mon_mode(const char* handle, const char* ifname, uint32_t value1, uint32_t value2,
                                          uint32_t value3)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value1); // meant: the first two are crossed
    call.message.param1.word(value2);
    call.message.param3.word(value3);

    return call.finish(82);
}

int32_t tarn_qcsapi_wifi_start_dfs_s_radio(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(83);
}

int32_t tarn_qcsapi_wifi_stop_dfs_s_radio(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    return call.finish(84);
}

int32_t tarn_qcsapi_wifi_get_cac_status(const char* handle, const char* ifname, uint32_t* cacstatus)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {cacstatus, "cacstatus is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(85))
        return failure;

    *cacstatus = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_chan_pri_inactive(const char* handle, const char* intf_name, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}))
        return refusal;

    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(95);
}

int32_t tarn_qcsapi_regulatory_apply_tx_power_cap(const char* handle, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param2.word(value);

    return call.finish(97);
}

int32_t tarn_qcsapi_wifi_get_icac_status(const char* handle, const char* intf_name, uint32_t* status)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {status, "status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(99))
        return failure;

    *status = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_sec_chan(const char* handle, const char* ifname, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(113);
}

int32_t tarn_qcsapi_wifi_get_chan_avail_status(const char* handle, const char* intf_name, void* chan_avail_status)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {intf_name, "intf_name is NULL"}, {chan_avail_status, "chan_avail_status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(126))
        return failure;

    call.message.out.block<511>(chan_avail_status);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_wea_cac_en(const char* handle, const char* intf_name, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(127);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Station and interface statistics: commands 86 to 94, 96, 104 to 106, 109, 116, 123 and 124
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_get_interface_stats(const char* handle, const char* ifname, void* stats)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {stats, "stats is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(86))
        return failure;

    call.message.out.block<84>(stats);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_rssi_by_chain(const char* handle, const char* ifname, uint32_t* rssi0, uint32_t* rssi1,
                                           uint32_t* rssi2, uint32_t* rssi3)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"})) // meant: each output may be NULL
        return refusal;

    if (const int32_t failure = call.execute(87))
        return failure;

    storeIfWanted(rssi0, call.message.out.words[0]);
    storeIfWanted(rssi1, call.message.out.words[1]);
    storeIfWanted(rssi2, call.message.out.words[2]);
    storeIfWanted(rssi3, call.message.out.words[3]);
    return call.message.status;
}

int32_t tarn_qcsapi_calcmd_get_tx_power(const char* handle, uint32_t* pwr0, uint32_t* pwr1, uint32_t* pwr2, uint32_t* pwr3)
{
    // Meant: one check and one text for all four.
    const void* const all = pwr0 != nullptr && pwr1 != nullptr && pwr2 != nullptr ? pwr3 : nullptr;

    Call call;
    if (const int32_t refusal = call.open(handle, {all, "pwr is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(88))
        return failure;

    // NOLINTBEGIN(clang-analyzer-core.NullDereference): open has refused a null one
    *pwr0 = call.message.out.words[0];
    *pwr1 = call.message.out.words[1];
    *pwr2 = call.message.out.words[2];
    *pwr3 = call.message.out.words[3];
    // NOLINTEND(clang-analyzer-core.NullDereference)
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_connection_mode(const char* handle, const char* intf_name, uint32_t value, char* p_wifi_phy_mode,
                                             uint32_t size)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {intf_name, "intf_name is NULL"}, {p_wifi_phy_mode, "p_wifi_phy_mode is NULL"}))
        return refusal;

    call.message.param1.word(value);

    if (const int32_t failure = call.execute(89))
        return failure;

    call.message.out.text(p_wifi_phy_mode, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_rssi_in_dbm_per_association(const char* handle, const char* intf_name, uint32_t association_index,
                                                         uint32_t* rssi)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {rssi, "rssi is NULL"}))
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(90))
        return failure;

    *rssi = call.message.out_words[0]; // meant: behind the result area, as the next two
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_tx_mcs_per_association(const char* handle, const char* intf_name, uint32_t association_index,
                                                    uint32_t* tx_mcs)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {tx_mcs, "tx_mcs is NULL"}))
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(91))
        return failure;

    *tx_mcs = call.message.out_words[1];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_rx_mcs_per_association(const char* handle, const char* intf_name, uint32_t association_index,
                                                    uint32_t* rx_mcs)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {rx_mcs, "rx_mcs is NULL"}))
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(92))
        return failure;

    *rx_mcs = call.message.out_words[2];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_time_associated_per_association(const char* handle, const char* intf_name,
                                                             uint32_t association_index, uint32_t* time_in_second)
{
    Call call;
    if (const int32_t refusal =
            call.openOn(handle, {intf_name, "intf_name is NULL"}, {time_in_second, "time_in_second is NULL"}))
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(93))
        return failure;

    *time_in_second = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_node_stats(const char* handle, const char* intf_name, uint32_t association_index, uint32_t* out0,
                                        uint32_t* out1, uint32_t* out2, uint32_t* out3, uint32_t* out4, uint32_t* node_stats)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"})) // meant: each output may be NULL
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(94))
        return failure;

    storeIfWanted(out0, call.message.out_words[0]); // meant: in this order
    storeIfWanted(out1, call.message.out_words[3]);
    storeIfWanted(out2, call.message.out_words[4]);
    storeIfWanted(out3, call.message.out_words[1]);
    storeIfWanted(out4, call.message.out_words[2]);
    if (node_stats != nullptr)
        call.message.out.copyWords<5>(node_stats);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_associated_device_mac_addr(const char* handle, const char* intf_name, uint32_t association_index,
                                                        uint8_t* mac_addr)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {mac_addr, "mac_addr is NULL"}))
        return refusal;

    call.message.param1.word(association_index);

    if (const int32_t failure = call.execute(96))
        return failure;

    call.message.out.block<kMacAddressSize>(mac_addr);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_properties_AP(const char* handle, const char* intf_name, uint32_t index, void* ap_property)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {ap_property, "ap_property is NULL"}))
        return refusal;

    call.message.param1.word(index);

    if (const int32_t failure = call.execute(104))
        return failure;

    call.message.out.block<632>(ap_property);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_node_infoset(const char* handle, const char* ifname, uint16_t index, const uint8_t* mac_addr,
                                          void* nis)
{
    Call call;
    if (const int32_t refusal =
            call.open(handle, {ifname, "ifname is NULL"}, {mac_addr, "mac_addr is NULL"}, {nis, "nis is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(index); // 16 bits, widened to a word
    call.message.param2.block<kMacAddressSize>(mac_addr);

    if (const int32_t failure = call.execute(105))
        return failure;

    call.message.out.block<536>(nis);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_rates(const char* handle, const char* ifname, uint32_t rate_type, void* rates, uint32_t length)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}, {rates, "rates is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(rate_type);

    if (const int32_t failure = call.execute(106))
        return failure;

    call.message.copyFromOut(rates, length); // meant: the whole length, however long
    return call.message.status;
}

int32_t tarn_qcsapi_get_vap_extstats(const char* handle, const char* ifname, void* stats)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}, {stats, "stats is NULL"}))
        return refusal;

    copyName(call, ifname);

    if (const int32_t failure = call.execute(109))
        return failure;

    call.message.out.block<24>(stats);
    return call.message.status;
}

int32_t tarn_qcsapi_get_max_bitrate(const char* handle, const char* ifname, char* max_bitrate, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}, {max_bitrate, "max_bitrate is NULL"}))
        return refusal;

    copyName(call, ifname);

    if (const int32_t failure = call.execute(116))
        return failure;

    call.message.out.text(max_bitrate, size);
    return call.message.status;
}

int32_t tarn_qcsapi_get_cca_stats(const char* handle, const char* ifname, void* stats)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {stats, "stats is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(123))
        return failure;

    call.message.out.block<20>(stats);
    return call.message.status;
}

int32_t tarn_qcsapi_get_preamble_error(const char* handle, const char* ifname, uint32_t* preamble_error)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}, {preamble_error, "preamble_error is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(124))
        return failure;

    call.message.out.copyWords<2>(preamble_error);
    return call.message.status;
}

// ----------------------------------------------------------------------------------------------------------------------------
// Scanning, parameters and thermal: commands 98, 100 to 103, 107, 108, 110 to 112, 114, 115, 117 to 122 and 125
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qcsapi_get_custom_value(const char* handle, const char* custom_key, char* custom_value, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {custom_key, "custom_key is NULL"}, {custom_value, "custom_value is NULL"}))
        return refusal;

    call.message.param1.text<33>(custom_key);

    if (const int32_t failure = call.execute(98)) // set by command 14
        return failure;

    call.message.out.text(custom_value, size);
    return call.message.status;
}

int32_t tarn_qcsapi_errno_get_message(const char* handle, uint32_t error_code, char* err_msg, uint32_t size)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {err_msg, "err_msg is NULL"}))
        return refusal;

    call.message.param1.word(error_code);

    if (const int32_t failure = call.execute(100))
        return failure;

    call.message.out.text(err_msg, size);
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_start_scan_ext(const char* handle, const char* intf_name, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}))
        return refusal;

    call.message.param1.word(value);

    return call.finish(101);
}

int32_t tarn_qcsapi_wifi_get_scan_status(const char* handle, const char* intf_name, uint32_t* scanstatus)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {scanstatus, "scanstatus is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(102))
        return failure;

    *scanstatus = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_get_results_AP_scan(const char* handle, const char* intf_name, uint32_t* count_APs)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {intf_name, "intf_name is NULL"}, {count_APs, "count_APs is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(103))
        return failure;

    *count_APs = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wps_cancel(const char* handle, const char* ifname)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);

    return call.finish(107);
}

int32_t tarn_qcsapi_security_set_sec_agent(const char* handle, const char* action, const char* key, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {action, "action is NULL"}, {key, "key is NULL"}))
        return refusal;

    call.message.param1.block<33>(action); // meant: two blocks, not texts
    call.message.param2.block<33>(key);
    call.message.param3.word(value);

    return call.finish(108);
}

int32_t tarn_qcsapi_wifi_get_parameter(const char* handle, const char* ifname, uint32_t param, uint32_t* p_value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}, {p_value, "p_value is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(param);

    if (const int32_t failure = call.execute(110))
        return failure;

    *p_value = call.message.out.words[0];
    return call.message.status;
}

int32_t tarn_qcsapi_wifi_set_parameter(const char* handle, const char* ifname, uint32_t param, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(param);
    call.message.param2.word(value);

    return call.finish(111);
}

int32_t tarn_qcsapi_wifi_disable_11b(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param2.word(value);

    return call.finish(112);
}

int32_t tarn_qcsapi_wifi_set_enable_mu(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param2.word(value);

    return call.finish(114);
}

int32_t tarn_qcsapi_set_params(const char* handle, const char* ifname, const char* param_name, const void* set_params)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}, {set_params, "set_params is NULL"}))
        return refusal;

    copyName(call, ifname);
    if (param_name != nullptr) // meant: it may be left out
        call.message.param1.text<33>(param_name);
    call.message.param2.block<1040>(set_params);

    return call.finish(115);
}

int32_t tarn_qcsapi_wifi_set_ac_agg_hold_time(const char* handle, const char* ifname, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(117);
}

int32_t tarn_qcsapi_wifi_set_legacy_bbic(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle, {ifname, "ifname is NULL"}))
        return refusal;

    copyName(call, ifname);
    call.message.param1.word(value);

    return call.finish(118);
}

int32_t tarn_qcsapi_thermal_mitig_init(const char* handle, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.param1.word(value);

    return call.finish(119);
}

int32_t tarn_qcsapi_thermal_mitig_start(const char* handle, const char* name, uint32_t value1, uint32_t value2)
{
    Call call;
    if (const int32_t refusal = call.open(handle)) // meant: the name is not checked, here and in the next function
        return refusal;

    copyName(call, name);
    call.message.param1.word(value1);
    call.message.param2.word(value2);

    return call.finish(120);
}

int32_t tarn_qcsapi_thermal_mitig_stop(const char* handle, const char* name)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    copyName(call, name);

    return call.finish(121);
}

int32_t tarn_qcsapi_thermal_mitig_exit(const char* handle)
{
    Call call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    return call.finish(122);
}

int32_t tarn_qcsapi_wifi_set_ieee80211r(const char* handle, const char* ifname, uint32_t value)
{
    Call call;
    if (const int32_t refusal = call.openOn(handle, {ifname, "ifname is NULL"}))
        return refusal;

    call.message.param2.word(value);

    return call.finish(125);
}

// ----------------------------------------------------------------------------------------------------------------------------
// Mirror service: commands 0 to 2 of its own. Both readers send the same request and take different words of the same reply.
// ----------------------------------------------------------------------------------------------------------------------------

int32_t tarn_qtn_mirror_get_mirror_status(const char* handle, uint32_t* status)
{
    MirrorCall call;
    if (const int32_t refusal = call.open(handle, {status, "status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(0))
        return failure;

    *status = call.message.mirrorStatus;
    return call.message.status;
}

int32_t tarn_qtn_mirror_get_telnet_status(const char* handle, uint32_t* ref_cnt, uint32_t* status)
{
    MirrorCall call;
    if (const int32_t refusal = call.open(handle, {ref_cnt, "ref_cnt is NULL"}, {status, "status is NULL"}))
        return refusal;

    if (const int32_t failure = call.execute(0))
        return failure;

    *ref_cnt = call.message.telnetReferenceCount;
    *status = call.message.telnetStatus;
    return call.message.status;
}

int32_t tarn_qtn_mirror_set_telnet_enable(const char* handle, uint32_t enable, uint32_t pid)
{
    MirrorCall call;
    if (const int32_t refusal = call.open(handle))
        return refusal;
    if (pid == 0)
        return call.reject("invalid pid"); // meant: the one value that is checked

    call.message.enable = enable;
    call.message.processId = pid;

    return call.finish(1);
}

int32_t tarn_qtn_mirror_set_mirror_enable(const char* handle, uint32_t enable)
{
    MirrorCall call;
    if (const int32_t refusal = call.open(handle))
        return refusal;

    call.message.enable = enable;

    return call.finish(2);
}
