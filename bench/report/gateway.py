"""How long the simulated gateway takes to answer: by function, by its stations, by callers; and what it costs when idle."""
import contextlib
import json
import os
import pathlib
import tempfile
import time

import kit
import plots
from page import paragraph, picture, spread, table
from samples import median, ratio

NAME = "gateway"
PACKAGES = []
TARGETS = ["tarn-gateway", "tarn_python", "tarn_bench_calls"]

_DEFAULT = kit.ROOT / "kit" / "simulator" / "scenarios" / "default.json"
_REPLIES = kit.ROOT / "bench" / "gateway" / "replies.py"
_LARGE = "4x8x125"
_STATIONS = {"1x1x1": 1, "1x1x16": 16, "1x1x64": 64, "1x2x128": 256, "2x4x125": 1000, _LARGE: 4000}
_CALLERS = ("1", "2", "4", "8", "16", "64")
_CALLS = 2000  # of all callers together, in each repetition, of each function
_SLOWEST = 12  # functions in the table


def _write_scenarios(program, directory):
    """A file for each size, with the objects that calls name, and with the timing and the air of the default scenario."""
    default = json.loads(_DEFAULT.read_text(encoding="utf-8"))
    for size in _STATIONS:
        scenario = json.loads(kit.output([program, "--generate", *size.split("x")]))
        scenario.update({key: default[key] for key in ("module", "smartWiFi", "timing", "air")})
        for interface, name in zip(scenario["radios"][0]["interfaces"], ("wifi0", "wifi1")):
            interface["name"] = name
        for client, other in zip(scenario["clients"], default["clients"][:3]):
            client["address"] = other["address"]
        (directory / f"{size}.json").write_text(json.dumps(scenario), encoding="utf-8")


def _measure_replies(functions, rounds, scenarios):
    """By function and the scenario's name; each reply with its ratio to that with the first scenario."""
    with kit.on_one_processor():  # what a process ran is written down when another one runs there
        taken = json.loads(kit.python(_REPLIES, functions, rounds, *scenarios.values()))
    return {
        function: {name: {"waited": median(one["waited"]), "ran": median(one["ran"]), "done": one["done"],
                          "ratio": ratio(one["ran"], next(iter(by_scenario.values()))["ran"])}
                   for name, one in zip(scenarios, by_scenario.values())}
        for function, by_scenario in taken.items()
    }


