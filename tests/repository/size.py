#!/usr/bin/env python3
"""Compares what the library takes of a gateway's flash and of a thread's stack with what tests/repository/size says of it.

    tests/repository/size.py compare [FOLDER]    with the tables in another folder
    tests/repository/size.py write               writes it down, for a commit whose message says why it has changed

The library is built for each processor as for a gateway (-Os -fPIC, without the kit). `shared` is libtarn.so; `static` is a
program that holds all of libtarn.a and nothing else. `file` is the stripped file, in which a shared library has names besides
code and constants. `xz` is that file as a squashfs holds it: xz --check=crc32 --lzma2=preset=9e, behind the filter for the
processor's code where xz has one (--powerpc, --armthumb, --x86), as of mksquashfs -comp xz -Xbcj. `frame` is the stack of one
function as the compiler calculated it; of a function with a message, what it takes besides the message.
"""
import functools
import glob
import json
import lzma
import os
import re
import subprocess
import sys

TOOLS = {"mips": "mips-linux-gnu", "powerpc": "powerpc-linux-gnu", "arm": "arm-linux-gnueabihf", "x86-64": "x86_64-linux-gnu"}
FILTERS = {"powerpc": lzma.FILTER_POWERPC, "arm": lzma.FILTER_ARMTHUMB, "x86-64": lzma.FILTER_X86}
TOLERANCE = 0.005
# What no change may exceed, written down or not, in bytes.
MOST_A_FUNCTION = 174  # code and constants, on MIPS
MOST_BESIDE_MESSAGE = {"mips": 96, "powerpc": 96, "arm": 96, "x86-64": 128}  # of a frame
MOST_XZ = 14 * 1024  # of the shared library


