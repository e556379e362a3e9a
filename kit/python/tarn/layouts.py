"""Layouts: what is inside records, blocks, events, words and statuses of one make of gateway.

The one in use is, whichever there is first: the file given to use_layout(), that of TARN_LAYOUT, the one that a running
simulated gateway hands out, /etc/tarn/layout.json. It is looked for when something is to be decoded, and again in
another runtime directory.
"""
import json
import os
import threading
import warnings
from collections.abc import Mapping
from typing import Any, Optional, Union

from . import contract, control
from .records import ArrayField, BytesField, Field, MacAddressField, NumberField, Record, TextField, record_class
from .values import Meaning

_USUAL_FILE = "/etc/tarn/layout.json"
_HINT = "; `tarnctl layout check FILE` tells all that is wrong with a layout"


class LayoutError(ValueError):
    """A layout that cannot be used. Says where, and what was expected."""


class Layout:
    """One layout file."""

    def __init__(self, text: Union[str, bytes], source: str) -> None:
        self.source = source
        try:
            document = json.loads(text)
        except ValueError as error:
            raise LayoutError(f"{source}: expected a layout file; got no sound JSON: {error}") from None
        if not isinstance(document, dict) or document.get("layout") != 1:
            raise LayoutError(f'{source}: expected a layout file, with "layout": 1{_HINT}')
        try:
            self._take(document)
        except (AttributeError, KeyError, TypeError) as error:
            raise LayoutError(
                f"{source}: expected the keys that a layout file has; {type(error).__name__}: {error}{_HINT}"
            ) from None

    def _take(self, document: dict[str, Any]) -> None:
        self.name = str(document["name"])
        self.version = str(document["version"])
        self.owner = str(document["owner"])
        self._values = document.get("values", {})
        self._structures: dict[str, dict[str, Any]] = {}
        for kind in ("records", "blocks", "events"):
            self._structures.update(document.get(kind, {}))
        self._meanings = {key: self._meaning(each) for key, each in document.get("arguments", {}).items()}
        self._selections = dict(document.get("selections", {}))
        self._statuses = {}
        for status in document.get("statuses", []):
            for service in status.get("services", contract.SERVICES):
                self._statuses[service, status["number"] & 0xFFFFFFFF] = (str(status["name"]), str(status["text"]))
        self._classes: dict[str, type[Record]] = {}
        for name in self._structures:
            self._check(name)

    def _check(self, name: str) -> None:
        size = self._structures[name]["size"]
        expected = contract.RECORD_SIZES.get(name, size)
        if size != expected:
            raise LayoutError(
                f"{self.source}: {name}: expected size {expected}, as the contract has it; got {size}{_HINT}"
            )
        for field in self._fields(name, self._structures[name]["fields"]):
            if field.offset + field.size > size:
                raise LayoutError(
                    f"{self.source}: {name}.{field.name}: expected a field within {size} bytes; it ends at "
                    f"{field.offset + field.size}{_HINT}"
                )

    def _meaning(self, entry: Mapping[str, Any]) -> Meaning:
        values = entry.get("values", {})
        if isinstance(values, str):
            values = self._values[values]
        return Meaning(entry.get("unit", ""), entry.get("description", ""), values, entry.get("flags", {}))

    def _fields(self, owner: str, entries: list[dict[str, Any]]) -> list[Field]:
        return [self._field(f"{owner}.{entry['name']}", entry["name"], entry) for entry in entries]

    def _field(self, place: str, name: str, entry: dict[str, Any]) -> Field:
        offset, kind = entry.get("offset", 0), entry["type"]
        if kind in ("number", "signed"):
            return NumberField(name, offset, entry["size"], kind == "signed", self._meaning(entry))
        if kind == "text":
            return TextField(name, offset, entry["size"])
        if kind == "mac address":
            return MacAddressField(name, offset, 6)
        if kind == "bytes":
            return BytesField(name, offset, entry["size"])
        if kind != "array":
            raise LayoutError(
                f"{self.source}: {place}: expected one of number, signed, text, mac address, bytes, array as type; "
                f"got {kind!r}"
            )
        element = self._field(place, "", entry["element"]) if "element" in entry else None
        stride = entry.get("stride", element.size if element else 0)
        record = None if element else record_class(place, entry["stride"], self._fields(place, entry["fields"]))
        return ArrayField(
            name,
            offset,
            entry["count"],
            stride,
            element,
            record,
            entry.get("count_field", ""),
            bool(entry.get("ends_with_zero")),
        )

    def record(self, name: str) -> Optional[type[Record]]:
        """The class of the record of that name, the block FUNCTION.ARGUMENT, or an event's data."""
        made = self._classes.get(name)
        if made is None and name in self._structures:
            structure = self._structures[name]
            made = record_class(name, structure["size"], self._fields(name, structure["fields"]))
            self._classes[name] = made
        return made

    def meaning(self, function: str, argument: str) -> Optional[Meaning]:
        return self._meanings.get(f"{function}.{argument}")

    def status(self, service: str, number: int) -> tuple[str, str]:
        """The name of a reply status and what it means; empty texts if the layout does not tell."""
        return self._statuses.get((service, number & 0xFFFFFFFF), ("", ""))

    def selects(self, function: str, argument: str) -> str:
        """The name of the argument whose fields the bits of this one select; empty if there is none."""
        selection = self._selections.get(f"{function}.{argument}")
        return str(selection["selects"]) if selection else ""

    def selection(self, function: str, argument: str, fields: Mapping[str, Any]) -> int:
        """The bits that select these fields, as far as there are bits for them."""
        bits = self._selections[f"{function}.{argument}"]["bits"]
        return sum(1 << bits[name] for name in fields if name in bits)


