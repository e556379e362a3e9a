"""What a call costs as a process of its own, and from several languages: tarnctl beside busctl, Python and C."""
import os
import shutil
import subprocess
import sys
import tempfile
import time

import kit
import plots
from page import Goal, paragraph, picture, spread, table
from samples import median, ratio

NAME = "tools"
PACKAGES = ["systemd", "dbus"]
TARGETS = ["tarnctl", "tarn-gateway", "tarn_python", "tarn_bench_calls"]

_MOST_RATIO = 1.5  # of tarnctl call to busctl call, as whole processes
_LOOP = 10  # processes that one shell starts
_LINES = 1000  # of one tarnctl call --stdin
_CALLS = 1000  # of C and of Python, in each repetition
_BUSCTL, _TARNCTL = "busctl call", "tarnctl call, a number"
_WORDS = {
    "TarnGetLogLevel": [],
    "tarn_qcsapi_wifi_get_channel": ["ifname=wifi0"],
    "TarnGetRadio": ["radioId=1"],
    "tarn_qcsapi_firmware_get_version": [],
}
_RATES = {"shell loop of busctl": "busctl, a process each", "shell loop of tarnctl": "tarnctl, a process each",
          "tarnctl call --stdin": "tarnctl call --stdin"}


def _processes(tarnctl, address, lines):
    """By name: a command, how many calls it makes, and the name of the one that it is compared with."""
    number = [tarnctl, "call", "TarnGetLogLevel"]
    record = ["call", "TarnGetRadio", "radioId=1"]
    bus = "org.freedesktop.DBus"
    busctl = [shutil.which("busctl"), f"--address={address}", "call", bus, "/", bus, "GetConnectionUnixProcessID", "s", bus]
    loop = ["/bin/sh", "-c", f'i=0; while [ $i -lt {_LOOP} ]; do "$@"; i=$((i + 1)); done', "sh"]
    return {
        "busctl --version": ([busctl[0], "--version"], 1, "busctl --version"),
        "tarnctl --version": ([tarnctl, "--version"], 1, "busctl --version"),
        _BUSCTL: (busctl, 1, _BUSCTL),
        _TARNCTL: (number, 1, _BUSCTL),
        "tarnctl call, a record as hexadecimal": ([tarnctl, "--layout=", *record], 1, _BUSCTL),
        "tarnctl call, a record by its fields": ([tarnctl, *record], 1, _BUSCTL),
        "shell loop of busctl": (loop + busctl, _LOOP, "shell loop of busctl"),
        "shell loop of tarnctl": (loop + number, _LOOP, "shell loop of busctl"),
        "tarnctl call --stdin": (["/bin/sh", "-c", 'exec "$0" call --stdin < "$1"', tarnctl, lines], _LINES,
                                 "shell loop of busctl"),
    }


def _microseconds(command):
    """Of the process, from its start to its end."""
    nowhere = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    began = time.perf_counter_ns()
    process = os.posix_spawn(command[0], command, os.environ, file_actions=nowhere)
    _, state = os.waitpid(process, 0)
    taken = time.perf_counter_ns() - began
    if state != 0:
        sys.exit(f"{' '.join(command)}: failed with {os.waitstatus_to_exitcode(state)}")
    return taken / 1000


def _measure_processes(tarnctl, directory, repetitions):
    lines = os.path.join(directory, "lines")
    with open(lines, "w", encoding="ascii") as file:
        file.write('{"function": "TarnGetLogLevel"}\n' * _LINES)
    with kit.running(["dbus-daemon", "--session", "--nofork", "--print-address=1"], stderr=subprocess.DEVNULL) as (_, address):
        chosen = _processes(tarnctl, address, lines)
        times = {name: [] for name in chosen}
        for _ in range(1 + repetitions):
            for name, (command, calls, _) in chosen.items():
                times[name].append(_microseconds(command) / calls)
    times = {name: each[1:] for name, each in times.items()}  # from then on programs and libraries are in memory
    return {name: {"time": median(times[name]), "ratio": ratio(times[name], times[base])}
            for name, (_, _, base) in chosen.items()}


def _measure_calls(programs, repetitions):
    times = {name: {"C": [], "Python": [], "tarnctl": []} for name in _WORDS}
    script = kit.ROOT / "bench" / "tools" / "calls.py"
    for _ in range(repetitions):
        texts = {"C": kit.output([programs["tarn_bench_calls"], _CALLS, 1]), "Python": kit.python(script, _CALLS)}
        for language, text in texts.items():
            for line in text.splitlines():
                name, nanoseconds = line.split()
                times[name][language].append(float(nanoseconds) / 1000)
        for name, words in _WORDS.items():
            times[name]["tarnctl"].append(_microseconds([str(programs["tarnctl"]), "call", name, *words]))
    return {f"{name}, {language}": {"time": median(sample), "ratio": ratio(sample, languages["C"])}
            for name, languages in times.items() for language, sample in languages.items()}


def measure(programs, quick):
    with tempfile.TemporaryDirectory() as directory:
        os.environ.update(KORIIL_DIR=directory, KORIIL_TRACE="off")
        with kit.running([programs["tarn-gateway"]]):
            processes = _measure_processes(str(programs["tarnctl"]), directory, 5 if quick else 100)
        with kit.on_one_processor(), kit.running([programs["tarn-gateway"]]):
            calls = _measure_calls(programs, 3 if quick else 25)
        del os.environ["KORIIL_DIR"], os.environ["KORIIL_TRACE"]
    return {"processes": processes, "calls": calls}


