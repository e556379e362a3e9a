"""The time of a call from Python: `calls.py COUNT` prints what calls.c prints of one caller."""
import sys
import time

import tarn

_ARGUMENTS = {
    "TarnGetLogLevel": (),
    "tarn_qcsapi_wifi_get_channel": ("wifi0",),
    "TarnGetRadio": (1,),
    "tarn_qcsapi_firmware_get_version": (),
}


def main():
    count = int(sys.argv[1])
    for name, arguments in _ARGUMENTS.items():
        function = getattr(tarn, name)
        function("bench", *arguments)
        began = time.perf_counter_ns()
        for _ in range(count):
            function("bench", *arguments)
        print(f"{name} {(time.perf_counter_ns() - began) / count:.0f}")


main()
