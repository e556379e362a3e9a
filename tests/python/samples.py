"""Inputs for every function, such that the simulated gateway's default scenario can do most of what they ask for."""
from typing import Any

from tarn import Layout, contract

_STATION = bytes.fromhex("020000000101")
_OTHER_STATION = bytes.fromhex("020000000102")
_STRANGER = bytes.fromhex("02000000aa01")

# By FUNCTION.ARGUMENT or by the argument's name. The fields of a record are those that its selecting number names.
_VALUES: dict[str, Any] = {
    "radioId": 1,
    "ssidId": 1,
    "apId": 1,
    "index": 0,
    "chainIndex": 0,
    "association_index": 0,
    "ifname": "wifi0",
    "intf_name": "wifi0",
    "enable": 1,
    "value": 1,
    "value1": 1,
    "value2": 1,
    "value3": 1,
    "mac": _STRANGER,
    "mac_addr": _STATION,
    "macAddress": _STATION,
    "mdid": b"\xa1\xb2",
    "TarnSetRadioCfg.param": 1 << 1 | 1 << 3,
    "TarnSetRadioCfg.cfg": {"channel": 40, "bandwidth": 80},
    "TarnSetRadioExCfg.param": 1 << 2,
    "TarnSetRadioExCfg.cfg": {"stbc": 1},
    "TarnSetSsidIntfCfg.param": 1 << 1,
    "TarnSetSsidIntfCfg.cfg": {"hidden": 1},
    "TarnSetAccessPointCfg.cfg": {
        "enabled": 1,
        "assocLimit": 9,
        "beaconInterval": 200,
        "dtim": 3,
        "rtsThreshold": 2347,
    },
    "TarnSetAccessPointSecurityCfg.cfg": {
        "beaconType": "wpa2",
        "authenticationMode": "psk",
        "encryptionModes": "aes",
        "passphrase": "correct horse",
        "radiusPort": 1812,
    },
    "TarnSetAccessPointWpsCfg.value": 1 << 0,
    "TarnSetAccessPointWpsCfg.cfg": {"wpsEnabled": 1},
    "TarnSetQuantennaSmartWiFiQcommCfg.value": 1 << 3,
    "TarnSetQuantennaSmartWiFiQcommCfg.cfg": {"qcommIntervalSeconds": 7},
    "TarnSetQuantennaSmartWiFiQslPart1Cfg.value": 1 << 5,
    "TarnSetQuantennaSmartWiFiQslPart1Cfg.cfg": {"name": "attic"},
    "TarnSetQuantennaSmartWiFiQslPart2Cfg.value": 1 << 3,
    "TarnSetQuantennaSmartWiFiQslPart2Cfg.cfg": {"retryLimit": 5},
    "TarnDownloadQuantennaWirelessConf.path": "/tmp/wireless.conf",
    "TarnGetQuantennaSmartWiFiCfgToFile.path": "/tmp/smart.conf",
    "TarnKickOutAccessPointAssociated.macAddress": _OTHER_STATION,
    "TarnAddAccessPointMacFilter.macAddress": _STRANGER,
    "TarnDelAccessPointMacFilter.macAddress": _STRANGER,
    "TarnSetAccessPointMacFilterMode.mode": 2,
    "TarnAddQuantennaSmartWiFiNonSteer.mac_addr": _STRANGER,
    "TarnDelQuantennaSmartWiFiNonSteer.mac_addr": _STRANGER,
    "TarnGetSsidIntf.ssidId": 2,
    "TarnGetAccessPoint.apId": 2,
    "TarnSetLogLevel.level": 5,
    "TarnSetStopPollingEnable.value2": 0,
    "tarn_qcsapi_wifi_get_sec_chan.channel": 40,
    "tarn_qcsapi_wifi_run_script.scriptname": "calibrate",
    "tarn_qcsapi_bootcfg_get_parameter.param_name": "serial",
    "tarn_qcsapi_regulatory_get_list_regulatory_channels.region_by_name": "eu",
    "tarn_qcsapi_regulatory_get_list_regulatory_channels.bandwidth": 80,
    "tarn_qcsapi_regulatory_get_list_regulatory_channels_if.region_name": "eu",
    "tarn_qcsapi_regulatory_get_list_regulatory_channels_if.bandwidth": 80,
    "tarn_qcsapi_wifi_set_SSID.intf_name": "wifi1",
    "tarn_qcsapi_wifi_set_SSID.ssid": "caf\xe9",
    "tarn_qcsapi_wifi_set_ieee80211r_mobility_domain.value": "c3d4",
    "tarn_qcsapi_wps_registrar_report_pin.wps_pin": "12345670",
    "tarn_qcsapi_wps_set_ap_pin.wps_pin": "12345670",
    "tarn_qcsapi_wifi_disable_wps.disable": 0,
    "tarn_qcsapi_wifi_disassociate_sta.mac": bytes.fromhex("020000000103"),
    "tarn_qcsapi_regulatory_overwrite_country_code.curr_country_name": "eu",
    "tarn_qcsapi_regulatory_overwrite_country_code.new_country_name": "us",
    "tarn_qcsapi_wifi_set_phy_mode.new_phy_mode": "11n",
    "tarn_qcsapi_wifi_set_bw.bandwidth": 40,
    "tarn_qcsapi_wifi_set_channel.channel": 48,
    "tarn_qcsapi_wifi_set_mcs_rate.new_mcs_rate": "auto",
    "tarn_qcsapi_wifi_set_beacon_interval.value": 100,
    "tarn_qcsapi_wifi_create_bss_with_ifstate.ifname": "wifi7",
    "tarn_qcsapi_wifi_set_beacon_type.ifname": "wifi1",
    "tarn_qcsapi_wifi_set_beacon_type.p_new_beacon": "wpa2",
    "tarn_qcsapi_wifi_set_WPA_authentication_mode.ifname": "wifi1",
    "tarn_qcsapi_wifi_set_WPA_authentication_mode.authentication_mode": "psk",
    "tarn_qcsapi_wifi_set_WPA_encryption_modes.ifname": "wifi1",
    "tarn_qcsapi_wifi_set_WPA_encryption_modes.encryption_modes": "aes",
    "tarn_qcsapi_wifi_set_key_passphrase.ifname": "wifi1",
    "tarn_qcsapi_wifi_set_key_passphrase.passphrase": "battery staple",
    "tarn_qcsapi_wifi_set_security_defer_mode.value": 0,
    "tarn_qcsapi_wifi_set_mac_address_filtering.ifname": "wifi1",
    "tarn_qcsapi_wifi_authorize_mac_address.ifname": "wifi1",
    "tarn_qcsapi_wifi_deny_mac_address.ifname": "wifi1",
    "tarn_qcsapi_wifi_get_connection_mode.value": 0,
    "tarn_qcsapi_wifi_authorize_mac_address.address_to_authorize": _STRANGER,
    "tarn_qcsapi_wifi_deny_mac_address.address_to_deny": _STRANGER,
    "tarn_qcsapi_wifi_set_current_tx_power_level.value": 50,
    "tarn_qcsapi_reg_chan_txpower_backoff_set.value1": 36,
    "tarn_qcsapi_wifi_start_dfs_s_radio.value": 52,
    "tarn_qcsapi_wifi_set_chan_pri_inactive.value1": 36,
    "tarn_qcsapi_errno_get_message.error_code": 0xFFFFFF37,
    "tarn_qcsapi_wifi_get_rates.length": 300,
    "tarn_qcsapi_wifi_set_sec_chan.value1": 48,
    "tarn_qcsapi_wifi_set_sec_chan.value2": 44,
    "tarn_qcsapi_thermal_mitig_start.name": "wifi0",
    "tarn_qcsapi_thermal_mitig_stop.name": "wifi0",
    "tarn_qcsapi_thermal_mitig_start.value1": 80,
    "tarn_qcsapi_thermal_mitig_start.value2": 70,
    "tarn_qcsapi_security_set_sec_agent.action": "set",
    "tarn_qcsapi_set_params.param_name": None,
    "tarn_qcsapi_set_params.set_params": {"entries": [{"name": "colour", "value": "green"}]},
    "tarn_qcsapi_wifi_set_dscp_ac_map.dscp_list": {"categories": [at % 4 for at in range(64)]},
}


def inputs_of(function: str, layout: Layout) -> dict[str, Any]:
    """Its inputs by name, in their order. Numbers are numbers, texts are texts, all else is bytes."""
    _, command = contract.COMMANDS[function]
    return {
        entry["name"]: _sample(function, entry, layout) for entry in command["arguments"] if _is_given(entry, command)
    }


def _is_given(entry: dict[str, Any], command: dict[str, Any]) -> bool:
    is_room_for_text = any(
        other.get("size_argument") == entry["name"] and other["type"] == "text" for other in command["arguments"]
    )
    return entry["direction"] == "in" and not is_room_for_text


def _sample(function: str, entry: dict[str, Any], layout: Layout) -> Any:
    place = f"{function}.{entry['name']}"
    size = contract.RECORD_SIZES[entry["record"]] if entry["type"] == "record" else entry.get("size", 0)
    fallback: Any = "text" if entry["type"] == "text" else bytes(size) if entry["type"] in ("bytes", "record") else 1
    value = _VALUES.get(place, _VALUES.get(entry["name"], fallback))
    if isinstance(value, dict):
        kind = layout.record(entry.get("record", place))
        assert kind is not None
        return bytes(kind(**value))
    return value