def _measure_callers(programs, repetitions):
    times = {callers: {} for callers in _CALLERS}
    with tempfile.TemporaryDirectory() as directory:
        environment = {**os.environ, "KORIIL_DIR": directory, "KORIIL_TRACE": "off"}
        with kit.running([programs["tarn-gateway"], "--directory", directory]):
            for _ in range(repetitions):
                for callers in _CALLERS:
                    text = kit.output([programs["tarn_bench_calls"], _CALLS // int(callers), callers], environment)
                    for line in text.splitlines():
                        function, nanoseconds = line.split()
                        times[callers].setdefault(function, []).append(float(nanoseconds) / 1000)
    return {
        function: {callers: {"time": median(times[callers][function]),
                             "callsPerSecond": median([int(callers) * 1e6 / each for each in times[callers][function]]),
                             "ratio": ratio(times[callers][function], times["1"][function])}
                   for callers in _CALLERS}
        for function in times["1"]
    }


def _ran(process):
    """How long all threads of a process have run, in seconds."""
    stats = pathlib.Path(f"/proc/{process.pid}/task").glob("*/schedstat")
    return sum(int(each.read_text(encoding="ascii").split()[0]) for each in stats) / 1e9


def _measure_sizes(program, scenarios, starts, seconds):
    """How long a gateway takes to start, and what it takes of a processor by itself: all sizes at the same time."""
    taken = {size: [] for size in scenarios}
    with tempfile.TemporaryDirectory() as place, contextlib.ExitStack() as stack:
        def start(size):
            directory = pathlib.Path(place, size)
            directory.mkdir(exist_ok=True)
            return kit.running([program, "--directory", directory, "--scenario", scenarios[size]])

        for _ in range(starts):
            for size in scenarios:
                began = time.perf_counter()
                with start(size):
                    taken[size].append((time.perf_counter() - began) * 1e3)
        processes = {size: stack.enter_context(start(size))[0] for size in scenarios}
        time.sleep(1)  # after which nothing is left of the start
        before, began = {size: _ran(process) for size, process in processes.items()}, time.perf_counter()
        time.sleep(seconds)
        shares = {size: (_ran(process) - before[size]) / (time.perf_counter() - began) for size, process in processes.items()}
    return {size: {"start": median(taken[size]), "ratio": ratio(taken[size], next(iter(taken.values()))),
                   "percent": float(f"{100 * shares[size]:.4g}")} for size in scenarios}


def measure(programs, quick):
    gateway = programs["tarn-gateway"]
    with tempfile.TemporaryDirectory() as directory:
        _write_scenarios(gateway, pathlib.Path(directory))
        files = {size: f"{directory}/{size}.json" for size in _STATIONS}
        return {
            "functions": _measure_replies("all", 1 if quick else 2, {"default": "default", _LARGE: files[_LARGE]}),
            "stations": _measure_replies("some", 1 if quick else 10, files),
            "callers": _measure_callers(programs, 2 if quick else 15),
            "sizes": _measure_sizes(gateway, files, 2 if quick else 10, 3 if quick else 30),
        }


def goals(figures):
    return []


def _sorted(figures, scenario):
    """Functions with the time that the gateway's process ran for them, the fastest first."""
    return sorted((by_scenario[scenario]["ran"]["value"], function) for function, by_scenario in figures["functions"].items())


def _conclusion(figures):
    small, large = (_sorted(figures, scenario) for scenario in ("default", _LARGE))
    middle, nearly_all = len(large) // 2, 9 * len(large) // 10
    return (f"With the default scenario the gateway works {small[middle][0]:.0f} µs on half of the functions at most, and "
            f"{small[-1][0]:.0f} µs on the slowest ({small[-1][1]}); with 4,000 stations {large[middle][0]:.0f} µs on half "
            f"of them at most, {large[nearly_all][0]:.0f} µs on nine of ten, and {large[-1][0] / 1000:.1f} ms on the slowest "
            f"({large[-1][1]}).")


def _growths(figures):
    """How many times as long the gateway works with 4,000 stations as with 1, by function."""
    return sorted((by_scenario[_LARGE]["ratio"]["value"], function) for function, by_scenario in figures["stations"].items())


def _conclusion_of_stations(figures):
    growths, large = _growths(figures), figures["sizes"][_LARGE]
    steady = sum(growth < 2 for growth, _ in growths)
    return (f"With 4,000 stations in place of one, {steady} of these {len(growths)} functions take less than twice as long; "
            f"{growths[-1][1]}, which is about all stations, takes {growths[-1][0]:.0f} times. A gateway of that size is ready "
            f"after {large['start']['value']:.0f} ms, and takes {large['percent']:.2f} % of a processor while nobody asks.")


def _conclusion_of_callers(figures):
    number = figures["callers"]["TarnGetLogLevel"]
    rates = {callers: number[callers]["callsPerSecond"]["value"] for callers in _CALLERS}
    return (f"One caller gets {rates['1']:,.0f} numbers a second, 64 get {rates['64']:,.0f} together: the gateway answers one "
            f"after the other, so that each of the 64 waits {number['64']['time']['value'] / 1000:.1f} ms.")


def section(figures):
    slowest = [function for _, function in _sorted(figures, _LARGE)[::-1][:_SLOWEST]]
    functions = [(function, *(spread(figures["functions"][function][name][field], ".0f")
                              for name in ("default", _LARGE) for field in ("waited", "ran")),
                  spread(figures["functions"][function][_LARGE]["ratio"], ".1f")) for function in slowest]
    refused = sum(not by_scenario[_LARGE]["done"] for by_scenario in figures["functions"].values())
    stations = [(function, *(spread(by_scenario[name]["ran"], ".0f") for name in _STATIONS),
                 spread(by_scenario[_LARGE]["ratio"], ".1f")) for function, by_scenario in figures["stations"].items()]
    sizes = [(f"{stations:,}", spread(figures["sizes"][name]["start"], ".1f"), spread(figures["sizes"][name]["ratio"], ".1f"),
              f"{figures['sizes'][name]['percent']:.3f}") for name, stations in _STATIONS.items()]
    callers = [(f"{function}, {count}", spread(one["time"], ".1f"), spread(one["ratio"], ".2f"),
                f"{one['callsPerSecond']['value']:,.0f}")
               for function, by_callers in figures["callers"].items() for count, one in by_callers.items()]
    return [
        "## The simulated gateway",
        "",
        *paragraph(
            f"How long `tarn-gateway` takes to answer each of the {len(figures['functions'])} functions that send a command, "
            "with its default scenario and with 4 radios of 8 interfaces of 125 stations. Those that set something set another "
            f"value in each call; {refused} of them are refused by the large gateway. Beside what a caller waits, from Python, "
            "is how long the gateway's process ran for it, which other load on the machine does not lengthen. Ratios are of "
            "the latter. All processes are on one processor."),
        *picture("performance-gateway-functions", _conclusion(figures)),
        f"The {_SLOWEST} slowest with 4,000 stations:",
        "",
        *table(["Function, µs", "waited, default", "worked, default", "waited, 4,000", "worked, 4,000", "ratio"], functions),
        *paragraph(
            "How that grows with the stations, which have 1 to 4 radios and 1 to 32 interfaces: what the process worked for "
            "some functions, how long it takes to be ready, and what it takes of a processor by itself, in its own time."),
        *picture("performance-gateway-stations", _conclusion_of_stations(figures)),
        *table(["Worked, µs; stations", *(f"{stations:,}" for stations in _STATIONS.values()), "4,000 to 1"], stations),
        *table(["Stations", "ready after, ms", "to 1 station", "idle, % of a processor"], sizes),
        *paragraph("Several callers at once, each a thread with a connection of its own, that call from C:"),
        *picture("performance-gateway-callers", _conclusion_of_callers(figures)),
        *table(["Function, callers", "µs a call and caller", "to one caller", "calls a second"], callers),
    ]


def _plot_functions(figure, theme, figures):
    axes = figure.subplots()
    for scenario, colour, label in (("default", theme.ours, "default scenario"), (_LARGE, theme.peers[0], "4,000 stations")):
        times = [taken for taken, _ in _sorted(figures, scenario)]
        axes.plot([100 * (place + 1) / len(times) for place in range(len(times))], times, color=colour, label=label)
    axes.set_yscale("log")
    plots.plain_ticks(axes.yaxis)
    axes.set_xlabel("percent of the functions, the fastest first")
    axes.set_ylabel("the gateway works at most, µs")
    axes.legend(loc="upper left", fontsize=9)


def _plot_stations(figure, theme, figures):
    replies, starts, idle = figure.subplots(1, 3, width_ratios=(2, 1, 1))
    stations = list(_STATIONS.values())
    for (function, by_scenario), colour in zip(figures["stations"].items(), (theme.raw, theme.ours, *theme.peers)):
        replies.plot(stations, [by_scenario[name]["ran"]["value"] for name in _STATIONS], color=colour, marker="o",
                     markersize=3, label=function)
    sizes = figures["sizes"].values()
    starts.plot(stations, [size["start"]["value"] for size in sizes], color=theme.ours, marker="o", markersize=3)
    idle.plot(stations, [size["percent"] for size in sizes], color=theme.ours, marker="o", markersize=3)
    for axes, title in ((replies, "the gateway works, µs"), (starts, "ready after, ms"), (idle, "idle, % of a processor")):
        axes.set_xscale("log")
        plots.plain_ticks(axes.xaxis)
        axes.set_title(title, fontsize=10)
        axes.set_xlabel("stations")
    replies.set_yscale("log")
    plots.plain_ticks(replies.yaxis)
    starts.set_ylim(0)
    idle.set_ylim(0, max(1, *(1.2 * size["percent"] for size in sizes)))
    replies.legend(loc="upper left", fontsize=8)


def _plot_callers(figure, theme, figures):
    rates, times = figure.subplots(1, 2)
    for (function, by_callers), colour in zip(figures["callers"].items(), (theme.ours, *theme.peers)):
        for axes, field in ((rates, "callsPerSecond"), (times, "time")):
            axes.plot(range(len(_CALLERS)), [by_callers[callers][field]["value"] for callers in _CALLERS], color=colour,
                      marker="o", markersize=3, label=function)
    for axes, title in ((rates, "calls a second, of all callers"), (times, "µs a call, for each caller")):
        axes.set_xticks(range(len(_CALLERS)), _CALLERS)
        axes.set_xlabel("callers")
        axes.set_title(title, fontsize=10)
        plots.plain_ticks(axes.yaxis)
    rates.set_ylim(0)
    times.set_yscale("log")
    plots.plain_ticks(times.yaxis)
    times.legend(loc="upper left", fontsize=9)


PLOTS = {
    "performance-gateway-functions": ("How long the simulated gateway works for a reply, by function", 300, _plot_functions),
    "performance-gateway-stations": ("How the simulated gateway grows with its stations", 340, _plot_stations),
    "performance-gateway-callers": ("The simulated gateway and its callers", 320, _plot_callers),
}
