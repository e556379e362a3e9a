"""A message to another process and back, by libkoriil and by its peers."""
import os
import tempfile

import plots
from page import Goal, paragraph, picture, spread, table
from samples import median, ratio, run

NAME = "round-trip"
PACKAGES = [
    *("libtirpc-dev", "rpcsvc-proto", "libsystemd-dev", "dbus", "libzmq3-dev"),
    *("libgrpc++-dev", "protobuf-compiler-grpc", "libprotobuf-dev", "protobuf-compiler"),
]
TARGETS = ["tarn_bench_round_trip"]

_OURS, _BASE = "libkoriil", "seqpacket socket"
_EPOLL = "seqpacket, epoll"
_RAW = ("shared memory", "stream socket", _BASE, _EPOLL)
_PACKAGED = ("ONC RPC", "sd-bus", "D-Bus", "ZeroMQ", "gRPC")
_PEERS = (*_RAW, _OURS, *_PACKAGED)
_LENGTHS = ("12", "144", "9584")
_CALLERS = ("1", "2", "4", "8", "64")
_PLACES = {"pinned": "all processes on one processor", "free": "processors as the scheduler chooses"}
_MOST_RATIO = 1.10  # to the bare packets, at 9584 bytes
_MEMORY = "/dev/shm"  # a file system in memory, for the one peer that shares it
_PERCENTILES = {"p50": "p50", "p99": "p99", "p999": "p99.9"}


def _runs(quick):
    """Callers, calls of a repetition, and repetitions."""
    return ((("1",), 300, 5), (_CALLERS[1:], 300, 2)) if quick else ((("1",), 2000, 21), (_CALLERS[1:], 2000, 5))


def measure(programs, quick):
    figures = {}
    for place in _PLACES:
        command = [programs["tarn_bench_round_trip"]]
        if place == "pinned":
            command = ["taskset", "-c", str(min(os.sched_getaffinity(0))), *command]
        for callers, calls, repetitions in _runs(quick):
            with tempfile.TemporaryDirectory(dir=_MEMORY) as directory:
                samples = run([*command, directory, str(calls), f"--benchmark_repetitions={repetitions}",
                               f"--benchmark_filter=^[^/]*/[0-9]*/({'|'.join(callers)})/"], [*_PERCENTILES, "callsPerSecond"])
            for name, sample in samples.items():
                base = samples[f"{_BASE}/{name.split('/', 1)[1]}"]
                figures.setdefault(place, {})[name] = {
                    **{field: median(values) for field, values in sample.items()},
                    "ratio": ratio(sample["p50"], base["p50"]),
                }
    return figures


def _fastest_packaged(figures, place, length):
    return min(_PACKAGED, key=lambda peer: figures[place][f"{peer}/{length}/1"]["p50"]["value"])


def _lead(figures, place, length):
    """How many times as long as by libkoriil a call takes by the fastest of the packaged peers."""
    peer = _fastest_packaged(figures, place, length)
    values = [figures[place][f"{each}/{length}/1"]["p50"]["value"] for each in (peer, _OURS)]
    return values[0] / values[1], peer


def goals(figures):
    own = figures["pinned"][f"{_OURS}/9584/1"]["ratio"]
    leads = {place: min((_lead(figures, place, length) + (length,)) for length in _LENGTHS) for place in _PLACES}
    return [
        Goal("libkoriil beside a bare seqpacket socket, 9584 bytes", f"at most {_MOST_RATIO:.2f} ×", spread(own, ".3f", " ×"),
             own["value"] <= _MOST_RATIO, _why_missed(figures)),
        *(Goal(f"Fastest packaged RPC beside libkoriil, {_PLACES[place]}", "more than 1 × at every length",
               f"{lead:.2f} × ({peer}, {length} bytes)", lead > 1) for place, (lead, peer, length) in leads.items()),
    ]


def _why_missed(figures):
    own, epoll = (figures["pinned"][f"{peer}/9584/1"]["ratio"]["value"] for peer in (_OURS, _EPOLL))
    return (f"a bare socket whose service is one thread for all callers, and so has to ask which of them has sent something, "
            f"takes {epoll:.3f} ×, and libkoriil {own / epoll:.3f} × of that. {_REMAINS}")


