"""What can go wrong with a call. An argument that cannot be sent at all, of a wrong type or size, is a TypeError or
ValueError.
"""
from typing import Any


class TarnError(Exception):
    """A call that failed. `function` is the one that was called."""

    def __init__(self, function: str, text: str) -> None:
        super().__init__(text)
        self.function = function


class RefusedError(TarnError):
    """The library refused an argument; nothing was sent. `reason` is what it traces, such as "ifname is NULL"."""

    def __init__(self, function: str, reason: str) -> None:
        super().__init__(function, f"{function} refused an argument: {reason}; nothing was sent")
        self.reason = reason


class IpcError(TarnError):
    """The IPC call failed, so there is no answer. `number` and `name` are those of the IPC status, such as 6 and "RX_FAIL"."""

    def __init__(self, function: str, service: str, number: int, name: str, text: str) -> None:
        super().__init__(function, f"{function}: {text}: {name} (IPC status {number})")
        self.service = service
        self.number = number
        self.name = name


class NoServiceError(IpcError):
    """No service of that name is running in the runtime directory."""


class TimedOutError(IpcError, TimeoutError):
    """The service did not answer within the wait of the command. It may still carry it out."""


class StatusError(TarnError):
    """The service answered with a reply status other than 0. What it means is the service's own affair: `name` and `text` are
    those of the layout in use, and empty without one. `outputs` is what the function would have returned: outputs are written
    whatever the status is, and what they hold then is the service's affair, too."""

    def __init__(self, function: str, service: str, number: int, name: str, text: str, outputs: Any) -> None:
        meaning = f" ({name}: {text})" if name else ""
        super().__init__(function, f"service {service} answered {function} with status {number}{meaning}")
        self.service = service
        self.number = number
        self.name = name
        self.text = text
        self.outputs = outputs