class _InUse:
    """The layout in use of this process."""

    def __init__(self) -> None:
        self._lock = threading.RLock()
        self._chosen: Union[Layout, None, bool] = False  # False: it is looked for
        self._found: Optional[Layout] = None
        self._found_for: Optional[tuple[Optional[str], Optional[str]]] = None

    def choose(self, layout: Union[Layout, None, bool]) -> None:
        with self._lock:
            self._chosen = layout
            self._found_for = None

    def get(self) -> Optional[Layout]:
        chosen = self._chosen
        if not isinstance(chosen, bool):
            return chosen
        place = (os.environ.get("TARN_LAYOUT"), os.environ.get("KORIIL_DIR"))
        if place == self._found_for:
            return self._found
        with self._lock:
            layout = _find(place[0])
            if layout is not None or place[0] is not None:
                self._found, self._found_for = layout, place
            return layout


def _find(named: Optional[str]) -> Optional[Layout]:
    if named is not None:
        return read_layout(named) if named else None
    try:
        text = control.layout_text()
        if text is not None:
            return Layout(text, "the simulated gateway")
        return read_layout(_USUAL_FILE) if os.path.exists(_USUAL_FILE) else None
    except LayoutError as error:
        warnings.warn(f"{error}; answers come without a layout", stacklevel=2)
        return None


_in_use = _InUse()
_SEARCH = object()


def read_layout(path: Union[str, "os.PathLike[str]"]) -> Layout:
    """Reads a layout file. Raises LayoutError."""
    try:
        with open(path, "rb") as file:
            return Layout(file.read(), os.fspath(path))
    except OSError as error:
        raise LayoutError(f"{os.fspath(path)}: expected a layout file; {error.strerror}") from None


def use_layout(layout: Union[Layout, str, "os.PathLike[str]", None, object] = _SEARCH) -> None:
    """Uses this layout or file from now on, in all threads; None for none at all. Without an argument it is looked for
    again.
    """
    if layout is _SEARCH:
        _in_use.choose(False)
    elif layout is None or isinstance(layout, Layout):
        _in_use.choose(layout)
    elif isinstance(layout, (str, os.PathLike)):
        _in_use.choose(read_layout(layout))
    else:
        raise TypeError(f"use_layout: expected a layout, the name of a file, or None; got {layout!r}")


def layout_in_use() -> Optional[Layout]:
    """The layout in use, None if there is none. Raises LayoutError for a file that was named and cannot be used."""
    return _in_use.get()
