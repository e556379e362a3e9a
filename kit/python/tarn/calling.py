"""Calling a function of the library by what the contract says of it."""
import ctypes
from collections.abc import Callable, Mapping
from typing import Any, Optional

from . import contract, layouts
from .control import ipc_error
from .errors import RefusedError, StatusError, TarnError
from .layouts import Layout
from .libraries import koriil, libtarn
from .records import Record, record_bytes
from .values import Number, mac_bytes, text_bytes, text_of, whole_number

_MAC_ADDRESS_SIZE = 6
_LONGEST_CALLER_ID = 31
_MOST_ROOM = 1 << 20
_NUMBERS: dict[str, Any] = {"u8": ctypes.c_uint8, "u16": ctypes.c_uint16, "u32": ctypes.c_uint32}

_Given = dict[str, Any]


class _Argument:
    """One argument of the C function, by its entry in the contract."""

    type: Any = ctypes.c_void_p
    is_input = False
    is_output = False

    def __init__(self, function: str, entry: dict[str, Any]) -> None:
        self.function = function
        self.name = str(entry["name"])
        self.place = f"{function}.{self.name}"
        self.entry = entry

    def make(self, given: _Given, layout: Optional[Layout]) -> Any:
        """What is passed to the function."""
        raise NotImplementedError

    def result(self, made: Any, layout: Optional[Layout]) -> Any:
        """Of an output, what is in it after the call."""
        raise NotImplementedError


class _InNumber(_Argument):
    is_input = True

    def __init__(self, function: str, entry: dict[str, Any]) -> None:
        super().__init__(function, entry)
        self.type = _NUMBERS[entry["type"]]
        self.bits = 8 * ctypes.sizeof(self.type)

    def make(self, given: _Given, layout: Optional[Layout]) -> int:
        value = given[self.name]
        if type(value) is int and 0 <= value < 1 << self.bits:
            return value
        if value is None:
            return self._selected(given, layout)
        return whole_number(self.name, value, layout.meaning(self.function, self.name) if layout else None, self.bits)

    def _selected(self, given: _Given, layout: Optional[Layout]) -> int:
        """The bits that select the fields which another argument is given as."""
        fields = given.get(layout.selects(self.function, self.name)) if layout else None
        if layout is None or not isinstance(fields, Mapping):
            raise TypeError(
                f"{self.name}: expected a number; None is for one that selects fields by the layout in use, "
                "beside an argument that is given by its fields"
            )
        return layout.selection(self.function, self.name, fields)


class _InPointer(_Argument):
    is_input = True
    type = ctypes.c_char_p
    null_is_passed = False  # it may be left out, or the library refuses it

    def make(self, given: _Given, layout: Optional[Layout]) -> Optional[bytes]:
        value = given[self.name]
        if value is None and self.null_is_passed:
            return None
        return self.encoded(value, layout)

    def encoded(self, value: Any, layout: Optional[Layout]) -> bytes:
        raise NotImplementedError


class _InText(_InPointer):
    def encoded(self, value: Any, layout: Optional[Layout]) -> bytes:
        return text_bytes(self.name, value, self.entry["size"] - 1)  # the library would cut a longer one


class _InTextBlock(_InPointer):
    def encoded(self, value: Any, layout: Optional[Layout]) -> bytes:
        size = self.entry["size"]
        return text_bytes(self.name, value, size).ljust(size, b"\0")


class _InMacAddress(_InPointer):
    def encoded(self, value: Any, layout: Optional[Layout]) -> bytes:
        return mac_bytes(self.name, value)


class _InBlock(_InPointer):
    def encoded(self, value: Any, layout: Optional[Layout]) -> bytes:
        return record_bytes(self.name, value, _record_class(layout, self.place), self.entry["size"])


