"""What tests wait for."""
import time
from collections.abc import Callable
from typing import Any

import tarn

AMPLE = 30.0  # seconds; only a test that fails waits that long


def once_it_is_back(call: Callable[[], Any]) -> Any:
    """What a service answers that has ended, or is about to, and comes back."""
    end = time.monotonic() + AMPLE
    while True:
        try:
            return call()
        except tarn.IpcError:
            if time.monotonic() > end:
                raise
            time.sleep(0.01)
