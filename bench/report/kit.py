"""The kit as bench/run has built it: its programs at work, and what a script of Python needs to find the libraries."""
import contextlib
import os
import pathlib
import signal
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build" / "bench"
_LONGEST = 900  # seconds that a program may take


def programs():
    """Where each program is, by its name."""
    return {path.name: path for path in BUILD.rglob("tarn[-_cb]*") if path.is_file() and os.access(path, os.X_OK)}


def python(script, *arguments):
    """What a script writes that imports tarn, and starts tarn-gateway."""
    paths = {
        "LD_LIBRARY_PATH": [BUILD / "src", BUILD / "kit" / "host"],
        "PATH": [BUILD / "kit" / "simulator", os.environ["PATH"]],
        "PYTHONPATH": [BUILD / "python", ROOT / "tests" / "python"],
    }
    environment = {**os.environ, **{name: ":".join(map(str, found)) for name, found in paths.items()}}
    return output([sys.executable, script, *arguments], environment)


def output(command, environment=None):
    try:
        done = subprocess.run(list(map(str, command)), capture_output=True, text=True, env=environment, timeout=_LONGEST)
    except subprocess.TimeoutExpired:
        sys.exit(f"{' '.join(map(str, command))}: has not ended within {_LONGEST} seconds")
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: exit code {done.returncode}\n{done.stderr}")
    return done.stdout


@contextlib.contextmanager
def running(command, **options):
    """The process, and the first line that it writes, which says that it is ready. It is ended behind."""
    with subprocess.Popen(list(map(str, command)), stdout=subprocess.PIPE, text=True, **options) as process:
        try:
            line = process.stdout.readline().strip()
            if not line:
                sys.exit(f"{' '.join(map(str, command))}: has not started")
            yield process, line
        finally:
            process.send_signal(signal.SIGTERM)


@contextlib.contextmanager
def on_one_processor():
    """This process, and those that it starts meanwhile."""
    before = os.sched_getaffinity(0)
    os.sched_setaffinity(0, {min(before)})
    try:
        yield
    finally:
        os.sched_setaffinity(0, before)
