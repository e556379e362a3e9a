"""One check of the manual pages: reference.py CHECK DIRECTORY TARNCTL COMPILER."""
import glob
import json
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

_SOURCE = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Pages:
    def __init__(self, directory, tarnctl, compiler):
        self.tarnctl, self.compiler = tarnctl, compiler
        self.generated = os.path.join(directory, "..", "include")
        self.man = sorted(glob.glob(os.path.join(directory, "man", "man*", "*")))
        self.exported = sorted(re.findall(r"^ *([tT]arn\w+);", read(os.path.join(_SOURCE, "src", "libtarn.map")), re.MULTILINE))

    def names(self, section):
        return sorted(os.path.basename(each)[:-2] for each in self.man if each.endswith(".%d" % section))

    def examples(self):
        """Of each function: its name, the program and the line for the shell, as somebody would copy them from the page."""
        for path in self.man:
            if path.endswith(".3"):
                shown = re.findall(r"^\.Bd -literal -offset indent\n(.*?)^\.Ed$", read(path), re.DOTALL | re.MULTILINE)
                program, line, _ = (self._plain(each) for each in shown[-3:])  # tests/python calls the third
                yield os.path.basename(path)[:-2], program, line

    @staticmethod
    def _plain(text):
        characters = {r"\e": "\\", r"\-": "-", r"\(ha": "^", r"\(ti": "~", r"\(aq": "'", r"\(ga": "`", r"\&": ""}
        return re.sub(r"\\(\(..|.)", lambda match: characters[match[0]], text)


def functions_have_pages(pages):
    assert len(pages.exported) == 253, len(pages.exported)
    assert pages.names(3) == pages.exported, set(pages.names(3)) ^ set(pages.exported)


def functions_tell_their_effect(pages):
    """Of each command, whether it only reads, and why where one may doubt it."""
    told = 0
    for service in ("tarn", "qtn_rpc_proxy", "qtn_mirror"):
        for command in json.loads(read(os.path.join(_SOURCE, "kit", "contract", service + ".json")))["commands"]:
            page = next(each for each in pages.man if each.endswith("/%s.3" % command["function"]))
            shown = subprocess.run(["mandoc", "-T", "ascii", page], capture_output=True, text=True, check=True).stdout
            shown = " ".join(re.sub(".\b", "", shown).split())
            effect = {"reads": "A call only reads:", "changes": "A call changes something"}[command["effect"]]
            assert effect in shown, command["function"]
            assert command.get("effect_reason", "") in shown, command["function"]
            told += 1
    assert told == 247, told


def commands_have_pages(pages):
    offered = subprocess.check_output([pages.tarnctl, "complete", "--", ""], text=True).split("\n")
    verbs = {each.split("\t")[0].strip() for each in offered if re.match("[a-z]", each)}
    assert len(verbs) > 30, verbs
    expected = {"tarnctl", "tarn-gateway", "tarn-bridge", "tarn-fleet"} | {"tarnctl-" + each for each in verbs}
    expected |= {"tarn-fleet-" + each for each in ("attach", "call", "events", "list")}
    assert set(pages.names(1)) == expected, set(pages.names(1)) ^ expected


def pages_are_clean(pages):
    """That the pages are not installed is all that may be said of a reference to one of them; tests/site follows them."""
    said = subprocess.run(["mandoc", "-T", "lint", *pages.man], capture_output=True, text=True, check=False).stdout
    ours = {os.path.basename(each) for each in pages.man}
    found = []
    for line in said.splitlines():
        reference = re.search(r"referenced manual not found: Xr (\S+) (\d)", line)
        if reference is None or "%s.%s" % reference.groups() not in ours:
            found.append(line)
    assert len(ours) > 290, len(ours)
    assert not found, "\n".join(found[:20])


def c_examples_compile(pages):
    with tempfile.TemporaryDirectory() as work:
        files = []
        for name, program, _ in pages.examples():
            assert name + "(" in program, "%s does not call it:\n%s" % (name, program)
            files.append(os.path.join(work, name + ".c"))
            with open(files[-1], "w", encoding="ascii") as file:
                file.write(program)
        assert len(files) == len(pages.exported)
        include = ["-I" + os.path.join(_SOURCE, "src", room) for room in ("frame", "tarn_api", "tarn_qtn_monitor_api")]
        include += ["-isystem", pages.generated]
        strict = ["-std=gnu99", "-Wall", "-Wextra", "-Werror", "-fsyntax-only"]
        subprocess.run([pages.compiler, *strict, *include, *files], check=True)


def is_command(name):
    return name.startswith(("Tarn", "tarn_"))


def shell_lines_are_accepted(pages):
    """Calls are made as --dry-run, local functions really; events are watched in vain, as no service runs (exit code 4)."""
    with tempfile.TemporaryDirectory() as work:
        layout = os.path.join(_SOURCE, "kit", "layout", "tarn-gateway.json")
        path = os.path.dirname(pages.tarnctl) + ":/usr/bin:/bin"
        environment = dict(os.environ, KORIIL_DIR=work, TARN_LAYOUT=layout, PATH=path)

        def run(example):
            name, _, line = example
            command = line.strip() + (" --dry-run" if is_command(name) else "")
            result = subprocess.run(command, shell=True, cwd=work, env=environment, capture_output=True, text=True, check=False)
            expected = 4 if name in ("tarnSubscribeEvent", "tarnCancelEvent") else 0
            return None if result.returncode == expected else "%s: %d, expected %d\n%s" % (
                line.strip(), result.returncode, expected, result.stderr)

        # One after the other where no command is sent: tarnDelRatesEntries reads what tarnAddRateEntries has saved.
        examples = sorted(pages.examples(), key=lambda example: example[0].startswith("tarnDel"))
        assert len(examples) == len(pages.exported)
        results = [run(each) for each in examples if not is_command(each[0])]
        with ThreadPoolExecutor(4) as threads:
            results += threads.map(run, [each for each in examples if is_command(each[0])])
        failed = [each for each in results if each]
        assert not failed, "\n".join(failed[:20])


check, *arguments = sys.argv[1:]
globals()[check](Pages(*arguments))
