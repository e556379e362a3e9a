"""docs/performance.md, its pictures, and the figures that both are made of."""
import json
import sys
import textwrap
from dataclasses import dataclass

import plots

_INTRODUCTION = """\
# What it costs

`bench/run` measures all of this and writes this page; `bench/run --help` says how to measure a part of it. Whatever is compared
was interleaved, repetition by repetition, in one run of one program, so that other load affects all alike. Figures are medians
of the repetitions; the range in brackets is a figure's 95 % interval. Take ratios to another machine, not times. All figures
are in `docs/performance.json`.
"""


@dataclass(frozen=True)
class Goal:
    what: str
    wanted: str
    got: str
    is_met: bool
    if_missed: str = ""  # what is known of why


def spread(figure, form, unit=""):
    """A value and between what it is."""
    low, high = format(figure["low"], form), format(figure["high"], form)
    return f"{figure['value']:{form}}{unit} ({low} to {high})"


def paragraph(text):
    return [*textwrap.wrap(text, 128, break_long_words=False, break_on_hyphens=False), ""]


def table(heads, rows):
    return [
        "| " + " | ".join(heads) + " |",
        "|" + "---|" * len(heads),
        *("| " + " | ".join(map(str, row)) + " |" for row in rows),
        "",
    ]


def picture(name, conclusion):
    """A picture, and what to conclude from it."""
    return [
        "<picture>",
        f'  <source media="(prefers-color-scheme: dark)" srcset="pictures/{name}-dark.svg">',
        f'  <img src="pictures/{name}-light.svg" alt="{conclusion}">',
        "</picture>",
        "",
        *paragraph(conclusion),
    ]


def read(output):
    path = output / "performance.json"
    try:
        return json.loads(path.read_text(encoding="utf-8")) if path.exists() else {}
    except ValueError as error:
        sys.exit(f"{path}: expected what bench/run has written; {error}")


def _lines(value, indent=""):
    """JSON with one line for each object that has no other one inside, or only medians and the like."""
    if not isinstance(value, dict) or all(not isinstance(each, dict) or "value" in each for each in value.values()):
        return json.dumps(value, ensure_ascii=False)
    inner = indent + " "
    members = (f"{inner}{json.dumps(key)}: {_lines(each, inner)}" for key, each in value.items())
    return "{\n" + ",\n".join(members) + "\n" + indent + "}"


def save(output, results):
    (output / "performance.json").write_text(_lines(results) + "\n", encoding="utf-8")


def _measured(about):
    return paragraph(
        f"Measured {about['date']} at commit {about['commit']}: {about['cpu']}, {about['processors']} processors, "
        f"{about['system']}, {about['compiler']}; load of the machine before: {about['load']}."
        + (" In a quick run: the figures are rough." if about["quick"] else ""))


def _goal_lines(goals):
    lines = ["## Goals", ""]
    lines += table(["Goal", "wanted", "measured", ""],
                   [(goal.what, goal.wanted, goal.got, "met" if goal.is_met else "missed") for goal in goals])
    for goal in goals:
        if not goal.is_met and goal.if_missed:
            lines += paragraph(f"{goal.what}: {goal.if_missed}")
    return lines


def write(output, parts, results):
    """Writes the page and the pictures of what has been measured. Returns how many goals were missed."""
    measured = [(part, results[name]) for name, part in parts.items() if name in results]
    goals = [goal for part, result in measured for goal in part.goals(result["figures"])]
    lines = [_INTRODUCTION, *_goal_lines(goals)]
    for part, result in measured:
        lines += [*part.section(result["figures"]), *_measured(result["about"])]
        plots.draw(part.PLOTS, result["figures"], output / "pictures")
    text = "\n".join(lines).rstrip() + "\n"
    (output / "performance.md").write_text(text, encoding="utf-8")
    return sum(not goal.is_met for goal in goals)
