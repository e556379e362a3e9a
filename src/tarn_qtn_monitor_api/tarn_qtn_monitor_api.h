/* The Wi-Fi module: one function per call of its configuration and status interface (`qcsapi`), and the module's port
 * mirroring and telnet access.
 *
 * A function `tarn_qcsapi_NAME` has the service QTN_RPC_PROXY perform the `qcsapi` call NAME; a function
 * `tarn_qtn_mirror_NAME` goes to the service QTN_MIRROR. `tarn_frame.h` describes what they share: the caller id (`handle`),
 * results, traces, and when outputs are written.
 *
 * Results
 *   Each function returns the service's reply status, or TARN_QTN_FAILED (-1). The line "Returns" of a function names in
 *   brackets the arguments whose refusal gives TARN_QTN_FAILED, in the order of the checks, and the wait that is passed to
 *   the IPC library. A service may answer -1 itself; the result alone does not tell that from the library's own.
 *
 * Arguments
 *   Only NULL pointers and the caller id are checked, and the process id of tarn_qtn_mirror_set_telnet_enable. Values are
 *   sent as they are, whatever their range. "As the service defines it" marks a value or record whose encoding is the
 *   service's alone.
 *
 *   An interface name is a NUL-terminated text of which at most 64 characters are sent. Some functions send the 65 bytes of
 *   the caller's buffer unchanged instead; for these the buffer must be readable for all 65 bytes, and should hold a
 *   NUL.
 *
 *   A text output is NUL-terminated and cut to `size` - 1 characters. `size` is the length of the buffer in bytes; with 0
 *   the buffer is left as it was. A record output is copied whole, and needs no alignment where it is void.
 *
 *   A MAC address is six raw bytes, not a text.
 *
 * Each call of QTN_RPC_PROXY needs 9376 bytes of stack for its message, and a little; each call of QTN_MIRROR 24 bytes. */
#ifndef TARN_QTN_MONITOR_API_H
#define TARN_QTN_MONITOR_API_H

#include <stdint.h>

#include "tarn_frame.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Proxy settings (commands 0 and 1) */

/* Sets the debug value of the module's interface.
 *
 *   handle  in: the caller id
 *   value   in: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_debug(const char* handle, uint32_t value);

/* Initialises the module's interface. The library itself needs no initialisation.
 *
 *   handle  in: the caller id
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_init(const char* handle);

/* System, boot and services (commands 6, 7, 10 to 22, 29 and 42) */

/* Reads the module's three temperature sensors.
 *
 *   handle        in: the caller id
 *   tempsens_ex   out: external sensor, 32-bit word, unit as the service defines it
 *   tempsens_in   out: internal sensor, likewise
 *   temsens_bbic  out: baseband chip's sensor, likewise
 *
 * The outputs are checked in another order than that of the arguments: tempsens_in first. The missing "p" of temsens_bbic is
 * part of its name and of its trace.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, tempsens_in, tempsens_ex, temsens_bbic; IPC failure; time-out,
 * wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_temperature_info(const char* handle, uint32_t* tempsens_ex, uint32_t* tempsens_in,
                                                     uint32_t* temsens_bbic);

/* Reads the status of an interface as a text.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   status     out: status text, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size       in: length of status in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_interface_get_status(const char* handle, const char* intf_name, char* status, uint32_t size);

/* Starts the module's production mode start-up. tarn_qcsapi_is_startprod_done tells when it is over.
 *
 *   handle  in: the caller id
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_startprod(const char* handle);

/* Tells whether the production start has finished.
 *
 *   handle              in: the caller id
 *   is_start_prod_done  out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, is_start_prod_done; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_is_startprod_done(const char* handle, uint32_t* is_start_prod_done);

/* Switches the module's radio transmission. No interface is named; tarn_qcsapi_radio_rfenable is the same for one interface.
 *
 *   handle  in: the caller id
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 5). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_rfenable(const char* handle, uint32_t value);

/* Switches the radio transmission of one interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 5). */
TARN_EXPORT int32_t tarn_qcsapi_radio_rfenable(const char* handle, const char* ifname, uint32_t value);

