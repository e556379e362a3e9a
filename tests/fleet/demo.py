#!/usr/bin/env python3
"""One check of the demonstration of a fleet, which kit/fleet/demo is: runs the function that is named.

    tests/fleet/demo.py two_at_the_same_time PROGRAM_DIRECTORY...
"""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

_DEMO = pathlib.Path(__file__).parents[2] / "kit/fleet/demo"
_LIMIT = 200  # seconds, of which it takes some 10

# What a newcomer sees, in this order.
_SHOWN = (
    "Who is there?",
    "\nhome-20  there  ",
    "All of them are asked",
    "20 gateways: 20 done",
    "refused it: the gateway's policy does not allow it",
    "\nhome-07  gone ",
    "3 gateways: 2 done, 1 not sent (not there)",
    "home-09 TARN 2 EVT_RADIO_OPR_CHANNEL_CHANGED 8 bytes radioId=1 channel=36",
    "$ tarnctl diff home-09.json home-12.json",
    "\nradio 1 (radio0) ",
    "All of it goes now.",
)


def started(programs, directory):
    """The demonstration in a group of processes, with its temporary directory and its output in `directory`."""
    environment = os.environ | {"PATH": ":".join([*programs, os.environ["PATH"]]), "TMPDIR": str(directory)}
    with open(directory / "output", "wb") as output:
        return subprocess.Popen([_DEMO], env=environment, stdout=output, stderr=subprocess.STDOUT, start_new_session=True)


def output_of(directory):
    return (directory / "output").read_text(encoding="utf-8")


def is_anything_left(group):
    try:
        os.killpg(group, 0)
    except ProcessLookupError:
        return False
    return True


def assert_all_is_gone(process, directory):
    assert not is_anything_left(process.pid), "processes are left"
    left = [path.name for path in directory.iterdir() if path.name != "output"]
    assert not left, f"files are left: {left}"


def two_at_the_same_time(programs, area):
    directories = [area / "1", area / "2"]
    for directory in directories:
        directory.mkdir()
    processes = [started(programs, directory) for directory in directories]
    for process, directory in zip(processes, directories):
        exit_code = process.wait(_LIMIT)
        output = output_of(directory)
        assert exit_code == 0, output
        at = 0
        for text in _SHOWN:
            at = output.find(text, at)
            assert at >= 0, f"no {text!r} in its place in\n{output}"
        assert_all_is_gone(process, directory)


def interrupted(programs, area):
    process = started(programs, area)
    end = time.monotonic() + _LIMIT
    while "All of them are asked" not in output_of(area):
        assert process.poll() is None and time.monotonic() < end, output_of(area)
        time.sleep(0.05)
    os.killpg(process.pid, signal.SIGINT)  # as a terminal does
    assert process.wait(_LIMIT) == 130, output_of(area)
    assert_all_is_gone(process, area)


def main(check, *programs):
    with tempfile.TemporaryDirectory(prefix="tarn-demo-") as area:
        {"two_at_the_same_time": two_at_the_same_time, "interrupted": interrupted}[check](programs, pathlib.Path(area))


if __name__ == "__main__":
    main(*sys.argv[1:])