def output_of(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{done.stdout}{done.stderr}")
    return done.stdout


@functools.cache
def message_lengths():
    contracts = [json.load(open(path)) for path in glob.glob("kit/contract/*.json") if "schema" not in path]
    return {command["function"]: command["length"] for contract in contracts for command in contract["commands"]}


def version_of(tool):
    return re.search(r"\d+\.\d+(\.\d+)?$", output_of(tool, "--version").splitlines()[0]).group()


class Build:
    """The library for one processor, built."""

    def __init__(self, target):
        self.tools = TOOLS[target] + "-"
        self.filters = [{"id": FILTERS[target]}] if target in FILTERS else []
        self.folder = "build/size/" + target
        if not os.path.exists(self.folder + "/build.ninja"):
            output_of("cmake", "--preset", "gateway", "-B", self.folder, "-DCMAKE_TOOLCHAIN_FILE=",
                      f"-DCMAKE_C_COMPILER={self.tools}gcc", f"-DCMAKE_CXX_COMPILER={self.tools}g++")
        output_of("cmake", "--build", self.folder)
        if os.path.exists(self.folder + "/kit") or os.path.exists(self.folder + "/tests"):
            sys.exit(self.folder + ": the library was built, and not the library alone")
        self.archive = self.folder + "/src/libtarn.a"
        self.program = self.folder + "/static"
        # The functions of the C library and of the platform are not there, and not needed to see what is.
        output_of(self.tools + "gcc", "-static", "-nostdlib", "-Wl,--build-id=none", "-Wl,--unresolved-symbols=ignore-all",
                  "-Wl,--entry=0", "-Wl,--whole-archive", self.archive, "-o", self.program)

    def compiler(self):
        return f"g++ {version_of(self.tools + 'g++')}, ld {version_of(self.tools + 'ld')}"

    def totals_of(self, path):
        sections = dict(line.split()[:2] for line in output_of(self.tools + "size", "-A", path).splitlines() if "." in line)
        code, constants = int(sections[".text"]), int(sections[".rodata"])
        stripped = self.folder + "/stripped"
        output_of(self.tools + "strip", "-o", stripped, path)
        data = open(stripped, "rb").read()
        filters = self.filters + [{"id": lzma.FILTER_LZMA2, "preset": 9 | lzma.PRESET_EXTREME}]
        xz = lzma.compress(data, check=lzma.CHECK_CRC32, filters=filters)
        return [code, constants, code + constants, len(data), len(xz)]

    def code(self):
        """Bytes of code of each function."""
        sizes = {}
        for line in output_of(self.tools + "nm", "-C", "-S", "--defined-only", self.archive).splitlines():
            symbol = re.match(r"\w+ (\w+) [tTwW] (.*)", line)
            if symbol:
                name = plain_name(symbol.group(2))
                sizes[name] = sizes.get(name, 0) + int(symbol.group(1), 16)
        return sizes

    def frames(self):
        """Bytes of stack of each function."""
        sizes = {}
        objects = output_of(self.tools + "ar", "t", self.archive).split()
        for path in glob.glob(self.folder + "/src/**/*.su", recursive=True):
            if os.path.basename(path).replace(".su", ".o") not in objects:
                continue  # left by a source that is gone
            for line in open(path):
                place, size, _ = line.split("\t")
                name = plain_name(place.split(":", 3)[3])
                sizes[name] = max(sizes.get(name, 0), int(size) - message_lengths().get(name, 0))
        return sizes


def plain_name(declaration):
    """Without result, namespaces, template arguments and parameters; of several with one name the figures are added up."""
    declaration = re.sub(r"[({]anonymous( namespace)?[)}]::|<[^<>]*>| \[.*", "", declaration)
    return re.search(r"(\w+)(\(|$)", declaration.strip()).group(1)


def measured():
    """The two tables, {(row, column): bytes}, and what compiled."""
    builds = {target: Build(target) for target in TOOLS}
    totals, functions = {}, {}
    columns = ["code", "constants", "both", "file", "xz"]
    for target, build in builds.items():
        for form, path in (("shared", build.folder + "/src/libtarn.so"), ("static", build.program)):
            totals.update({(f"{target} {form}", column): size for column, size in zip(columns, build.totals_of(path))})
        functions.update({(name, target + " code"): size for name, size in build.code().items()})
        functions.update({(name, target + " frame"): size for name, size in build.frames().items()})
    return {"totals": totals, "functions": functions}, "; ".join(sorted({build.compiler() for build in builds.values()}))


# --- The files --------------------------------------------------------------------------------------------------------------


def lines_of(table, figures):
    rows = list(dict.fromkeys(row for row, _ in figures))
    columns = list(dict.fromkeys(column for _, column in figures))
    if table == "functions":
        rows.sort(key=lambda row: (row not in message_lengths(), row.lower()))
        columns.sort(key=lambda column: column.split()[1])
    lines = [["#"] + [column.replace(" ", ":") for column in columns]]
    lines += [[row.replace(" ", ":")] + [str(figures.get((row, column), "-")) for column in columns] for row in rows]
    first = max(len(line[0]) for line in lines)
    for line in lines:
        cells = [cell.rjust(len(title)) for cell, title in zip(line[1:], lines[0][1:])]
        yield "  ".join([line[0].ljust(first)] + cells)


def write(folder, tables, compilers):
    for table, figures in tables.items():
        with open(f"{folder}/{table}.txt", "w") as file:
            print("# Bytes, by tests/repository/size.py with", compilers, file=file)
            print(*lines_of(table, figures), sep="\n", file=file)


def read(folder, table):
    lines = open(f"{folder}/{table}.txt").read().splitlines()
    compilers = lines[0].split(" with ", 1)[1]
    columns = [title.replace(":", " ") for title in lines[1].split()[1:]]
    figures = {}
    for line in lines[2:]:
        row, *cells = line.split()
        figures.update({(row.replace(":", " "), column): int(cell) for column, cell in zip(columns, cells) if cell != "-"})
    return figures, compilers


# --- The comparison ---------------------------------------------------------------------------------------------------------


def excesses(totals, functions):
    """What is more than the library may take."""
    count = len(re.findall(r"^ *[tT]arn\w*;", open("src/libtarn.map").read(), re.MULTILINE))
    mean = totals["mips shared", "both"] / count
    print(f"{mean:.1f} bytes of code and constants a function on MIPS")
    if mean > MOST_A_FUNCTION:
        yield f"mips: {mean:.1f} bytes of code and constants a function; at most {MOST_A_FUNCTION} are allowed"
    for target, most in MOST_BESIDE_MESSAGE.items():
        xz = totals[target + " shared", "xz"]
        if xz > MOST_XZ:
            yield f"{target}: {xz} bytes as xz; at most {MOST_XZ} are allowed"
        frames = {name: functions[name, target + " frame"] for name in message_lengths()}
        print(f"{target}: {xz} bytes as xz, a frame of at most {max(frames.values())} bytes beside its message")
        for name, size in frames.items():
            if size > most:
                yield f"{target}: {name}: a frame of {size} bytes beside the message; at most {most} are allowed"


def changes(expected, figures):
    for row, column in dict.fromkeys([*expected, *figures]):
        before, now = expected.get((row, column)), figures.get((row, column))
        if before is None or now is None:
            yield f"{row}: {column}: " + ("not written down" if before is None else "written down, but not there")
        elif abs(now - before) > TOLERANCE * before:
            yield f"{row}: {column}: {now} bytes, {abs(now - before)} {'more' if now > before else 'less'} than {before}"


def compare(folder, tables, compilers):
    wrong = list(excesses(**tables))
    expected, expected_compilers = read(folder, "totals")
    if compilers != expected_compilers:
        wrong.append(f"not compared: the figures written down are of {expected_compilers}, and this is {compilers}")
    else:
        wrong += changes(expected, tables["totals"])
        wrong += changes(read(folder, "functions")[0], tables["functions"])
    if wrong:
        print(*wrong, sep="\n")
        sys.exit("If this is meant, tests/repository/size.py write writes it down: commit that, and say in the message why.")


if __name__ == "__main__":
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../.."))
    if len(sys.argv) not in (2, 3) or sys.argv[1] not in ("compare", "write"):
        sys.exit(__doc__)
    act = compare if sys.argv[1] == "compare" else write
    act((sys.argv + ["tests/repository/size"])[2], *measured())