/* Stores a value of the integrator's own under a key. tarn_qcsapi_get_custom_value reads it.
 *
 *   handle        in: the caller id
 *   custom_key    in: key, NUL-terminated, cut to 32 characters
 *   custom_value  in: value, NUL-terminated, cut to 128 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, custom_key, custom_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_set_custom_value(const char* handle, const char* custom_key, const char* custom_value);

/* Runs a script on the module.
 *
 *   handle      in: the caller id
 *   scriptname  in: name of the script, NUL-terminated, cut to 32 characters
 *   param       in: its parameters, NUL-terminated, cut to 128 characters; pass "" for none
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, scriptname, param; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_run_script(const char* handle, const char* scriptname, const char* param);

/* Reads a parameter of the module's boot configuration.
 *
 *   handle       in: the caller id
 *   param_name   in: name of the parameter, NUL-terminated, cut to 32 characters
 *   param_value  out: its value, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size         in: length of param_value in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, param_name, param_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_bootcfg_get_parameter(const char* handle, const char* param_name, char* param_value,
                                                      uint32_t size);

/* Sets a parameter in the module's stored configuration of an interface.
 *
 *   handle       in: the caller id
 *   intf_name    in: interface name, NUL-terminated, cut to 64 characters
 *   param_name   in: name of the parameter, NUL-terminated, cut to 32 characters
 *   param_value  in: its value, NUL-terminated, cut to 128 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, param_name, param_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_config_update_parameter(const char* handle, const char* intf_name, const char* param_name,
                                                        const char* param_value);

/* Switches the module's telnet access. The mirror service has a switch of its own, tarn_qtn_mirror_set_telnet_enable.
 *
 *   handle  in: the caller id
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_telnet_enable(const char* handle, uint32_t value);

/* Has the module act on one of its services, to start or stop it for example.
 *
 *   handle   in: the caller id
 *   service  in: number of the service, as the module defines it
 *   action   in: number of the action, as the module defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_service_control(const char* handle, uint32_t service, uint32_t action);

/* Reads the carrier id.
 *
 *   handle        in: the caller id
 *   p_carrier_id  out: carrier id, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, p_carrier_id; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_carrier_id(const char* handle, uint32_t* p_carrier_id);

/* Sets the carrier id.
 *
 *   handle      in: the caller id
 *   carrier_id  in: carrier id, as the service defines it
 *   value       in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_set_carrier_id(const char* handle, uint32_t carrier_id, uint32_t value);

/* Sets the module's power management mode.
 *
 *   handle  in: the caller id
 *   mode    in: mode, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_pm_set_mode(const char* handle, uint32_t mode);

/* Reads how long the module has been running.
 *
 *   handle          in: the caller id
 *   p_elapsed_time  out: time since its start, 32-bit word, unit as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, p_elapsed_time; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_system_get_time_since_start(const char* handle, uint32_t* p_elapsed_time);

/* Reads the version of the module's firmware.
 *
 *   handle            in: the caller id
 *   firmware_version  out: version, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size              in: length of firmware_version in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, firmware_version; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_firmware_get_version(const char* handle, char* firmware_version, uint32_t size);

/* Channels, bandwidth and regulation (commands 2 to 5, 23 to 25, 43, 47 and 48) */

/* Reads the operating channel of an interface.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   channel    out: channel, 32-bit word (IEEE 802.11 channel number)
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, channel; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_channel(const char* handle, const char* intf_name, uint32_t* channel);

/* Reads the channel bandwidth of an interface.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   bandwidth  out: bandwidth, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, bandwidth; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_bw(const char* handle, const char* intf_name, uint32_t* bandwidth);

/* Reads the secondary channel that belongs to a channel.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   channel            in: primary channel (IEEE 802.11 channel number)
 *   secondary_channel  out: secondary channel, 32-bit word
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, secondary_channel; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_sec_chan(const char* handle, const char* intf_name, uint32_t channel,
                                                  uint32_t* secondary_channel);

/* Reads the state of the seamless DFS radio.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   status     out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_dfs_s_radio_status(const char* handle, const char* intf_name, uint32_t* status);

/* Lists the channels that an interface can use.
 *
 *   handle            in: the caller id
 *   intf_name         in: interface name, NUL-terminated, cut to 64 characters
 *   list_of_channels  out: the list, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size              in: length of list_of_channels in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, list_of_channels; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_list_channels(const char* handle, const char* intf_name, char* list_of_channels,
                                                       uint32_t size);

/* Lists the channels that a regulatory region allows. tarn_qcsapi_regulatory_get_list_regulatory_channels_if asks for one
 * interface.
 *
 *   handle            in: the caller id
 *   region_by_name    in: name of the region, NUL-terminated, cut to 32 characters
 *   bandwidth         in: bandwidth, as the service defines it
 *   list_of_channels  out: the list, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size              in: length of list_of_channels in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, region_by_name, list_of_channels; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_regulatory_get_list_regulatory_channels(const char* handle, const char* region_by_name,
                                                                        uint32_t bandwidth, char* list_of_channels,
                                                                        uint32_t size);

/* Lists the channels that a regulatory region allows on one interface.
 *
 *   handle            in: the caller id
 *   ifname            in: interface name, NUL-terminated, cut to 64 characters
 *   region_name       in: name of the region, NUL-terminated, cut to 32 characters
 *   bandwidth         in: bandwidth, as the service defines it
 *   value             in: further value of the call, as the service defines it
 *   list_of_channels  out: the list, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size              in: length of list_of_channels in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, region_name, list_of_channels; IPC failure; time-out,
 * wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_regulatory_get_list_regulatory_channels_if(const char* handle, const char* ifname,
                                                                           const char* region_name, uint32_t bandwidth,
                                                                           uint32_t value, char* list_of_channels,
                                                                           uint32_t size);

/* Replaces the country code of an interface.
 *
 *   handle             in: the caller id
 *   ifname             in: interface name, NUL-terminated, cut to 64 characters
 *   curr_country_name  in: country now in force, NUL-terminated, cut to 32 characters
 *   new_country_name   in: country to take its place, NUL-terminated, cut to 32 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, curr_country_name, new_country_name; IPC failure; time-out,
 * wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_regulatory_overwrite_country_code(const char* handle, const char* ifname,
                                                                  const char* curr_country_name, const char* new_country_name);

/* Sets the channel bandwidth of an interface.
 *
 *   handle     in: the caller id
 *   ifname     in: interface name, NUL-terminated, cut to 64 characters
 *   bandwidth  in: bandwidth, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_bw(const char* handle, const char* ifname, uint32_t bandwidth);

/* Sets the operating channel of an interface.
 *
 *   handle   in: the caller id
 *   ifname   in: interface name, NUL-terminated, cut to 64 characters
 *   channel  in: channel (IEEE 802.11 channel number), sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_channel(const char* handle, const char* ifname, uint32_t channel);

/* SSID, WPS and QoS map (commands 8, 26 to 28 and 30 to 41) */