def goals(figures):
    whole = figures["processes"][_TARNCTL]["ratio"]
    return [Goal("`tarnctl call` beside `busctl call`, whole processes", f"at most {_MOST_RATIO} ×",
                 spread(whole, ".2f", " ×"), whole["value"] <= _MOST_RATIO)]


def _a_second(figure):
    return 1e6 / figure["time"]["value"]


def _conclusion(figures):
    processes = figures["processes"]
    return (f"A call by tarnctl takes {processes[_TARNCTL]['time']['value'] / 1000:.1f} ms from the start of its process to "
            f"its end, {processes[_TARNCTL]['ratio']['value']:.2f} times as long as one by busctl. A script that makes many "
            f"gives them to one process: `tarnctl call --stdin` makes {_a_second(processes['tarnctl call --stdin']):,.0f} a "
            f"second, and a shell loop {_a_second(processes['shell loop of tarnctl']):,.0f}.")


def _conclusion_of_languages(figures):
    ratios = {language: [figures["calls"][f"{name}, {language}"]["ratio"]["value"] for name in _WORDS]
              for language in ("Python", "tarnctl")}
    return (f"From Python a call takes {min(ratios['Python']):.1f} to {max(ratios['Python']):.1f} times as long as from C, "
            f"and as a process of tarnctl {min(ratios['tarnctl']):,.0f} to {max(ratios['tarnctl']):,.0f} times.")


def section(figures):
    processes = [(name, spread(figure["time"], ".1f"), spread(figure["ratio"], ".3f"), f"{_a_second(figure):,.0f}")
                 for name, figure in figures["processes"].items()]
    calls = [(name, spread(figure["time"], ".1f"), spread(figure["ratio"], ".1f")) for name, figure in figures["calls"].items()]
    return [
        "## The tools",
        "",
        *paragraph(
            "What a call costs from a shell: `tarnctl` asks a simulated gateway for a number or a record, and `busctl` asks a "
            "D-Bus daemon of its own for a number. Times are of whole processes, from start to end, a call; those of a loop "
            f"are a {_LOOP}th of a shell that starts {_LOOP} of them, and those of `--stdin` a share of one process that makes "
            f"{_LINES:,} calls. Ratios are to the same by busctl, and for `--stdin` to busctl's loop."),
        *picture("performance-tools", _conclusion(figures)),
        *table(["Command", "µs a call", "to busctl", "calls a second"], processes),
        *paragraph(
            "The same calls of the simulated gateway from C, from Python and as a process of `tarnctl`, with all processes on "
            "one processor:"),
        *picture("performance-languages", _conclusion_of_languages(figures)),
        *table(["Function, caller", "µs a call", "to C"], calls),
    ]


def _plot_processes(figure, theme, figures):
    left, right = figure.subplots(1, 2, width_ratios=(3, 2))
    processes = figures["processes"]
    names = [name for name in processes if name not in _RATES][::-1]
    values = [processes[name]["time"]["value"] / 1000 for name in names]
    left.barh(names, values, height=0.65, color=[theme.peers[0] if name.startswith("busctl") else theme.ours for name in names])
    for place, value in enumerate(values):
        left.annotate(f" {value:.2f}", (value, place), va="center", fontsize=9)
    left.set_xlabel("ms, from the start of a process to its end")
    left.set_xlim(0, max(values) * 1.15)
    values = [_a_second(processes[name]) for name in _RATES][::-1]
    right.barh(list(_RATES.values())[::-1], values, height=0.5, color=[theme.ours, theme.ours, theme.peers[0]])
    for place, value in enumerate(values):
        right.annotate(f" {value:,.0f}", (value, place), va="center", fontsize=9)
    right.set_xscale("log")
    right.set_xlim(min(values) / 3, max(values) * 8)
    plots.plain_ticks(right.xaxis)
    right.set_xlabel("calls a second")


def _plot_languages(figure, theme, figures):
    axes = figure.subplots()
    names = list(_WORDS)[::-1]
    for offset, (language, colour) in enumerate(zip(("C", "Python", "tarnctl"), (theme.raw, theme.peers[0], theme.ours))):
        values = [figures["calls"][f"{name}, {language}"]["time"]["value"] for name in names]
        places = [place + 0.27 * (1 - offset) for place in range(len(names))]
        axes.barh(places, values, height=0.25, color=colour, label=language)
        for place, value in zip(places, values):
            axes.annotate(f" {value:,.0f}", (value, place), va="center", fontsize=9)
    axes.set_yticks(range(len(names)), names)
    axes.set_xscale("log")
    plots.plain_ticks(axes.xaxis)
    axes.set_xlim(left=1)
    axes.set_xlabel("µs a call")
    axes.legend(loc="center left", bbox_to_anchor=(1, 0.5), fontsize=9)


PLOTS = {
    "performance-tools": ("A call as a process of its own, and many calls in one", 260, _plot_processes),
    "performance-languages": ("The same call from C, from Python and by tarnctl", 300, _plot_languages),
}
