"""How long the simulated gateway takes to answer.

    replies.py all ROUNDS SCENARIO...     each function
    replies.py some ROUNDS SCENARIO...    six of them

A SCENARIO is the name of one that comes with the gateway, or a file, with the objects that tests/python/samples.py names.
Writes JSON: by function and scenario what a caller waited, and how long the gateway's process ran meanwhile, which other load
on the machine does not lengthen; a number for each call, in microseconds; and how many calls were done. Scenarios and
functions take turns, round by round.
"""
import json
import os
import sys
import time

import samples
from tarn import contract
from tarn.calling import command_named
from tarn.layouts import layout_in_use
from tarn.simulated import SimulatedGateway

_SOME = [
    "TarnGetLogLevel",
    "TarnGetRadio",
    "TarnGetAccessPointAssociatedAt",
    "tarn_qcsapi_wifi_get_channel",
    "tarn_qcsapi_wifi_set_channel",
    "tarn_qcsapi_wifi_rfenable",
]
_TIMES = 4  # that a gateway is called with each of the function's inputs
_SECONDS_BETWEEN = 30  # of the gateway's time: stations that were sent away have come back

# What a function's inputs of tests/python/samples.py alternate with, so that each call changes something. Without an entry here
# 1 alternates with 0, where it is not the id of an object.
_OTHERS = {
    "TarnSetRadioCfg.cfg": {"channel": 36, "bandwidth": 20},
    "TarnSetSsidIntfCfg.cfg": {"hidden": 0},
    "TarnSetAccessPointCfg.cfg": {"enabled": 0, "assocLimit": 0, "beaconInterval": 100, "dtim": 1, "rtsThreshold": 2347},
    "TarnSetAccessPointSecurityCfg.cfg": {"beaconType": "open", "authenticationMode": "open", "encryptionModes": "none"},
    "TarnSetAccessPointWpsCfg.cfg": {"wpsEnabled": 0},
    "TarnSetAccessPointMacFilterMode.mode": 1,
    "tarn_qcsapi_wifi_set_SSID.ssid": "another",
    "tarn_qcsapi_wifi_set_beacon_type.p_new_beacon": "wpa3",
    "tarn_qcsapi_wifi_set_key_passphrase.passphrase": "passphrase",
    "tarn_qcsapi_wifi_set_phy_mode.new_phy_mode": "11ax",
    "tarn_qcsapi_wifi_set_bw.bandwidth": 80,
    "tarn_qcsapi_wifi_set_channel.channel": 36,
    "tarn_qcsapi_wifi_set_mcs_rate.new_mcs_rate": "MCS1",
    "tarn_qcsapi_wifi_set_current_tx_power_level.value": 100,
    "tarn_qtn_mirror_set_telnet_enable.pid": 1,
}
_IDS = {"radioId", "ssidId", "apId"}


def ran(gateway):
    """How long all threads of its process have run, in microseconds."""
    folder = f"/proc/{gateway._process.pid}/task"
    total = 0
    for thread in os.listdir(folder):
        with open(os.path.join(folder, thread, "schedstat"), encoding="ascii") as file:
            total += int(file.read().split()[0])
    return total / 1e3


def other_value(place, name, value):
    if place in _OTHERS:
        return _OTHERS[place]
    return 0 if value == 1 and name not in _IDS else value


def calls_of(function):
    """The function with its inputs, ready to be called, and with others if there are any."""
    layout, command = layout_in_use(), command_named(function)
    inputs = samples.inputs_of(function, layout)
    others = {name: other_value(f"{function}.{name}", name, value) for name, value in inputs.items()}

    def call_with(given):
        made = [argument.make(given, layout) for argument in command.arguments]
        return lambda: command.function(b"bench", *made)

    return [call_with(given) for given in ([inputs] if others == inputs else [inputs, others])]


def take(figures, gateway, function):
    for call in calls_of(function) * _TIMES:
        before = ran(gateway)
        began = time.perf_counter_ns()
        result = call()
        figures["waited"].append((time.perf_counter_ns() - began) / 1e3)
        figures["ran"].append(ran(gateway) - before)
        figures["done"] += result == 0
        gateway.step(_SECONDS_BETWEEN)


def replies(scenarios, functions, rounds, functions_of_a_gateway):
    """Each gateway is new, and asked so many of the functions."""
    taken = {function: {scenario: {"waited": [], "ran": [], "done": 0} for scenario in scenarios} for function in functions}
    for _ in range(rounds):
        for first in range(0, len(functions), functions_of_a_gateway):
            for scenario in scenarios:
                with SimulatedGateway(scenario, speed=0) as gateway:
                    gateway.order("log", "off")
                    for function in functions[first:first + functions_of_a_gateway]:
                        take(taken[function][scenario], gateway, function)
    return taken


def main():
    subject, rounds, scenarios = sys.argv[1], int(sys.argv[2]), sys.argv[3:]
    if subject == "all":  # one each, as it may leave a gateway without stations
        taken = replies(scenarios, list(contract.COMMANDS), rounds, 1)
    else:
        taken = replies(scenarios, _SOME, rounds, len(_SOME))
    print(json.dumps(taken))


main()