# Each tried alone, by leaving it out.
_REMAINS = (
    "Of what remains, four things take about 1 % each: a copy of the reply, so that a message stays as it was unless the "
    "reply is right; the question at every call whether this is still the process that opened the connection; the clock and "
    "the socket's time-out, for the wait; and a header before the caller's message. Of the asking, 2 % is that a caller is "
    "looked at once more after it has been served, because it may have sent a second request. A thread for each caller would "
    "spare the asking, and cost a service a stack for every caller.")


def _microseconds(figure):
    return f"{figure['value'] / 1e3:.1f}"


def _one_caller(figures, place):
    rows = []
    for peer in _PEERS:
        for length in _LENGTHS:
            figure = figures[place][f"{peer}/{length}/1"]
            times = [_microseconds(figure[field]) for field in _PERCENTILES]
            rows.append((f"{peer}, {length}", *times, spread(figure["ratio"], ".2f")))
    return [f"One caller, {_PLACES[place]}:", "",
            *table(["Peer, bytes", *(f"{title}, µs" for title in _PERCENTILES.values()), "p50 to the bare packets"], rows)]


def _several_callers(figures, place):
    rows = []
    for peer in _PEERS:
        for callers in _CALLERS:
            figure = figures[place][f"{peer}/9584/{callers}"]
            rows.append((f"{peer}, {callers}", *(_microseconds(figure[field]) for field in _PERCENTILES),
                         f"{figure['callsPerSecond']['value']:,.0f}"))
    return [f"9584 bytes, {_PLACES[place]}:", "",
            *table(["Peer, callers", *(f"{title}, µs" for title in _PERCENTILES.values()), "calls a second"], rows)]


def _conclusion(figures):
    ratios = [figures["pinned"][f"{_OURS}/{length}/1"]["ratio"]["value"] for length in _LENGTHS]
    leads = [_lead(figures, "pinned", length) for length in _LENGTHS]
    return (f"libkoriil takes {min(ratios):.2f} to {max(ratios):.2f} times as long as a bare seqpacket socket, all that it "
            f"checks included. The fastest packaged peer takes {leads[0][0]:.2f} times as long as libkoriil at 12 bytes "
            f"({leads[0][1]}), and {leads[-1][0]:.2f} times at 9584 bytes ({leads[-1][1]}).")


def _conclusion_of_tail(figures):
    slow = {peer: figures["pinned"][f"{peer}/9584/1"]["p999"]["value"] / 1e3 for peer in (_OURS, *_PACKAGED)}
    others = sorted(_PACKAGED, key=slow.get)
    return (f"Of a thousand calls on one processor the slowest takes {slow[_OURS]:.0f} µs by libkoriil, and "
            f"{slow[others[0]]:.0f} ({others[0]}) to {slow[others[-1]]:.0f} µs ({others[-1]}) by the packaged peers.")


def _conclusion_of_callers(figures):
    rates = {peer: [figures["free"][f"{peer}/9584/{callers}"]["callsPerSecond"]["value"] for callers in ("1", "64")]
             for peer in _PEERS}
    best = max(_PACKAGED, key=lambda peer: rates[peer][1])
    return (f"libkoriil, whose service runs on one thread, serves one caller {rates[_OURS][0]:,.0f} times a second, and 64 "
            f"callers {rates[_OURS][1]:,.0f} times; the best packaged peer for 64 ({best}) {rates[best][0]:,.0f} and "
            f"{rates[best][1]:,.0f} times.")