/* Reads the state of WPS (Wi-Fi Simple Configuration) on an interface as a text.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   wps_state  out: state, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size       in: length of wps_state in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, wps_state; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_get_state(const char* handle, const char* intf_name, char* wps_state, uint32_t size);

/* Sets the SSID of an interface.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   ssid       in: SSID, NUL-terminated, cut to 32 characters, the most that IEEE 802.11 allows; an SSID with a NUL byte in it
 *              cannot be sent
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, ssid; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_SSID(const char* handle, const char* intf_name, const char* ssid);

/* Sets one table that maps DSCP code points (IETF RFC 2474, 64 of them) to access categories (cf. RFC 8325).
 *
 *   handle     in: the caller id
 *   table_id   in: table, as the service defines it
 *   dscp_list  in: 64 bytes, all must be readable; their meaning is the service's
 *   value_a    in: 8-bit value, sent as a single byte, not as a word; as the service defines it
 *   value_b    in: 8-bit value, likewise
 *
 * Shares command 27 with tarn_qcsapi_wifi_set_dscp_ac_map. No interface name is sent; that and the table id tell the
 * service which of the two was meant, so that with table_id 0 the message looks like the other's with an empty name.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, dscp_list; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_dscp_ac_table(const char* handle, uint32_t table_id, const uint8_t* dscp_list,
                                                       uint8_t value_a, uint8_t value_b);

/* Sets an interface's map of DSCP code points (IETF RFC 2474, 64 of them) to access categories (cf. RFC 8325).
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   dscp_list  in: 64 bytes, all must be readable; their meaning is the service's
 *   value_a    in: 8-bit value, sent as a single byte, not as a word; as the service defines it
 *   value_b    in: 8-bit value, likewise
 *
 * Shares command 27 with tarn_qcsapi_wifi_set_dscp_ac_table; the interface name tells the service which of the two was meant.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, dscp_list; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_dscp_ac_map(const char* handle, const char* intf_name, const uint8_t* dscp_list,
                                                     uint8_t value_a, uint8_t value_b);

/* Sets the mobility domain of an interface (fast BSS transition, IEEE 802.11).
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   value      in: mobility domain as a text, NUL-terminated, cut to 16 characters; format as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_ieee80211r_mobility_domain(const char* handle, const char* intf_name,
                                                                    const char* value);

/* Gives the interface's WPS registrar the PIN of a station that wants to join (Wi-Fi Simple Configuration).
 *
 *   handle   in: the caller id
 *   ifname   in: interface name, NUL-terminated, cut to 64 characters
 *   wps_pin  in: PIN as a text, NUL-terminated, cut to 32 characters; its check digit is not checked
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, wps_pin; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_registrar_report_pin(const char* handle, const char* ifname, const char* wps_pin);

/* Tells the interface's WPS registrar that the push button was pressed (Wi-Fi Simple Configuration).
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_registrar_report_button_press(const char* handle, const char* ifname);

/* Switches WPS off or on.
 *
 *   handle   in: the caller id
 *   ifname   in: interface name, NUL-terminated, cut to 64 characters
 *   disable  in: disable flag, inverted on its way: 0 sends 1, every other value sends 0
 *
 * The message carries the opposite of the argument. Pass the flag as the function's name says; do not invert it beforehand.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_disable_wps(const char* handle, const char* ifname, uint32_t disable);

/* Switches the UPnP side of WPS on an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_upnp_enable(const char* handle, const char* ifname, uint32_t value);

/* Switches the use of the access point's own WPS PIN.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_enable_ap_pin(const char* handle, const char* ifname, uint32_t value);

/* Sets the access point's own WPS PIN (Wi-Fi Simple Configuration). tarn_qcsapi_wps_save_ap_pin keeps it.
 *
 *   handle   in: the caller id
 *   ifname   in: interface name, NUL-terminated, cut to 64 characters
 *   wps_pin  in: PIN as a text, NUL-terminated, cut to 32 characters; its check digit is not checked
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, wps_pin; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_set_ap_pin(const char* handle, const char* ifname, const char* wps_pin);

/* Has the module store the access point's WPS PIN.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_save_ap_pin(const char* handle, const char* ifname);

/* Sets a WPS parameter of an interface.
 *
 *   handle       in: the caller id
 *   ifname       in: interface name, NUL-terminated, cut to 64 characters
 *   param_id     in: number of the parameter, as the service defines it
 *   param_value  in: its value, NUL-terminated, cut to 128 characters
 *
 * A NULL param_value is traced as "ifname is NULL", the same text as for the interface name.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, param_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_set_param(const char* handle, const char* ifname, uint32_t param_id,
                                              const char* param_value);

/* Reads a WPS parameter of an interface.
 *
 *   handle       in: the caller id
 *   ifname       in: interface name, NUL-terminated, cut to 64 characters
 *   param_id     in: number of the parameter, as the service defines it
 *   param_value  out: its value, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size         in: length of param_value in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, param_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_get_param(const char* handle, const char* ifname, uint32_t param_id, char* param_value,
                                              uint32_t size);

/* Sets whether WPS counts an interface as configured (Wi-Fi Simple Configuration).
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   state   in: state, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_set_configured_state(const char* handle, const char* ifname, uint32_t state);

/* Disassociates a station from an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   mac     in: MAC address of the station, 6 readable bytes
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, mac; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_disassociate_sta(const char* handle, const char* ifname, const uint8_t* mac);

/* Applies the security settings of an interface that were made before.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 5). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_apply_security_config(const char* handle, const char* ifname);

/* PHY and BSS (commands 44 to 46 and 49 to 63) */

