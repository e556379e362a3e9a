"""Does what a document says, in an empty directory, with an installation of its own: guide.py DOCUMENT [COMMAND]

A block of code behind a line "`NAME`:" is that file; others in sh are commands, and in console commands ("$ ...") with what
they print. Everything runs in one shell, in the document's order, and COMMAND after it. BUILD and AREA come from CMake.
"""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

GUIDE = pathlib.Path(sys.argv[1])
WORK = pathlib.Path(os.environ["AREA"]) / GUIDE.stem
BLOCK = re.compile(r"(?:^`([^`\n]+)`:\n\n)?^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def examples(text):
    """Each command of a console block, and what it prints."""
    return [part.partition("\n")[::2] for part in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]]


def comparable(text):
    """Without what is different in each run, or with each change of a source: processes, time stamps, lines."""
    text = re.sub(r" \(\d+\) ", " (PROCESS) ", text)
    return re.sub(r"\d{4}-\d\d-\d\dT\S+Z (\w+ \w+):\d+ ", r"TIME \1:LINE ", text)


def script():
    """The shell script, and what its examples print, in their order."""
    lines, printed, files = [], [], 0
    for name, language, text in BLOCK.findall(GUIDE.read_text()):
        if name:
            (WORK / f"file{files}").write_text(text)
            lines.append(f"cp {shlex.quote(str(WORK))}/file{files} {shlex.quote(name)}")
            files += 1
        elif language == "sh":
            lines.append(text)
        elif language == "console":
            for command, output in examples(text):
                lines.append(f"{{ {command}\n}} > ../printed{len(printed)} 2>&1")
                printed.append((command, output))
        else:
            sys.exit(f"a block of {language} that is neither a file nor a command")
    if files < 3 or len(printed) < 3:
        sys.exit("files or examples of the document are not recognised")
    return "\n".join(lines + sys.argv[2:]), printed


def main():
    shutil.rmtree(WORK, ignore_errors=True)
    (WORK / "project").mkdir(parents=True)
    for component in ("library", "kit", "python"):
        subprocess.run(["cmake", "--install", os.environ["BUILD"], "--prefix", WORK / "home/tarn-kit", "--component",
                        component], check=True, stdout=subprocess.DEVNULL)
    commands, printed = script()
    environment = {"HOME": str(WORK / "home"), "PATH": "/usr/bin:/bin:" + os.environ["PATH"]}
    (WORK / "script").write_text("trap 'kill ${!-} 2> /dev/null || :' EXIT\n" + commands)  # ends a gateway that is left
    ran = subprocess.run(["sh", "-euv", "../script"], cwd=WORK / "project", env=environment)
    wrong = ran.returncode != 0
    for index, (command, expected) in enumerate(printed):
        path = WORK / f"printed{index}"
        actual = path.read_text() if path.exists() else "(not run)\n"
        if comparable(actual) != comparable(expected):
            print(f"$ {command}\nexpected:\n{expected}printed:\n{actual}")
            wrong = True
    sys.exit(wrong)


main()
