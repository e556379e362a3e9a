"""What the library takes of a gateway's flash and of a thread's stack: the tables that tests/repository/size.py has written."""
import pathlib
import sys

from page import Goal, paragraph, picture, table

_REPOSITORY = pathlib.Path(__file__).resolve().parent.parent.parent / "tests" / "repository"
sys.path.append(str(_REPOSITORY))
import size

NAME = "flash"
PACKAGES = []
TARGETS = []

_COLUMNS = ("code", "constants", "both", "file", "xz")
_SMALL = [target for target in size.TOOLS if target != "x86-64"]  # of 32 bits, as gateways have
_TITLES = {"mips": "MIPS", "powerpc": "PowerPC", "arm": "ARM", "x86-64": "x86-64"}
_MOST_BESIDE_MESSAGE = 96


def measure(programs, quick):
    totals, compilers = size.read(_REPOSITORY / "size", "totals")
    functions, _ = size.read(_REPOSITORY / "size", "functions")
    exported = [name for name in dict.fromkeys(row for row, _ in functions) if name.lower().startswith("tarn")]
    builds = dict.fromkeys(row for row, _ in totals)
    return {
        "compilers": compilers,
        "totals": {build: {column: totals[build, column] for column in _COLUMNS} for build in builds},
        "code": {target: sorted(functions[name, f"{target} code"] for name in exported) for target in size.TOOLS},
        "frames": {target: sorted(functions[name, f"{target} frame"] for name in exported) for target in size.TOOLS},
    }


def _mean(figures, target):
    """Bytes of code and constants for each exported function."""
    return figures["totals"][f"{target} shared"]["both"] / len(figures["code"][target])


def goals(figures):
    mean = _mean(figures, "mips")
    packed = {target: figures["totals"][f"{target} shared"]["xz"] for target in size.TOOLS}
    frames = {target: figures["frames"][target][-1] for target in _SMALL}
    return [
        Goal("Code and constants for each function, MIPS", f"at most {size.MOST_A_FUNCTION} bytes", f"{mean:.1f} bytes",
             mean <= size.MOST_A_FUNCTION),
        Goal("The whole library as a squashfs holds it", f"at most {size.MOST_XZ:,} bytes",
             ", ".join(f"{taken:,} ({_TITLES[target]})" for target, taken in packed.items()),
             max(packed.values()) <= size.MOST_XZ),
        Goal("Stack of a function beside its message, 32 bits", f"at most {_MOST_BESIDE_MESSAGE} bytes",
             ", ".join(f"{frame} ({_TITLES[target]})" for target, frame in frames.items()),
             max(frames.values()) <= _MOST_BESIDE_MESSAGE),
    ]


def _conclusion(figures):
    codes, totals = figures["code"]["mips"], figures["totals"]["mips shared"]
    return (f"On MIPS half of the functions take at most {codes[len(codes) // 2]} bytes of code, and the longest takes "
            f"{codes[-1]}; with the steps that they share and all constants it is {_mean(figures, 'mips'):.0f} bytes for each. "
            f"The whole library takes {totals['xz']:,} bytes of a squashfs, because its functions are much alike.")


def section(figures):
    rows = []
    for row, columns in figures["totals"].items():
        target, form = row.split(" ")
        rows.append((f"{_TITLES[target]}, {form}", *(f"{columns[column]:,}" for column in _COLUMNS)))
    frames = [(_TITLES[target], codes[len(codes) // 2], codes[-1], figures["frames"][target][-1])
              for target, codes in figures["code"].items()]
    return [
        "## Flash and stack",
        "",
        *paragraph(
            f"For a gateway, `-Os -fPIC` ({figures['compilers']}): `libtarn.so`, and a program that holds all of `libtarn.a` "
            "and nothing else. The file is stripped; xz is that file as a squashfs holds it. Every function's figures are in "
            "`tests/repository/size`; `./check` builds for all four processors and fails where a figure has changed by more "
            "than half a percent and is not written down."),
        *picture("performance-flash", _conclusion(figures)),
        *table(["Bytes", *_COLUMNS], rows),
        *table(["Of a function, bytes", "code, half take at most", "code, at most", "stack beside the message, at most"],
               frames),
    ]


def _plot(figure, theme, figures):
    left, right = figure.subplots(1, 2)
    targets = list(_TITLES)
    shown = (("both", theme.ours, "code and constants"), ("xz", theme.peers[0], "as xz"))
    for offset, (column, colour, label) in enumerate(shown):
        values = [figures["totals"][f"{target} shared"][column] / 1000 for target in targets]
        bars = left.bar([place + 0.4 * offset for place in range(len(targets))], values, 0.38, color=colour, label=label)
        left.bar_label(bars, fmt="%.1f", fontsize=9)
    left.set_xticks([place + 0.2 for place in range(len(targets))], _TITLES.values())
    left.set_ylabel("libtarn.so, kB")
    left.legend(loc="upper right", fontsize=9)
    for target, colour in zip(targets, (theme.ours, *theme.peers)):
        codes = figures["code"][target]
        shares = [100 * (place + 1) / len(codes) for place in range(len(codes))]
        right.plot(shares, codes, color=colour, label=_TITLES[target])
    right.set_xlabel("percent of the functions")
    right.set_ylabel("take at most, bytes of code")
    right.set_ylim(0)
    right.legend(loc="upper left", fontsize=9)


PLOTS = {"performance-flash": ("What the library takes of flash", 320, _plot)}