/* Switches an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_interface_enable(const char* handle, const char* ifname, uint32_t value);

/* Sets the PHY mode of an interface.
 *
 *   handle        in: the caller id
 *   ifname        in: interface name, NUL-terminated, cut to 64 characters
 *   new_phy_mode  in: name of the mode, NUL-terminated, cut to 32 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, new_phy_mode; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_phy_mode(const char* handle, const char* ifname, const char* new_phy_mode);

/* Reads the PHY mode of an interface.
 *
 *   handle           in: the caller id
 *   ifname           in: interface name, NUL-terminated, cut to 64 characters
 *   p_wifi_phy_mode  out: name of the mode, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size             in: length of p_wifi_phy_mode in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, p_wifi_phy_mode; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_phy_mode(const char* handle, const char* ifname, char* p_wifi_phy_mode, uint32_t size);

/* Reads the state of SCS, the module's own channel selection.
 *
 *   handle        in: the caller id
 *   ifname        in: interface name, NUL-terminated, cut to 64 characters
 *   p_scs_status  out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, p_scs_status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_scs_status(const char* handle, const char* ifname, uint32_t* p_scs_status);

/* Switches SCS, the module's own channel selection.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_scs_enable(const char* handle, const char* ifname, uint32_t value);

/* Sets one of the options of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   option  in: number of the option, as the service defines it
 *   value   in: its value, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_option(const char* handle, const char* ifname, uint32_t option, uint32_t value);

/* Sets the MCS (modulation and coding scheme, IEEE 802.11) that an interface sends with.
 *
 *   handle        in: the caller id
 *   ifname        in: interface name, NUL-terminated, cut to 64 characters
 *   new_mcs_rate  in: name of the MCS, NUL-terminated, cut to 8 characters; format as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, new_mcs_rate; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_mcs_rate(const char* handle, const char* ifname, const char* new_mcs_rate);

/* Sets the RTS threshold of an interface (IEEE 802.11: a length in octets; RTS/CTS precedes longer frames).
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: threshold, sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_rts_threshold(const char* handle, const char* ifname, uint32_t value);

/* Sets the beacon interval of an interface (IEEE 802.11: in time units of 1024 microseconds).
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: interval, sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_beacon_interval(const char* handle, const char* ifname, uint32_t value);

/* Sets the DTIM period of an interface (IEEE 802.11: in beacon intervals).
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: period, sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_dtim(const char* handle, const char* ifname, uint32_t value);

/* Sets how many stations may associate with an interface. tarn_qcsapi_wifi_set_bss_assoc_limit sets another limit, without an
 * interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: limit, sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_assoc_limit(const char* handle, const char* ifname, uint32_t value);

/* Switches sending of A-MSDUs (IEEE 802.11 frame aggregation) on an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_tx_amsdu(const char* handle, const char* ifname, uint32_t value);

/* Switches airtime fairness between the stations of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_airfair(const char* handle, const char* ifname, uint32_t value);

/* Sets a parameter of range extender operation.
 *
 *   handle     in: the caller id
 *   ifname     in: interface name, NUL-terminated, cut to 64 characters
 *   parameter  in: number of the parameter, as the service defines it
 *   value      in: its value, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_extender_params(const char* handle, const char* ifname, uint32_t parameter,
                                                         uint32_t value);

/* Sets whether security settings of an interface take effect later. tarn_qcsapi_wifi_apply_security_config applies them.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: mode, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_security_defer_mode(const char* handle, const char* ifname, uint32_t value);

/* Creates a BSS with its interface in a given state.
 *
 *   handle  in: the caller id
 *   ifname  in: name of the interface to create, NUL-terminated, cut to 64 characters
 *   value   in: state of the interface, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 5). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_create_bss_with_ifstate(const char* handle, const char* ifname, uint32_t value);

/* Puts the SSID of an interface into a group.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: id of the group, as the service defines it, sent as it is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_SSID_group_id(const char* handle, const char* ifname, uint32_t value);

/* Sets the priority of an interface.
 *
 *   handle    in: the caller id
 *   ifname    in: interface name, NUL-terminated, cut to 64 characters
 *   priority  in: 8-bit value, sent as a single byte, not as a word; as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_priority(const char* handle, const char* ifname, uint8_t priority);

/* Security and access control (commands 64 to 78) */

