"""What arguments may be given as, and numbers that know their names."""
import difflib
import operator
import re
from collections.abc import Iterable, Mapping
from typing import Any, NoReturn, Union

# A number, or the name that the layout in use has for it; the names of flags with + between them.
NumberLike = Union[int, str]
# Text is UTF-8; bytes that are none are surrogates, as in the names of files.
TextLike = Union[str, bytes]
# Six bytes, or their text such as "02:00:00:00:00:01".
MacLike = Union[str, bytes]
# The bytes of a record or a block, or its fields by the names of the layout in use; fields that are left out are zero.
RecordLike = Union[bytes, Mapping[str, Any]]


def refuse(subject: str, expected: str, got: object) -> NoReturn:
    raise ValueError(f"{subject}: expected {expected}; got {got!r}")


def similar(name: str, names: Iterable[str]) -> str:
    """A question that an error ends with, if there is a name like the one that is wrong."""
    found = difflib.get_close_matches(name, list(names), 1)
    return f"; did you mean {found[0]}?" if found else ""


class Meaning:
    """What a layout says of a number: its unit, the names of its values, or those of its bits."""

    def __init__(self, unit: str, description: str, values: Mapping[str, int], flags: Mapping[str, int]) -> None:
        self.unit = unit
        self.description = description
        self.values = values
        self.flags = flags
        self._names = {number: name for name, number in reversed(list(values.items()))}

    def name(self, number: int) -> str:
        return self._names.get(number, "")

    def flag_names(self, number: int) -> tuple[str, ...]:
        return tuple(name for name, bit in self.flags.items() if number >> bit & 1)

    def number(self, subject: str, text: str) -> int:
        """The number that has this name, or these names of flags."""
        if text in self.values:
            return self.values[text]
        words = text.split("+")
        if self.flags and all(word in self.flags for word in words):
            return sum({1 << self.flags[word] for word in words})
        names = self.values or self.flags
        if not names:
            refuse(subject, "a number, as the layout has no names for its values", text)
        expected = f"a number, or {'one' if self.values else 'some'} of {', '.join(names)}"
        raise ValueError(f"{subject}: expected {expected}; got {text!r}{similar(text, names)}")


class Number(int):
    """A number of an answer. The layout in use may have a name for it, names for its bits, and its unit.

    >>> Number(1, Meaning("", "", {"idle": 0, "running": 1}, {}))
    running (1)
    >>> rssi = Number(-61, Meaning("dBm", "", {}, {}))
    >>> rssi, rssi.unit, rssi + 1, f"{rssi}"
    (-61 dBm, 'dBm', -60, '-61')
    """

    _meaning: Union[Meaning, None]

    def __new__(cls, number: int, meaning: Union[Meaning, None] = None) -> "Number":
        self = int.__new__(cls, number)
        self._meaning = meaning
        return self

    @property
    def name(self) -> str:
        """Empty where the layout has none."""
        return self._meaning.name(self) if self._meaning else ""

    @property
    def flags(self) -> tuple[str, ...]:
        """The names of the bits that are set."""
        return self._meaning.flag_names(self) if self._meaning else ()

    @property
    def unit(self) -> str:
        return self._meaning.unit if self._meaning else ""

    def __repr__(self) -> str:
        name = self.name or ", ".join(self.flags)
        number = f"{name} ({int(self)})" if name else f"{int(self)}"
        return f"{number} {self.unit}" if self.unit else number

    def __str__(self) -> str:
        return int.__repr__(self)

    def __reduce__(self) -> tuple[type[int], tuple[int]]:
        return (int, (int(self),))

    def __deepcopy__(self, _: object) -> "Number":
        return self


def whole_number(subject: str, value: object, meaning: Union[Meaning, None], bits: int, signed: bool = False) -> int:
    """The value as a number of so many bits; a name of one by the layout."""
    if isinstance(value, str):
        if meaning is None:
            refuse(subject, "a number, as there is no layout with names for it", value)
        value = meaning.number(subject, value)
    try:
        number = operator.index(value)  # type: ignore[arg-type]  # it says itself whether it is a whole number
    except TypeError:
        raise TypeError(f"{subject}: expected a number; got {value!r}") from None
    low, high = (-(1 << (bits - 1)), (1 << (bits - 1)) - 1) if signed else (0, (1 << bits) - 1)
    if not low <= number <= high:
        refuse(subject, f"a number from {low} to {high}", value)
    return number


def text_bytes(subject: str, value: object, most: int) -> bytes:
    """A text as it is sent, without a NUL."""
    if isinstance(value, str):
        value = value.encode(errors="surrogateescape")
    if not isinstance(value, bytes):
        raise TypeError(f"{subject}: expected a text; got {value!r}")
    if b"\0" in value:
        refuse(subject, "a text without a NUL", value)
    if len(value) > most:
        raise ValueError(f"{subject}: expected a text of at most {most} bytes; got {len(value)} bytes")
    return bytes(value)


def text_of(raw: bytes) -> str:
    """The text up to the first NUL, or all of it."""
    return raw.partition(b"\0")[0].decode(errors="surrogateescape")


def mac_bytes(subject: str, value: object) -> bytes:
    """The six bytes of a MAC address.

    >>> mac_bytes("mac", "02:00:00:00:01:05")
    b'\\x02\\x00\\x00\\x00\\x01\\x05'
    """
    if isinstance(value, bytes) and len(value) == 6:
        return bytes(value)
    if isinstance(value, str) and re.fullmatch(r"[0-9A-Fa-f]{2}([:-]?)[0-9A-Fa-f]{2}(\1[0-9A-Fa-f]{2}){4}", value):
        return bytes.fromhex(re.sub("[:-]", "", value))
    refuse(subject, "a MAC address such as 02:00:00:00:00:01, or its 6 bytes", value)
