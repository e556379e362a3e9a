"""What programs of Google Benchmark measure, a value a repetition; medians, ratios and differences, with their spread."""
import json
import os
import random
import statistics
import subprocess
import sys
import tempfile

_RESAMPLES = 2000
_LONGEST = 900  # seconds that a program may take


def run(command, fields):
    """Runs such a program, everything in it interleaved. {name: {field: a value for each repetition}}"""
    with tempfile.TemporaryDirectory() as directory:
        out = os.path.join(directory, "out.json")
        command = [*map(str, command), f"--benchmark_out={out}", "--benchmark_enable_random_interleaving=true"]
        try:
            done = subprocess.run(command, capture_output=True, text=True, timeout=_LONGEST)
        except subprocess.TimeoutExpired:
            sys.exit(f"{command}: has not ended within {_LONGEST} seconds")
        if done.returncode != 0:
            sys.exit(f"{command}: exit code {done.returncode}\n{done.stderr}")
        with open(out, encoding="utf-8") as file:
            lines = json.load(file)["benchmarks"]
    samples = {}
    for line in lines:
        if line["run_type"] != "iteration":
            continue
        # Behind the name are settings, each with a colon, or "real_time" and the like.
        name = "/".join(word for word in line["run_name"].split("/") if ":" not in word and not word.endswith("_time"))
        for field in fields:
            samples.setdefault(name, {}).setdefault(field, []).append(line[field])
    return samples


def _spread(combine, *samples):
    """The combination of the samples' medians, and between what it is in 95 of 100 cases: of samples drawn from these anew."""
    chance = random.Random(1)
    drawn = sorted(
        combine(*(statistics.median(chance.choices(each, k=len(each))) for each in samples)) for _ in range(_RESAMPLES))
    value = combine(*(statistics.median(each) for each in samples))
    shown = (value, drawn[int(0.025 * _RESAMPLES)], drawn[int(0.975 * _RESAMPLES)])
    return dict(zip(("value", "low", "high"), (float(f"{each:.5g}") for each in shown)))


def median(sample):
    return _spread(lambda value: value, sample)


def ratio(sample, base):
    return _spread(lambda value, other: value / other, sample, base)


def difference(sample, base):
    return _spread(lambda value, other: value - other, sample, base)