/* Sets the association limit of a BSS. No interface is named; tarn_qcsapi_wifi_set_assoc_limit sets the limit of one interface.
 *
 *   handle  in: the caller id
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_bss_assoc_limit(const char* handle, uint32_t value1, uint32_t value2);

/* Switches isolation of the stations of an interface from each other. tarn_qcsapi_wifi_set_bss_isolate isolates one BSS from
 * the others.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_intra_bss_isolate(const char* handle, const char* ifname, uint32_t value);

/* Sets the security that the beacons of an interface announce.
 *
 *   handle        in: the caller id
 *   ifname        in: interface name, NUL-terminated, cut to 64 characters
 *   p_new_beacon  in: name of the beacon type, NUL-terminated, cut to 32 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, p_new_beacon; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_beacon_type(const char* handle, const char* ifname, const char* p_new_beacon);

/* Sets the WPA authentication mode of an interface.
 *
 *   handle               in: the caller id
 *   ifname               in: interface name, NUL-terminated, cut to 64 characters
 *   authentication_mode  in: name of the mode, NUL-terminated, cut to 32 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, authentication_mode; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_WPA_authentication_mode(const char* handle, const char* ifname,
                                                                 const char* authentication_mode);

/* Sets the WPA encryption modes of an interface.
 *
 *   handle            in: the caller id
 *   ifname            in: interface name, NUL-terminated, cut to 64 characters
 *   encryption_modes  in: names of the modes, NUL-terminated, cut to 32 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, encryption_modes; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_WPA_encryption_modes(const char* handle, const char* ifname,
                                                              const char* encryption_modes);

/* Sets the key passphrase of an interface (IEEE 802.11: 8 to 63 characters).
 *
 *   handle      in: the caller id
 *   ifname      in: interface name, NUL-terminated, cut to 64 characters
 *   passphrase  in: passphrase, NUL-terminated, cut to 63 characters: a key of 64 hexadecimal digits would lose its last one
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, passphrase; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_key_passphrase(const char* handle, const char* ifname, const char* passphrase);

/* Sets how often an interface renews its group key.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: interval, unit as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_group_key_interval(const char* handle, const char* ifname, uint32_t value);

/* Sets the use of protected management frames (IEEE 802.11) on an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: mode, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_pmf(const char* handle, const char* ifname, uint32_t value);

/* Sets the mode of the MAC address filter of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: mode, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_mac_address_filtering(const char* handle, const char* ifname, uint32_t value);

/* Empties the MAC address filter of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_clear_mac_address_filters(const char* handle, const char* ifname);

/* Reads the mode of the MAC address filter of an interface.
 *
 *   handle                         in: the caller id
 *   ifname                         in: interface name, NUL-terminated, cut to 64 characters
 *   current_mac_address_filtering  out: mode, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, current_mac_address_filtering; IPC failure; time-out,
 * wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_mac_address_filtering(const char* handle, const char* ifname,
                                                               uint32_t* current_mac_address_filtering);

/* Has the MAC address filter of an interface let a station in.
 *
 *   handle                in: the caller id
 *   ifname                in: interface name, NUL-terminated, cut to 64 characters
 *   address_to_authorize  in: MAC address of the station, 6 readable bytes
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, address_to_authorize; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_authorize_mac_address(const char* handle, const char* ifname,
                                                           const uint8_t* address_to_authorize);

/* Has the MAC address filter of an interface keep a station out.
 *
 *   handle           in: the caller id
 *   ifname           in: interface name, NUL-terminated, cut to 64 characters
 *   address_to_deny  in: MAC address of the station, 6 readable bytes
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, address_to_deny; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_deny_mac_address(const char* handle, const char* ifname, const uint8_t* address_to_deny);

/* Configures the VLAN (IEEE 802.1Q) of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_vlan_config(const char* handle, const char* ifname, uint32_t value1, uint32_t value2);

/* Switches isolation of the BSS of an interface from the other BSSs. tarn_qcsapi_wifi_set_intra_bss_isolate isolates its
 * stations.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_bss_isolate(const char* handle, const char* ifname, uint32_t value);

/* Transmit power, DFS and channel availability (commands 79 to 85, 95, 97, 99, 113, 126 and 127) */

