"""A simulated gateway beside the one that this process calls."""
import json
import os
import subprocess
import sys
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from typing import Any


@contextmanager
def another_gateway(*options: str) -> Iterator[str]:
    """Its runtime directory; programs call it with that as KORIIL_DIR."""
    with tempfile.TemporaryDirectory(prefix="tarn-") as directory:
        command = ["tarn-gateway", f"--directory={directory}", "--speed=0", *options]
        with subprocess.Popen(command, stdout=subprocess.PIPE) as process:
            assert process.stdout is not None
            assert process.stdout.readline() == b"ready\n"
            yield directory
            process.terminate()
        assert process.returncode == 0


def state_in(directory: str) -> Any:
    """The state of the gateway there."""
    script = "from tarn import control; print(control.order('state')[1])"
    environment = {**os.environ, "KORIIL_DIR": directory}
    command = [sys.executable, "-c", script]
    return json.loads(subprocess.run(command, capture_output=True, text=True, check=True, env=environment).stdout)
