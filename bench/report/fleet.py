"""A call on each of many gateways through a message broker, beside the bare round trip of the same bytes."""
import kit
from page import paragraph, picture, spread, table
from samples import median, ratio

NAME = "fleet"
PACKAGES = ["mosquitto"]
TARGETS = ["tarn_bench_fleet"]

_GATEWAYS, _WINDOW, _ROUNDS = 1000, 64, 11
_AT_A_TIME = (1, _WINDOW)
_PROCESSES = {
    "broker": "mosquitto with all gateways",
    "another": "a bridge more in a process, with its two threads",
    "tarn-bridge": "`tarn-bridge`, one process that has made 100 calls",
}
_FIELDS = ("p50", "p99", "callsPerSecond")


def measure(programs, quick):
    gateways, rounds = (50, 3) if quick else (_GATEWAYS, _ROUNDS)
    samples, memory, program = {}, {}, None
    for line in kit.output([programs["tarn_bench_fleet"], gateways, _WINDOW, rounds]).splitlines():
        kind, *words = line.split(" ")
        if kind == "calls":
            for field, value in zip(_FIELDS, words[1:]):
                samples.setdefault(words[0], {}).setdefault(field, []).append(float(value))
        elif kind == "memory":
            memory[words[0]] = {"resident": int(words[1]), "private": int(words[2])}
        else:
            program = {"seconds": float(words[0]), "resident": int(words[1])}
    calls = {name: {**{field: median(values) for field, values in sample.items()},
                    "ratio": ratio(sample["p50"], samples[f"bare/{name.split('/')[1]}"]["p50"])}
             for name, sample in samples.items()}
    return {"gateways": gateways, "calls": calls, "memory": memory, "program": program}


def goals(figures):
    return []


def _conclusion(figures):
    alone, many = (figures["calls"][f"call/{count}"] for count in _AT_A_TIME)
    return (f"One at a time a call takes {alone['p50']['value']:.2f} ms, {alone['ratio']['value']:.2f} times as long as the "
            f"bare round trip through the same broker; {_WINDOW} at a time {many['callsPerSecond']['value']:,.0f} calls a "
            f"second are made, each in {many['ratio']['value']:.2f} times the bare time. What is added is threads on one "
            "machine, a small share of what a real network takes.")


def section(figures):
    titles = {"bare": "bare round trip", "call": "call", "first": "first call, behind a ping"}
    rows = []
    for name, figure in figures["calls"].items():
        kind, count = name.split("/")
        rows.append((f"{titles[kind]}, {count} at a time", spread(figure["p50"], ".3f"), spread(figure["p99"], ".2f"),
                     f"{figure['callsPerSecond']['value']:,.0f}", spread(figure["ratio"], ".2f")))
    program = figures["program"]
    resident = [*((_PROCESSES[name], f"{one['resident']:,}", f"{one['private']:,}") for name, one in figures["memory"].items()),
                ("`tarn-fleet call` on all, at most", f"{program['resident']:,}", "")]
    return [
        "## The fleet",
        "",
        *paragraph(
            f"A call on each of {figures['gateways']:,} gateways through a mosquitto on the same machine: bridges in one "
            "process, whose platform answers at once, called as `tarn-fleet` does it, in turns with as many clients that send "
            "a ready answer back. Replies have 9,580 bytes, and the first calls go behind a ping."),
        *picture("performance-fleet", _conclusion(figures)),
        *table(["Through the broker", "p50, ms", "p99, ms", "calls a second", "p50 to bare"], rows),
        *table(["Resident, KiB", "all", "private"], resident),
        *paragraph(f"`tarn-fleet call` on all of them takes {program['seconds']:.2f} s from its start to its end."),
    ]


def _plot(figure, theme, figures):
    for axes, count in zip(figure.subplots(1, len(_AT_A_TIME)), _AT_A_TIME):
        for row, (kind, colour) in enumerate((("call", theme.ours), ("bare", theme.raw))):
            values = [figures["calls"][f"{kind}/{count}"][field]["value"] for field in ("p50", "p99")]
            axes.barh(row + 0.18, values[0], height=0.33, color=colour)
            axes.barh(row - 0.18, values[1], height=0.33, color=colour, alpha=0.5)
            for offset, value, field in ((0.18, values[0], "p50"), (-0.18, values[1], "p99")):
                axes.annotate(f" {field} {value:.2f}", (value, row + offset), va="center", fontsize=9)
        axes.set_yticks((0, 1), ("call", "bare round trip"))
        axes.set_xlim(0, axes.get_xlim()[1] * 1.2)
        axes.set_title(f"{count} at a time", fontsize=10)
        axes.set_xlabel("ms")


PLOTS = {"performance-fleet": ("A call through a message broker, beside the bare round trip", 240, _plot)}