/* Lists the levels of transmit power that an interface supports.
 *
 *   handle                 in: the caller id
 *   ifname                 in: interface name, NUL-terminated, cut to 64 characters
 *   available_percentages  out: the list, in per cent, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size                   in: length of available_percentages in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, available_percentages; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_supported_tx_power_levels(const char* handle, const char* ifname,
                                                                   char* available_percentages, uint32_t size);

/* Sets the level of transmit power of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: level, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_current_tx_power_level(const char* handle, const char* ifname, uint32_t value);

/* Sets the regulatory back-off of the transmit power on a channel.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value1  in: first value of the call, 8-bit, sent as a word; as the service defines it
 *   value2  in: second value, likewise
 *   value3  in: third value, likewise
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_reg_chan_txpower_backoff_set(const char* handle, const char* ifname, uint8_t value1,
                                                             uint8_t value2, uint8_t value3);

/* Sets the mode in which an interface monitors its neighbourhood.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *   value3  in: third value of the call, as the service defines it
 *
 * value1 and value2 change places in the message. The service counts on that; pass them in the order given here.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_nac_mon_mode(const char* handle, const char* ifname, uint32_t value1, uint32_t value2,
                                                      uint32_t value3);

/* Starts the seamless DFS radio.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_start_dfs_s_radio(const char* handle, const char* ifname, uint32_t value);

/* Stops the seamless DFS radio.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_stop_dfs_s_radio(const char* handle, const char* ifname);

/* Reads the state of the channel availability check (CAC), which listens for radar before a DFS channel is used.
 *
 *   handle     in: the caller id
 *   ifname     in: interface name, NUL-terminated, cut to 64 characters
 *   cacstatus  out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, cacstatus; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_cac_status(const char* handle, const char* ifname, uint32_t* cacstatus);

/* Sets whether a channel is inactive as a primary channel.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   value1     in: first value of the call, as the service defines it
 *   value2     in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_chan_pri_inactive(const char* handle, const char* intf_name, uint32_t value1,
                                                           uint32_t value2);

/* Applies the regulatory cap of the transmit power. No interface is named.
 *
 *   handle  in: the caller id
 *   value   in: as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_regulatory_apply_tx_power_cap(const char* handle, uint32_t value);

/* Reads the ICAC status, a state of the channel availability check.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   status     out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_icac_status(const char* handle, const char* intf_name, uint32_t* status);

/* Sets the secondary channel that belongs to a channel. tarn_qcsapi_wifi_get_sec_chan reads it.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_sec_chan(const char* handle, const char* ifname, uint32_t value1, uint32_t value2);

/* Reads the table of channel availability.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   chan_avail_status  out: record of 511 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, chan_avail_status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_chan_avail_status(const char* handle, const char* intf_name, void* chan_avail_status);

/* Sets the module's "wea CAC" switch, a variant of the channel availability check.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   value      in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_wea_cac_en(const char* handle, const char* intf_name, uint32_t value);

/* Station and interface statistics (commands 86 to 94, 96, 104 to 106, 109, 116, 123 and 124)
 *
 * A station is addressed by its association index, sent as it is. Records are copied whole even when the reply status tells of
 * an error. */