class _InRecord(_Argument):
    is_input = True

    def __init__(self, function: str, entry: dict[str, Any]) -> None:
        super().__init__(function, entry)
        self.record = str(entry["record"])
        self.size = contract.RECORD_SIZES[self.record]
        self.type = type(self.record, (ctypes.Structure,), {"_fields_": [("bytes", ctypes.c_uint8 * self.size)]})

    def make(self, given: _Given, layout: Optional[Layout]) -> Any:
        kind = _record_class(layout, self.record)
        return self.type.from_buffer_copy(record_bytes(self.name, given[self.name], kind, self.size))


class _OutNumber(_Argument):
    is_output = True

    def __init__(self, function: str, entry: dict[str, Any]) -> None:
        super().__init__(function, entry)
        self.word = ctypes.c_int32 if entry.get("signed") else _NUMBERS[entry["type"]]

    def make(self, given: _Given, layout: Optional[Layout]) -> Any:
        return ctypes.pointer(self.word())

    def result(self, made: Any, layout: Optional[Layout]) -> Number:
        return Number(made[0], layout.meaning(self.function, self.name) if layout else None)


class _OutBuffer(_Argument):
    is_output = True
    size = 0

    def make(self, given: _Given, layout: Optional[Layout]) -> Any:
        return ctypes.create_string_buffer(self.size)


class _OutText(_OutBuffer):
    def __init__(self, function: str, entry: dict[str, Any], room: int) -> None:
        super().__init__(function, entry)
        self.size = entry.get("size", room)

    def result(self, made: Any, layout: Optional[Layout]) -> str:
        return text_of(made.value)


class _OutMacAddress(_OutBuffer):
    size = _MAC_ADDRESS_SIZE

    def result(self, made: Any, layout: Optional[Layout]) -> str:
        raw: bytes = made.raw
        return raw.hex(":")


class _OutRecord(_OutBuffer):
    """A record, a block, or several words."""

    def __init__(self, function: str, entry: dict[str, Any]) -> None:
        super().__init__(function, entry)
        self.key = str(entry.get("record", self.place))
        self.size = contract.RECORD_SIZES[self.key] if "record" in entry else entry["size"]

    def result(self, made: Any, layout: Optional[Layout]) -> Record:
        return _record_class(layout, self.key)(made.raw)


class _OutSizedBlock(_OutBuffer):
    """As many bytes as another argument says."""

    def make(self, given: _Given, layout: Optional[Layout]) -> Any:
        name = self.entry["size_argument"]
        size = whole_number(name, given[name], None, 32)
        if size > _MOST_ROOM:
            raise ValueError(f"{name}: expected at most {_MOST_ROOM} bytes; got {size}")
        return ctypes.create_string_buffer(size)  # of none, still no null pointer

    def result(self, made: Any, layout: Optional[Layout]) -> bytes:
        return bytes(made.raw)


class _OutNothing(_OutBuffer):
    """A pointer that is checked, and never written to."""

    is_output = False
    size = _MAC_ADDRESS_SIZE


class _TextSize(_Argument):
    """The room for a text."""

    type = ctypes.c_uint32

    def __init__(self, function: str, entry: dict[str, Any], room: int) -> None:
        super().__init__(function, entry)
        self.room = room

    def make(self, given: _Given, layout: Optional[Layout]) -> int:
        return self.room


def _record_class(layout: Optional[Layout], name: str) -> type[Record]:
    return (layout.record(name) if layout else None) or Record


def _input_kind(entry: dict[str, Any]) -> type[_Argument]:
    if entry["type"] == "record":
        return _InRecord
    if entry["type"] == "text":
        return _InText if entry["encoding"] == "text" else _InTextBlock
    if entry["type"] == "bytes":
        return _InMacAddress if entry["size"] == _MAC_ADDRESS_SIZE else _InBlock
    return _InNumber


def _output_kind(entry: dict[str, Any]) -> type[_Argument]:
    if entry["encoding"] == "nothing":
        return _OutNothing
    if "size_argument" in entry:
        return _OutSizedBlock
    if entry["type"] == "bytes" and entry["size"] == _MAC_ADDRESS_SIZE:
        return _OutMacAddress
    return _OutRecord if entry["type"] in ("bytes", "record") or entry["encoding"] == "words" else _OutNumber


