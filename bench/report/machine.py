"""Where and when something was measured."""
import datetime
import os
import pathlib
import platform
import re
import subprocess


def _cpu():
    found = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8"), re.MULTILINE)
    return found[1] if found else platform.machine()


def _system():
    found = re.search(r'^PRETTY_NAME="(.*)"$', pathlib.Path("/etc/os-release").read_text(encoding="utf-8"), re.MULTILINE)
    return found[1] if found else platform.system()


def _compiler():
    try:
        return subprocess.run(["c++", "--version"], check=True, capture_output=True, text=True).stdout.splitlines()[0]
    except OSError:
        return "no compiler"


def _commit(root):
    """The commit that is checked out, and whether code differs from it; a source archive has none."""
    def git(*command):
        return subprocess.run(["git", "-C", root, *command], check=True, capture_output=True, text=True).stdout.strip()

    try:
        changed = git("status", "--porcelain", "--untracked-files=no", "--", ":!docs")
        return git("rev-parse", "--short=12", "HEAD") + (" and changes" if changed else "")
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def about(root, load, quick):
    return {
        "cpu": _cpu(),
        "processors": len(os.sched_getaffinity(0)),
        "system": f"{_system()}, Linux {platform.release()}",
        "compiler": _compiler(),
        "commit": _commit(root),
        "date": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"),
        "load": round(load, 1),
        "quick": quick,
    }
