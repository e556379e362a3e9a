"""The pages of the programs, from the help that they print: tarnctl, each of its commands, tarn-gateway, tarn-bridge."""
import itertools
import re
import subprocess
import textwrap
from dataclasses import dataclass

import markdown
from mdoc import Page, Writer, word, words

_COLUMN = 30  # where the help's descriptions begin
_COLUMNS = ("Positionals", "Options")
_KINDS = {"UINT": "NUMBER", "FLOAT": "NUMBER"}  # what stands for a value that has no name of its own


@dataclass
class Part:
    """A part of a help text: its title, and (term, description) pairs or the lines as they are."""
    title: str
    pairs: list
    lines: list


def _output(program, *arguments):
    result = subprocess.run([*program, *arguments], capture_output=True, text=True, check=False)
    if result.returncode != 0:
        raise SystemExit("%s: %s" % (" ".join([*program, *arguments]), result.stderr))
    return result.stdout


def _pairs(lines):
    """Lines in two columns as pairs; None if they are not."""
    pairs = []
    for line in lines:
        head, rest = line[:_COLUMN], line[_COLUMN:]
        if not head.strip() and pairs:
            pairs[-1][1] += " " + rest.strip()
        elif re.match(r"  \S.* $", head) and rest[:1].strip():
            pairs.append([head.strip(), rest.strip()])
        elif re.match(r"  \S", line) and len(line) >= _COLUMN:  # the term leaves no room: the description is on the next line
            pairs.append([line.strip(), ""])
        else:
            return None
    return pairs


def parse(text, is_main=False):
    """A help text as what it says first, its usage, and its parts. That of the whole program lists its commands, too."""
    before, _, rest = text.partition("Usage: ")
    usage, _, rest = rest.partition("\n")
    parts = []
    for line in rest.split("\n"):
        if not line and parts and parts[-1].title in _COLUMNS:  # an untitled part may follow
            parts.append(Part("", None, []))
        elif line and line[0] != " " and line.endswith(":"):
            parts.append(Part(line[:-1], None, []))
        elif line and line[0] != " " and (not parts or parts[-1].title or parts[-1].lines[-1:] == [""]):
            parts.append(Part("", None, [line]))
        elif parts:
            parts[-1].lines.append(line)
    for part in parts:
        while part.lines and not part.lines[-1]:
            part.lines.pop()
        while part.lines and not part.lines[0]:
            part.lines.pop(0)
        part.pairs = _pairs(part.lines) if part.title in _COLUMNS or is_main else None
    return " ".join(before.split()), usage, [part for part in parts if part.lines]


class Programs:
    def __init__(self, tarnctl, gateway, bridge, fleet):
        self._main = {name: _output(program, "--help") for name, program in (
            ("tarnctl", tarnctl), ("tarn-gateway", gateway), ("tarn-bridge", bridge), ("tarn-fleet", fleet))}
        self.verbs = {}  # by the names of their pages: the command, and its help
        for name, program in (("tarnctl", tarnctl), ("tarn-fleet", fleet)):
            _, _, parts = parse(self._main[name], is_main=True)
            for part in parts:
                if part.pairs and part.title not in ("Options", "Exit codes", "Environment"):
                    for verb, _ in part.pairs:
                        self.verbs[name + "-" + verb] = (name + " " + verb, _output(program, verb, "--help"))

    def names(self):
        return [*self._main, *self.verbs]

    def help_of(self, name):
        return self._main.get(name) or self.verbs[name][1]


def _summary(text):
    text = re.split(r"[.:](?: |$)", text)[0]
    return text[0].lower() + text[1:]


def _page(reference, name, command):
    """NAME, SYNOPSIS and DESCRIPTION of a program; the parts of its help that come behind these."""
    text, usage, parts = parse(reference.programs.help_of(name), name in ("tarnctl", "tarn-fleet"))
    summary = "simulated gateway" if text.startswith("The simulated gateway:") else _summary(text)
    page = Page(name, 1, summary, reference.date)
    page.section("SYNOPSIS")
    page.macros(".Nm " + command)
    if usage != command:
        page.macros(".Ar " + words(usage[len(command):]))
    page.section("DESCRIPTION")
    writer = Writer(reference.sections, name)
    page.paragraph(writer.text(text if text.endswith(".") else text + "."))
    later = []
    for part in parts:
        if part.title in ("Exit codes", "Environment", "Examples", "Example"):
            later.append(part)
        elif part.pairs is not None:
            page.subsection("Arguments" if part.title == "Positionals" else part.title)
            page.tags([_item(name, part, term, description, writer, reference) for term, description in part.pairs])
        else:
            _free(page, writer, part)
    return page, later


