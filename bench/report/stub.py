"""What the library adds to a call: beside the same calls by hand, at every length of a message."""
from counts import count
from page import Goal, paragraph, picture, spread, table
from samples import difference, median, ratio, run

NAME = "stub"
PACKAGES = ["valgrind"]
TARGETS = ["tarn_bench_stub"]

_MOST_RATIO, _MOST_NANOSECONDS = 1.03, 7  # of the longest message, and of the shortest


def measure(programs, quick):
    program = programs["tarn_bench_stub"]
    times = run([program, *(["--benchmark_repetitions=5", "--benchmark_min_time=0.005"] if quick else
                            ["--benchmark_repetitions=25", "--benchmark_min_time=0.02"])], ["cpu_time"])
    counts = count(program)
    figures = {}
    for length in sorted(int(name.split("/")[1]) for name in times if name.startswith("library/")):
        library, floor = (times[f"{which}/{length}"]["cpu_time"] for which in ("library", "floor"))
        ours, bare = counts[f"library/{length}"], counts[f"floor/{length}"]
        figures[str(length)] = {
            "floor": median(floor),
            "library": median(library),
            "above": difference(library, floor),
            "ratio": ratio(library, floor),
            "instructions": ours["instructions"],
            "instructionsOfFloor": bare["instructions"],
            "allocations": ours["allocations"],
        }
    return figures


def goals(figures):
    shortest, longest = figures["8"], figures["9584"]
    allocations = sum(figure["allocations"] for figure in figures.values())
    return [
        Goal("Library beside the floor, message of 9584 bytes", f"at most {_MOST_RATIO} ×",
             spread(longest["ratio"], ".3f", " ×"), longest["ratio"]["value"] <= _MOST_RATIO),
        Goal("Library above the floor, message of 8 bytes", f"at most {_MOST_NANOSECONDS} ns",
             spread(shortest["above"], ".1f", " ns"), shortest["above"]["value"] <= _MOST_NANOSECONDS,
             f"it is {shortest['instructions'] - shortest['instructionsOfFloor']} instructions, most of them in the steps that "
             "all functions share: the caller id and the pointers are checked, the message is cleared by a call of memset, "
             "because the steps do not know its length, and the platform's status is looked at. A copy of the steps in each "
             "function would spare a few of them, and take flash in all."),
        Goal("Allocations in a call of the library", "none", str(allocations), allocations == 0),
    ]


def _conclusion(figures):
    above = [figure["above"]["value"] for figure in figures.values()]
    floor = [figures[length]["floor"]["value"] for length in ("8", "9584")]
    return (f"What the library adds does not grow with the message: {min(above):.0f} to {max(above):.0f} ns, while the floor "
            f"itself takes {floor[0]:.0f} to {floor[1]:.0f} ns. Where it is below zero, the C library's memset clears the "
            "message faster than the instructions that the compiler puts in its place.")


def section(figures):
    rows = [
        (length, spread(figure["floor"], ".1f"), spread(figure["above"], "+.1f"), spread(figure["ratio"], ".3f"),
         figure["instructionsOfFloor"], f"{figure['instructions'] - figure['instructionsOfFloor']:+d}", figure["allocations"])
        for length, figure in figures.items()
    ]
    return [
        "## The library alone",
        "",
        *paragraph(
            "What a function of `libtarn` adds to a call: beside it is the floor, the same call by hand. The floor clears a "
            "message, stores the inputs, calls the platform and copies the output; the library also checks its arguments, "
            "and looks at the platform's status. The platform is a function that does nothing. Both are called with the "
            "same 64 pairs of addresses of message and record, because a single pair gives differences that are not there "
            "with the next one. Times are of the processor, in nanoseconds; instructions are counted by callgrind, and "
            "include those of `memset` and `memcpy`."),
        *picture("performance-stub", _conclusion(figures)),
        *table(["Message, bytes", "floor, ns", "library above, ns", "ratio", "floor, instructions", "library above",
                "allocations"], rows),
    ]


def _plot(figure, theme, figures):
    axes = figure.subplots()
    places = range(len(figures))
    above = [each["above"] for each in figures.values()]
    values = [each["value"] for each in above]
    errors = [[each["value"] - each["low"] for each in above], [each["high"] - each["value"] for each in above]]
    axes.bar(places, values, color=theme.ours, yerr=errors, ecolor=theme.quiet, capsize=2, width=0.7)
    axes.axhline(0, color=theme.quiet, linewidth=0.8)
    axes.axhline(_MOST_NANOSECONDS, color=theme.peers[0], linewidth=0.8, linestyle="--",
                 label=f"the goal at 8 bytes: at most {_MOST_NANOSECONDS} ns")
    axes.legend(loc="upper left")
    axes.set_xticks(list(places), list(figures))
    axes.set_xlabel("message, bytes")
    axes.set_ylabel("above the floor, ns")


PLOTS = {"performance-stub": ("What the library adds to a call, at every length of a message", 340, _plot)}