class Command:
    """One function of the library."""

    def __init__(self, document: dict[str, Any], command: dict[str, Any]) -> None:
        self.name = str(command["function"])
        self.service = str(document["service"])
        self.wait = int(command["wait"])
        self.result = document["result"]
        self.invalid_caller = str(document["invalid_caller"])
        self.checks = command["checks"]
        self.arguments = [self._argument(entry, command) for entry in command["arguments"]]
        self.inputs = [each.name for each in self.arguments if each.is_input]
        try:
            self.function = getattr(libtarn, self.name)
        except AttributeError:
            raise TarnError(
                self.name, f"libtarn.so.1 has no {self.name}; expected a library of this package's version"
            ) from None
        self.function.restype = ctypes.c_int32 if self.result["type"] == "i32" else ctypes.c_uint32
        self.function.argtypes = [ctypes.c_char_p, *(each.type for each in self.arguments)]

    def _argument(self, entry: dict[str, Any], command: dict[str, Any]) -> _Argument:
        name, room = entry["name"], command["length"]  # no text is longer than its message
        if any(other.get("size_argument") == name and other["type"] == "text" for other in command["arguments"]):
            return _TextSize(self.name, entry, room)
        if entry["type"] == "text" and entry["direction"] == "out":
            return _OutText(self.name, entry, room)
        kind = _input_kind(entry) if entry["direction"] == "in" else _output_kind(entry)
        argument = kind(self.name, entry)
        if isinstance(argument, _InPointer):
            argument.null_is_passed = bool(entry.get("optional")) or any(
                check["argument"] == name for check in self.checks
            )
        return argument

    def refusal(self, caller: bytes, given: _Given) -> str:
        """The text of the first check that fails; empty if there is none."""
        if not is_caller_id(caller):
            shown = caller.decode(errors="backslashreplace")
            return self.invalid_caller % shown if "%s" in self.invalid_caller else self.invalid_caller
        for check in self.checks:
            value = given.get(check["argument"], True)
            if (
                value is None
                or (check["when"] == "null or empty" and not value)
                or (check["when"] == "zero" and value == 0)
            ):
                return str(check["message"])
        return ""


_commands: dict[str, Command] = {}


def command_named(function: str) -> Command:
    command = _commands.get(function)
    if command is None:
        command = _commands[function] = Command(*contract.COMMANDS[function])
    return command


def is_caller_id(caller: bytes) -> bool:
    """Whether the library takes it."""
    return 1 <= len(caller) <= _LONGEST_CALLER_ID and 0x20 <= caller[0] <= 0x7F


def caller_bytes(caller: object) -> bytes:
    if not isinstance(caller, str):
        raise TypeError(f"the caller's identifier: expected a text; got {caller!r}")
    encoded = caller.encode(errors="surrogateescape")
    if b"\0" in encoded:
        raise ValueError(f"the caller's identifier: expected a text without a NUL; got {caller!r}")
    return encoded


def call(function: str, caller: str, *values: Any, outputs: Optional[Callable[[Any], Any]] = None) -> Any:
    """Calls a function with its inputs in their order. Returns its output; of several what `outputs` makes of them."""
    command = command_named(function)
    layout = layouts.layout_in_use()
    caller_id = caller_bytes(caller)
    given = dict(zip(command.inputs, values))
    made = [argument.make(given, layout) for argument in command.arguments]

    result: int = command.function(caller_id, *made)

    reason = command.refusal(caller_id, given) if result == command.result["rejected"] else ""
    if reason:
        raise RefusedError(function, reason)
    if result in (command.result["failed"], command.result["timed_out"]):
        status = koriil.KorIilLastStatus()
        if status:
            raise ipc_error(function, command.service, status, command.wait)
    answers = [argument.result(each, layout) for argument, each in zip(command.arguments, made) if argument.is_output]
    answer = None if not answers else answers[0] if outputs is None else outputs(answers)
    if result:
        name, text = layout.status(command.service, result) if layout else ("", "")
        raise StatusError(function, command.service, result, name, text, answer)
    return answer