def _free(page, writer, part):
    """Paragraphs, and indented lines as they are."""
    if part.title:
        page.subsection(part.title)
    for is_indented, lines in itertools.groupby(part.lines, lambda line: line.startswith(" ")):
        text = list(lines)
        if is_indented:
            page.display(textwrap.dedent("\n".join(text)))
        elif any(text):
            page.paragraph(writer.text(" ".join(text)))


def _item(name, part, term, description, writer, reference):
    """A term and what it means, as a list has them."""
    if part.title not in _COLUMNS:
        page = name + "-" + term
        return "Xr %s 1" % page if page in reference.sections else "Cm " + words(term), writer.text(description + ".")
    head, remarks = _option(term) if part.title == "Options" else ("Ar " + words(term.split()[0]), [])
    return head, "\n".join(writer.text(each + ".") for each in [description, *remarks])


def _option(term):
    """An option as the help has it, "--caller TEXT=tarnctl Excludes: --null-caller", as macros, and what else there is."""
    match = re.fullmatch(r"(?P<names>-\S+)(?: (?P<value>[A-Z]+|\[FILE\]|RADIOS .*STATIONS)(?: x 3)?)?"
                         r"(?::(?:\{(?P<words>.*?)\}|(?P<range>[0-9].*?)))?"
                         r"(?:=(?P<default>\S+))?(?: Excludes: (?P<others>.*))?", term)
    if match is None:
        raise SystemExit("program_pages.py: an option that it does not know how to read: " + term)
    names = match["names"].replace("{false}", "").split(",")
    head = " , ".join("Fl " + word(each[1:]) for each in names)
    if match["value"]:
        head += " Ar " + words(_KINDS.get(match["value"], match["value"]))
    remarks = []
    if match["words"]:
        remarks.append("One of " + match["words"].replace(",", ", "))
    if match["range"]:
        remarks.append("From " + match["range"])
    if match["default"]:
        remarks.append(match["default"] + " if left out")
    if match["others"]:
        remarks.append("Not with " + match["others"].replace(" ", ", "))
    return head, remarks


def _finish(page, later, references):
    for title in ("Environment", "Exit codes", "Examples", "Example"):
        for part in later:
            if part.title == title:
                page.section({"Environment": "ENVIRONMENT", "Exit codes": "EXIT STATUS"}.get(title, "EXAMPLES"))
                page.display(textwrap.dedent("\n".join(part.lines)))
    page.see_also(references)
    return page.text()


def pages(reference):
    """The text of each page, by (name, section)."""
    result = {}
    page, later = _page(reference, "tarnctl", "tarnctl")
    others = [(each, 1) for each in reference.programs.names() if each != "tarnctl"]
    result["tarnctl", 1] = _finish(page, later, [*others, ("tarn-layout", 5), ("tarn", 7)])
    for verb, (command, _) in reference.programs.verbs.items():
        page, later = _page(reference, verb, command)
        result[verb, 1] = _finish(page, later, [(command.split()[0], 1), ("tarn-layout", 5), ("tarn", 7)])
    page, later = _page(reference, "tarn-gateway", "tarn-gateway")
    document = markdown.sections(reference.read("kit/simulator/README.md"))
    for title in ("What is the simulator's own", "Statuses", "The log", "Another layout", "The model", "Time", "Control",
                  "Orders",
                  "Faults", "One for several users"):
        markdown.write(page, Writer(reference.sections, "tarn-gateway"), document[title], title)
    result["tarn-gateway", 1] = _finish(page, later, [("tarnctl", 1), ("tarn-layout", 5), ("tarn-scenario", 5), ("tarn", 7)])
    page, later = _page(reference, "tarn-bridge", "tarn-bridge")
    for path, section, title in (("docs/fleet-policy.md", "", "Policy"), ("docs/fleet-envelope.md", "Topics", "Topics"),
                                 ("docs/fleet-envelope.md", "How both sides behave", "Behaviour")):
        document = markdown.sections(reference.read(path))
        markdown.write(page, Writer(reference.sections, "tarn-bridge"), document[section], title)
    result["tarn-bridge", 1] = _finish(page, later, [("tarn-gateway", 1), ("tarn", 7)])
    page, later = _page(reference, "tarn-fleet", "tarn-fleet")
    for path, titles in (("docs/fleet.md", ("Settings", "One gateway", "Many gateways")),
                         ("docs/fleet-behaviour.md", ("Byte order", "What is promised, and what is not"))):
        document = markdown.sections(reference.read(path))
        for title in titles:
            markdown.write(page, Writer(reference.sections, "tarn-fleet"), document[title], title)
    result["tarn-fleet", 1] = _finish(page, later, [("tarnctl", 1), ("tarn-bridge", 1), ("tarn-layout", 5), ("tarn", 7)])
    return result
