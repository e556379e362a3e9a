"""The same logical call in the library's encoding and in those of its peers."""
import plots
from counts import count
from page import paragraph, picture, spread, table
from samples import median, ratio, run

NAME = "messages"
PACKAGES = [
    *("libtirpc-dev", "rpcsvc-proto", "libflatbuffers-dev", "flatbuffers-compiler", "libprotobuf-dev", "protobuf-compiler"),
    *("libnanopb-dev", "nanopb", "libcapnp-dev", "capnproto", "libsystemd-dev", "valgrind"),
]
TARGETS = ["tarn_bench_messages"]

_OURS = "libtarn"
_LENGTHS = ("12", "144", "9584")


def measure(programs, quick):
    program = programs["tarn_bench_messages"]
    times = run([program, *(["--benchmark_repetitions=5", "--benchmark_min_time=0.005"] if quick else
                            ["--benchmark_repetitions=25", "--benchmark_min_time=0.02"])], ["cpu_time"])
    counts = count(program)
    figures = {}
    for name, measured in times.items():
        peer, length = name.split("/")
        figures.setdefault(peer, {})[length] = {
            "time": median(measured["cpu_time"]),
            "ratio": ratio(measured["cpu_time"], times[f"{_OURS}/{length}"]["cpu_time"]),
            **counts[name],
        }
    return {peer: figures[peer] for peer in sorted(figures, key=lambda peer: figures[peer]["12"]["time"]["value"])}


def goals(figures):
    return []


def _conclusion(figures):
    others = [peer for peer in figures if peer != _OURS]
    small = sorted((figures[peer]["12"]["ratio"]["value"], peer) for peer in others)
    large = sorted((figures[peer]["9584"]["ratio"]["value"], peer) for peer in others)
    return (f"A short call takes a peer {small[0][0]:.1f} ({small[0][1]}) to {small[-1][0]:.0f} times ({small[-1][1]}) as long "
            "as the library, whose fields have fixed places. At 9584 bytes it counts how often the record is moved: "
            f"{large[0][0]:.2f} ({large[0][1]}) to {large[-1][0]:.1f} times ({large[-1][1]}). There the library's message is "
            "as long in the request as in the reply, and all of it is cleared before it is sent.")


def section(figures):
    rows = []
    for peer, by_length in figures.items():
        for length in _LENGTHS:
            figure = by_length[length]
            rows.append((f"{peer}, {length}", spread(figure["time"], ".0f"), spread(figure["ratio"], ".2f"),
                         f"{figure['instructions']:,}", figure["allocations"]))
    return [
        "## The same call in other encodings",
        "",
        *paragraph(
            "One call as caller and service see it, without anything that is sent: the caller encodes a request of three "
            "numbers, the service decodes it and encodes a reply with a record of its own and a status, the caller decodes "
            "that into its own record. The records are those of the library's messages of 12, 144 and 9584 bytes. Each peer "
            "is used as its documents show: FlatBuffers keep their builders and verify what they read, protobuf and Cap'n "
            "Proto build a message for each call, sd-bus seals messages of a bus, XDR is the code that rpcgen writes."),
        *picture("performance-messages", _conclusion(figures)),
        *table(["Encoding, message", "call, ns", "to the library", "instructions", "allocations"], rows),
    ]


def _plot(figure, theme, figures):
    for axes, length in zip(figure.subplots(1, len(_LENGTHS), sharey=True), _LENGTHS):
        peers = list(figures)[::-1]
        values = [figures[peer][length]["time"]["value"] for peer in peers]
        axes.barh(peers, values, color=[theme.ours if peer == _OURS else theme.quiet for peer in peers], height=0.65)
        for place, value in enumerate(values):
            axes.annotate(f" {value:,.0f}", (value, place), va="center", fontsize=9)
        axes.set_xscale("log")
        axes.set_xlim(5, 6000)
        plots.plain_ticks(axes.xaxis)
        axes.set_title(f"{length} bytes", fontsize=10)
        axes.set_xlabel("ns, of the processor")


PLOTS = {"performance-messages": ("One logical call, encoded and decoded on both sides", 300, _plot)}