/* Reads the statistics of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   stats   out: record of 84 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, stats; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_interface_stats(const char* handle, const char* ifname, void* stats);

/* Reads the RSSI of each of four receive chains of an interface. Any output may be left out; with none the request is sent all
 * the same.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   rssi0   out: first chain, 32-bit word, as the service gives it; may be NULL, then it is skipped
 *   rssi1   out: second chain, likewise
 *   rssi2   out: third chain, likewise
 *   rssi3   out: fourth chain, likewise
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_rssi_by_chain(const char* handle, const char* ifname, uint32_t* rssi0, uint32_t* rssi1,
                                                       uint32_t* rssi2, uint32_t* rssi3);

/* Reads the transmit power of each of four chains from the module's calibration. All four outputs are required.
 *
 *   handle  in: the caller id
 *   pwr0    out: first chain, 32-bit word, as the service gives it
 *   pwr1    out: second chain, likewise
 *   pwr2    out: third chain, likewise
 *   pwr3    out: fourth chain, likewise
 *
 * Whichever output is NULL, the trace is "pwr is NULL".
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, pwr0 to pwr3; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_calcmd_get_tx_power(const char* handle, uint32_t* pwr0, uint32_t* pwr1, uint32_t* pwr2,
                                                    uint32_t* pwr3);

/* Reads the PHY mode of a connection.
 *
 *   handle           in: the caller id
 *   intf_name        in: interface name, NUL-terminated, cut to 64 characters
 *   value            in: 32-bit word, as the service defines it
 *   p_wifi_phy_mode  out: name of the mode, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size             in: length of p_wifi_phy_mode in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, p_wifi_phy_mode; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_connection_mode(const char* handle, const char* intf_name, uint32_t value,
                                                         char* p_wifi_phy_mode, uint32_t size);

/* Reads the RSSI of a station.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   rssi               out: RSSI in dBm, the service's 32-bit word as it is; read it as int32_t for its sign
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, rssi; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_rssi_in_dbm_per_association(const char* handle, const char* intf_name,
                                                                     uint32_t association_index, uint32_t* rssi);

/* Reads the MCS (IEEE 802.11) that is used towards a station.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   tx_mcs             out: MCS, 32-bit word, as the service gives it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, tx_mcs; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_tx_mcs_per_association(const char* handle, const char* intf_name,
                                                                uint32_t association_index, uint32_t* tx_mcs);

/* Reads the MCS (IEEE 802.11) that a station uses.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   rx_mcs             out: MCS, 32-bit word, as the service gives it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, rx_mcs; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_rx_mcs_per_association(const char* handle, const char* intf_name,
                                                                uint32_t association_index, uint32_t* rx_mcs);

/* Reads how long a station has been associated.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   time_in_second     out: time in seconds, 32-bit word
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, time_in_second; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_time_associated_per_association(const char* handle, const char* intf_name,
                                                                         uint32_t association_index, uint32_t* time_in_second);

/* Reads the statistics of a station. Any output may be left out; with none the request is sent all the same.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   out0               out: trailing word 1, as the service gives it; may be NULL, then it is skipped
 *   out1               out: trailing word 4, likewise
 *   out2               out: trailing word 5, likewise
 *   out3               out: trailing word 2, likewise
 *   out4               out: trailing word 3, likewise
 *   node_stats         out: the statistics as five 32-bit words, 20 bytes must be writable; may be NULL, then it is skipped
 *
 * The outputs take the reply's five trailing words in a crossed order: out0 to out4 receive words 1, 4, 5, 2 and 3. Words 1, 2
 * and 3 are those in which the functions per association above find RSSI, transmit MCS and receive MCS.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_node_stats(const char* handle, const char* intf_name, uint32_t association_index,
                                                    uint32_t* out0, uint32_t* out1, uint32_t* out2, uint32_t* out3,
                                                    uint32_t* out4, uint32_t* node_stats);

/* Reads the MAC address of a station.
 *
 *   handle             in: the caller id
 *   intf_name          in: interface name, NUL-terminated, cut to 64 characters
 *   association_index  in: association index, counted as the service counts, sent as it is
 *   mac_addr           out: MAC address, 6 bytes must be writable
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, mac_addr; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_associated_device_mac_addr(const char* handle, const char* intf_name,
                                                                    uint32_t association_index, uint8_t* mac_addr);

/* Reads what a scan found out about one access point. tarn_qcsapi_wifi_get_results_AP_scan tells how many there are.
 *
 *   handle       in: the caller id
 *   intf_name    in: interface name, NUL-terminated, cut to 64 characters
 *   index        in: access point, counted as the service counts, sent as it is
 *   ap_property  out: record of 632 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, ap_property; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_properties_AP(const char* handle, const char* intf_name, uint32_t index,
                                                       void* ap_property);

/* Reads a set of information about a station.
 *
 *   handle    in: the caller id
 *   ifname    in: interface name, 65 readable bytes, sent unchanged
 *   index     in: 16-bit index, sent as a word; as the service defines it
 *   mac_addr  in: MAC address of the station, 6 readable bytes
 *   nis       out: record of 536 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, mac_addr, nis; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_node_infoset(const char* handle, const char* ifname, uint16_t index,
                                                      const uint8_t* mac_addr, void* nis);

/* Reads a set of rates of an interface.
 *
 *   handle     in: the caller id
 *   ifname     in: interface name, 65 readable bytes, sent unchanged
 *   rate_type  in: which set, as the service defines it
 *   rates      out: the set, length raw bytes, all must be writable; no NUL is added; must not be NULL even if length is 0
 *   length     in: bytes to copy; 0 leaves rates as it was
 *
 * The library does not bound length: all of it is written. The result area holds 8200 bytes; the next 24 are the trailing
 * words of the reply, and bytes behind those are written as zeros.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, rates; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_rates(const char* handle, const char* ifname, uint32_t rate_type, void* rates,
                                               uint32_t length);

/* Reads the extended statistics of a virtual access point.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   stats   out: record of 24 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, stats; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_vap_extstats(const char* handle, const char* ifname, void* stats);

/* Reads the highest bit rate of an interface.
 *
 *   handle       in: the caller id
 *   ifname       in: interface name, 65 readable bytes, sent unchanged
 *   max_bitrate  out: bit rate, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size         in: length of max_bitrate in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, max_bitrate; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_max_bitrate(const char* handle, const char* ifname, char* max_bitrate, uint32_t size);

/* Reads the statistics of clear channel assessment (CCA, IEEE 802.11) of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   stats   out: record of 20 bytes, all must be writable; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, stats; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_cca_stats(const char* handle, const char* ifname, void* stats);

/* Reads the two counters of preamble errors of an interface.
 *
 *   handle          in: the caller id
 *   ifname          in: interface name, NUL-terminated, cut to 64 characters
 *   preamble_error  out: two 32-bit words, 8 bytes must be writable; which is which, the service defines
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, preamble_error; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_preamble_error(const char* handle, const char* ifname, uint32_t* preamble_error);

/* Scanning, parameters and thermal (commands 98, 100 to 103, 107, 108, 110 to 112, 114, 115, 117 to 122 and 125)
 *
 * Thermal mitigation is a sequence on the module: init, start, stop, exit. The library does not hold a caller to it. */