def section(figures):
    return [
        "## The round trip",
        "",
        *paragraph(
            "A message to a service in another process and back, the same bytes by each peer, as each is used: libkoriil, "
            "ONC RPC (libtirpc over a Unix-domain socket), sd-bus from peer to peer and through D-Bus's daemon, ZeroMQ (REQ "
            "and REP), gRPC over a Unix-domain socket. Bare are the stream and the seqpacket socket, with a thread for each "
            "caller in the service, the latter also with one thread for all of them (epoll); and shared memory with a futex, "
            "the limit of what two processes can do that sleep while they wait. Each caller is a thread with a connection of "
            "its own. The services of libkoriil, ONC RPC, sd-bus and ZeroMQ run on one thread, gRPC's on as many as it likes. "
            "ubus is not packaged for Debian 12, and is missing."),
        *picture("performance-round-trip", _conclusion(figures)),
        *_one_caller(figures, "pinned"),
        *picture("performance-round-trip-tail", _conclusion_of_tail(figures)),
        *_one_caller(figures, "free"),
        *picture("performance-round-trip-callers", _conclusion_of_callers(figures)),
        *_several_callers(figures, "free"),
        *_several_callers(figures, "pinned"),
    ]


def _colours(theme):
    shades = dict(zip(_PACKAGED, theme.peers))
    return {peer: theme.ours if peer == _OURS else shades.get(peer, theme.raw) for peer in _PEERS}


def _bars(figure, theme, figures):
    for axes, length in zip(figure.subplots(1, len(_LENGTHS), sharey=True), _LENGTHS):
        peers = _PEERS[::-1]
        each = [figures["pinned"][f"{peer}/{length}/1"] for peer in peers]
        values = [one["p50"]["value"] / 1e3 for one in each]
        axes.barh(peers, values, height=0.65,
                  color=[theme.ours if peer == _OURS else theme.raw if peer in _RAW else theme.quiet for peer in peers])
        for place, one in enumerate(each):
            text = f" {values[place]:.1f} ({one['ratio']['value']:.2f} ×)"
            axes.annotate(text, (values[place], place), va="center", fontsize=9)
        axes.set_xlim(0, max(values) * 1.5)
        axes.set_title(f"{length} bytes", fontsize=10)
        axes.set_xlabel("p50, µs (× bare packets)")


def _tail(figure, theme, figures):
    for axes, place in zip(figure.subplots(1, len(_PLACES), sharey=True, sharex=True), _PLACES):
        peers = _PEERS[::-1]
        colours = _colours(theme)
        for row, peer in enumerate(peers):
            values = [figures[place][f"{peer}/9584/1"][field]["value"] / 1e3 for field in _PERCENTILES]
            axes.plot(values, [row] * len(values), color=colours[peer], linewidth=1)
            for value, marker in zip(values, "o|D"):
                axes.plot(value, row, marker=marker, color=colours[peer], markersize=6)
        axes.set_yticks(range(len(peers)), peers)
        axes.set_xscale("log")
        plots.plain_ticks(axes.xaxis)
        axes.set_title(_PLACES[place], fontsize=10)
        axes.set_xlabel("µs: p50 (dot), p99 (line), p99.9 (diamond)")


def _callers(figure, theme, figures):
    colours = _colours(theme)
    dashes = dict(zip(_RAW, ((0, (1, 1)), "-.", "--", (0, (5, 1)))))
    for axes, place in zip(figure.subplots(1, len(_PLACES), sharey=True), _PLACES):
        for peer in _PEERS:
            values = [figures[place][f"{peer}/9584/{callers}"]["callsPerSecond"]["value"] for callers in _CALLERS]
            axes.plot(range(len(_CALLERS)), values, color=colours[peer], linewidth=2.5 if peer == _OURS else 1.2,
                      linestyle=dashes.get(peer, "-"), marker="o", markersize=3, label=peer)
        axes.set_yscale("log")
        plots.plain_ticks(axes.yaxis)
        axes.set_xticks(range(len(_CALLERS)), _CALLERS)
        axes.set_title(_PLACES[place], fontsize=10)
        axes.set_xlabel("callers")
    figure.axes[0].set_ylabel("calls a second, of 9584 bytes")
    figure.axes[-1].legend(loc="center left", bbox_to_anchor=(1, 0.5), fontsize=9)


PLOTS = {
    "performance-round-trip": ("A message to another process and back, one caller, all on one processor", 330, _bars),
    "performance-round-trip-tail": ("The slow calls of one caller, 9584 bytes", 330, _tail),
    "performance-round-trip-callers": ("Several callers at once, 9584 bytes", 400, _callers),
}
