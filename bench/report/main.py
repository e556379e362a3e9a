"""bench/run behind its options: installs, builds, measures, and writes the page.

A part is a module with

    NAME, PACKAGES, TARGETS    its name as an option, Debian's packages, and what is built for it
    measure(programs, quick)   its figures, as JSON has them; programs are paths by their names
    goals(figures)             what was to be reached, as page.Goal
    section(figures)           its section of the page, as lines of Markdown
    PLOTS                      by a picture's name its title, its height, and a function that draws it

and PARTS lists it.
"""
import argparse
import os
import pathlib
import subprocess
import sys

import flash
import fleet
import gateway
import kit
import messages
import page
import round_trip
import stub
import tools
from machine import about

_PACKAGES = [
    *("cmake", "ninja-build", "g++", "pkg-config", "nlohmann-json3-dev", "libcli11-dev", "libmosquitto-dev"),  # as ./demo
    "libbenchmark-dev",
]
PARTS = {part.NAME: part for part in (flash, stub, messages, round_trip, tools, gateway, fleet)}


def options():
    parser = argparse.ArgumentParser(
        prog="bench/run", description="Measures what the library and the kit cost, and writes docs/performance.md.")
    parser.add_argument("--only", action="append", choices=PARTS, metavar="PART",
                        help="measure this alone, and keep what the page has of the others: " + ", ".join(PARTS)
                        + "; several may be given")
    parser.add_argument("--quick", action="store_true", help="a few repetitions, to see that all runs: the figures are rough")
    parser.add_argument("--draw", action="store_true", help="measure nothing: write page and pictures from performance.json")
    parser.add_argument("--output", type=pathlib.Path, default=kit.ROOT / "docs", metavar="DIRECTORY",
                        help="where performance.md, performance.json and pictures/ are written (docs)")
    given = parser.parse_args()
    if given.draw and (given.only or given.quick):
        parser.error("--draw measures nothing, so that it goes without --only and --quick")
    if not given.output.is_dir():
        parser.error(f"--output: expected a directory, got {given.output}")
    return given


def install(packages):
    script = '. packaging/install-packages && install_packages "$@"'
    if subprocess.run(["sh", "-c", script, "sh", *dict.fromkeys(packages)], cwd=kit.ROOT).returncode != 0:
        sys.exit(1)


def build(targets):
    """With all peers' packages: bench/ is configured as a whole."""
    if not targets:
        return
    install([*_PACKAGES, *(package for part in PARTS.values() for package in part.PACKAGES)])
    log = kit.ROOT / "build" / "bench.log"
    log.parent.mkdir(exist_ok=True)
    print(f"Building (log in {log.relative_to(kit.ROOT)}) ...", flush=True)
    with log.open("w", encoding="utf-8") as file:
        for command in (["cmake", "--preset", "bench"], ["cmake", "--build", "--preset", "bench", "--target", *targets]):
            if subprocess.run(command, cwd=kit.ROOT, stdout=file, stderr=subprocess.STDOUT).returncode != 0:
                sys.exit("".join(log.read_text(encoding="utf-8").splitlines(keepends=True)[-30:]))


def main():
    given = options()
    chosen = [] if given.draw else [PARTS[name] for name in dict.fromkeys(given.only or PARTS)]
    targets = [target for part in chosen for target in part.TARGETS]
    install(["python3-matplotlib"])
    results = page.read(given.output)
    load = os.getloadavg()[0]  # that of others: the build is not part of it yet
    if chosen:
        if load > 0.5:
            print(f"The machine is busy (load {load:.1f}): the figures will be rough.", flush=True)
        build(targets)
    for part in chosen:
        print(f"Measuring: {part.NAME} ...", flush=True)
        results[part.NAME] = {"about": about(kit.ROOT, load, given.quick), "figures": part.measure(kit.programs(), given.quick)}
        page.save(given.output, results)
    if not results:
        sys.exit(f"{given.output}/performance.json: nothing has been measured yet")
    missed = page.write(given.output, PARTS, results)
    print(f"Written: {given.output}/performance.md; goals missed: {missed}")


main()