/* Reads the value that tarn_qcsapi_set_custom_value stored under a key.
 *
 *   handle        in: the caller id
 *   custom_key    in: key, NUL-terminated, cut to 32 characters
 *   custom_value  out: value, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size          in: length of custom_value in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, custom_key, custom_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_get_custom_value(const char* handle, const char* custom_key, char* custom_value, uint32_t size);

/* Reads the text that belongs to an error code.
 *
 *   handle      in: the caller id
 *   error_code  in: code, such as a reply status, sent as it is; cast a negative one to uint32_t
 *   err_msg     out: the text, NUL-terminated, cut to size - 1 characters; size bytes must be writable
 *   size        in: length of err_msg in bytes; 0 leaves it as it was
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, err_msg; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_errno_get_message(const char* handle, uint32_t error_code, char* err_msg, uint32_t size);

/* Starts a scan for access points.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   value      in: kind of the scan, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_start_scan_ext(const char* handle, const char* intf_name, uint32_t value);

/* Reads the state of a scan.
 *
 *   handle      in: the caller id
 *   intf_name   in: interface name, NUL-terminated, cut to 64 characters
 *   scanstatus  out: 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, scanstatus; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_scan_status(const char* handle, const char* intf_name, uint32_t* scanstatus);

/* Reads how many access points the last scan found. tarn_qcsapi_wifi_get_properties_AP reads each.
 *
 *   handle     in: the caller id
 *   intf_name  in: interface name, NUL-terminated, cut to 64 characters
 *   count_APs  out: number of access points, 32-bit word
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, intf_name, count_APs; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_results_AP_scan(const char* handle, const char* intf_name, uint32_t* count_APs);

/* Cancels WPS (Wi-Fi Simple Configuration) on an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wps_cancel(const char* handle, const char* ifname);

/* Sets a value of the module's security agent.
 *
 *   handle  in: the caller id
 *   action  in: action, 33 readable bytes, should hold a NUL
 *   key     in: key, 33 readable bytes, should hold a NUL
 *   value   in: 32-bit word, as the service defines it
 *
 * Both texts are sent as 33 bytes each, unchanged: neither cut nor given a NUL.
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, action, key; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_security_set_sec_agent(const char* handle, const char* action, const char* key, uint32_t value);

/* Reads one of the parameters of an interface.
 *
 *   handle   in: the caller id
 *   ifname   in: interface name, 65 readable bytes, sent unchanged
 *   param    in: number of the parameter, as the service defines it
 *   p_value  out: its value, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, p_value; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_get_parameter(const char* handle, const char* ifname, uint32_t param, uint32_t* p_value);

/* Sets one of the parameters of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   param   in: number of the parameter, as the service defines it
 *   value   in: its value, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_parameter(const char* handle, const char* ifname, uint32_t param, uint32_t value);

/* Sets whether an interface goes without the rates of IEEE 802.11b.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   value   in: on or off, as the service defines it; not inverted
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_disable_11b(const char* handle, const char* ifname, uint32_t value);

/* Switches multi-user operation (MU, IEEE 802.11) of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_enable_mu(const char* handle, const char* ifname, uint32_t value);

/* Sets a block of parameters of an interface.
 *
 *   handle      in: the caller id
 *   ifname      in: interface name, 65 readable bytes, sent unchanged
 *   param_name  in: name of the parameter, NUL-terminated, cut to 32 characters; may be NULL, then none is sent
 *   set_params  in: parameter block, 1040 readable bytes, all sent; layout as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname, set_params; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_set_params(const char* handle, const char* ifname, const char* param_name,
                                           const void* set_params);

/* Sets how long frames of an access category (IEEE 802.11) are held back for aggregation.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_ac_agg_hold_time(const char* handle, const char* ifname, uint32_t value1,
                                                          uint32_t value2);

/* Sets the legacy baseband setting of an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, 65 readable bytes, sent unchanged
 *   value   in: as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_legacy_bbic(const char* handle, const char* ifname, uint32_t value);

/* Prepares thermal mitigation.
 *
 *   handle  in: the caller id
 *   value   in: as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_thermal_mitig_init(const char* handle, uint32_t value);

/* Starts thermal mitigation.
 *
 *   handle  in: the caller id
 *   name    in: name, 65 readable bytes, sent unchanged; must not be NULL: not checked
 *   value1  in: first value of the call, as the service defines it
 *   value2  in: second value of the call, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_thermal_mitig_start(const char* handle, const char* name, uint32_t value1, uint32_t value2);

/* Stops thermal mitigation.
 *
 *   handle  in: the caller id
 *   name    in: name, 65 readable bytes, sent unchanged; must not be NULL: not checked
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_thermal_mitig_stop(const char* handle, const char* name);

/* Ends thermal mitigation, the counterpart of tarn_qcsapi_thermal_mitig_init.
 *
 *   handle  in: the caller id
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_thermal_mitig_exit(const char* handle);

/* Switches fast BSS transition (IEEE 802.11) on an interface.
 *
 *   handle  in: the caller id
 *   ifname  in: interface name, NUL-terminated, cut to 64 characters
 *   value   in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ifname; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qcsapi_wifi_set_ieee80211r(const char* handle, const char* ifname, uint32_t value);

/* Mirror and telnet (QTN_MIRROR, commands 0 to 2)
 *
 * The module mirrors a port's traffic and offers telnet access; both can be switched and read. All three states travel in one
 * reply. */

/* Reads whether port mirroring is on. Sends the very request of tarn_qtn_mirror_get_telnet_status.
 *
 *   handle  in: the caller id
 *   status  out: mirror status, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qtn_mirror_get_mirror_status(const char* handle, uint32_t* status);

/* Reads the state of telnet access. Sends the very request of tarn_qtn_mirror_get_mirror_status.
 *
 *   handle   in: the caller id
 *   ref_cnt  out: telnet reference count, 32-bit word
 *   status   out: telnet status, 32-bit word, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, ref_cnt, status; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qtn_mirror_get_telnet_status(const char* handle, uint32_t* ref_cnt, uint32_t* status);

/* Switches telnet access to the module on behalf of a process.
 *
 *   handle  in: the caller id
 *   enable  in: on or off, as the service defines it
 *   pid     in: process id of the requester; 0 is refused, whatever enable is
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle, pid; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qtn_mirror_set_telnet_enable(const char* handle, uint32_t enable, uint32_t pid);

/* Switches port mirroring of the module.
 *
 *   handle  in: the caller id
 *   enable  in: on or off, as the service defines it
 *
 * Returns the reply status, or TARN_QTN_FAILED (handle; IPC failure; time-out, wait 3). */
TARN_EXPORT int32_t tarn_qtn_mirror_set_mirror_enable(const char* handle, uint32_t enable);

#ifdef __cplusplus
}
#endif

#endif
