"""Records: bytes that a layout gives names to."""
import dataclasses
import keyword
import sys
from collections.abc import Iterable, Mapping
from typing import Any, ClassVar, Optional

from .values import Meaning, Number, mac_bytes, refuse, similar, text_bytes, text_of, whole_number

_MOST_SHOWN = 32  # bytes of a record without fields
_NO_LAYOUT = (
    "no layout tells what is in it; expected one by TARN_LAYOUT, tarn.use_layout(), a running simulated gateway, or "
    "/etc/tarn/layout.json"
)


class Record(bytes):
    """The bytes of a record, a block or an event's data. Where a layout tells what is in them, a record is a dataclass of its
    fields as well, which cannot be changed. Without one it is bytes and nothing else."""

    _fields_in: ClassVar[tuple["Field", ...]] = ()
    _record_size: ClassVar[int] = 0

    def __new__(cls, raw: Optional[bytes] = None, /, **fields: Any) -> "Record":
        raw = bytes(cls._record_size) if raw is None else raw
        return bytes.__new__(cls, cls._encoded(raw, fields) if fields else raw)

    @classmethod
    def _encoded(cls, raw: bytes, fields: Mapping[str, Any]) -> bytes:
        known = {field.name: field for field in cls._fields_in}
        if not known:
            raise ValueError(_NO_LAYOUT)
        encoded = bytearray(raw)
        for name, value in fields.items():
            if name not in known:
                raise ValueError(
                    f"{cls.__name__} has no field {name!r}; it has {', '.join(known)}{similar(name, known)}"
                )
            field = known[name]
            encoded[field.offset : field.offset + field.size] = field.store(f"{cls.__name__}.{name}", value)
            counter = known.get(getattr(field, "count_field", ""))
            if counter is not None and counter.name not in fields:
                encoded[counter.offset : counter.offset + counter.size] = counter.store(counter.name, len(value))
        return bytes(encoded)

    def with_fields(self, **fields: Any) -> "Record":
        """The same bytes but for these fields."""
        return type(self)(bytes(self), **fields)

    def __repr__(self) -> str:
        shown = self[:_MOST_SHOWN].hex() + ("..." if len(self) > _MOST_SHOWN else "")
        return f"Record({shown}, {len(self)} bytes)"

    def __str__(self) -> str:
        return repr(self)

    def __getattr__(self, name: str) -> Any:
        names = [field.name for field in self._fields_in]
        text = f"; it has {', '.join(names)}{similar(name, names)}" if names else f": {_NO_LAYOUT}"
        raise AttributeError(f"{type(self).__name__} has no field {name!r}{text}")

    def __reduce__(self) -> tuple[type[bytes], tuple[bytes]]:
        return (Record, (bytes(self),))

    def __deepcopy__(self, _: object) -> "Record":
        return self


class Field:
    """A field of a record: where it is, and what of its bytes is a value."""

    kind: type = bytes  # of its values

    def __init__(self, name: str, offset: int, size: int) -> None:
        self.name = f"{name}_" if keyword.iskeyword(name) else name
        self.offset = offset
        self.size = size

    def load(self, raw: bytes) -> Any:
        """The value of a field's own bytes."""
        raise NotImplementedError

    def store(self, subject: str, value: Any) -> bytes:
        """The bytes of a value. Raises ValueError or TypeError."""
        raise NotImplementedError


class NumberField(Field):
    kind = Number

    def __init__(self, name: str, offset: int, size: int, signed: bool, meaning: Meaning) -> None:
        super().__init__(name, offset, size)
        self.signed = signed
        self.meaning = meaning

    def load(self, raw: bytes) -> Number:
        return Number(int.from_bytes(raw, sys.byteorder, signed=self.signed), self.meaning)

    def store(self, subject: str, value: Any) -> bytes:
        number = whole_number(subject, value, self.meaning, 8 * self.size, self.signed)
        return number.to_bytes(self.size, sys.byteorder, signed=self.signed)


class TextField(Field):
    kind = str

    def load(self, raw: bytes) -> str:
        return text_of(raw)

    def store(self, subject: str, value: Any) -> bytes:
        return text_bytes(subject, value, self.size - 1).ljust(self.size, b"\0")


class MacAddressField(Field):
    kind = str

    def load(self, raw: bytes) -> str:
        return raw.hex(":")

    def store(self, subject: str, value: Any) -> bytes:
        return mac_bytes(subject, value)


class BytesField(Field):
    def load(self, raw: bytes) -> bytes:
        return raw

    def store(self, subject: str, value: Any) -> bytes:
        if not isinstance(value, bytes) or len(value) != self.size:
            refuse(subject, f"{self.size} bytes", value)
        return bytes(value)


class ArrayField(Field):
    """A list of fields, or of records that have fields."""

    kind = tuple

    def __init__(
        self,
        name: str,
        offset: int,
        count: int,
        stride: int,
        element: Optional[Field],
        record: Optional[type[Record]],
        count_field: str,
        ends_with_zero: bool,
    ) -> None:
        super().__init__(name, offset, count * stride)
        self.count = count
        self.stride = stride
        self.element = element
        self.record = record
        self.count_field = count_field
        self.ends_with_zero = ends_with_zero

    def elements(self, raw: bytes, count: int) -> tuple[Any, ...]:
        """Those that are in use, of `count` at most."""
        values = []
        for at in range(min(count, self.count)):
            piece = raw[at * self.stride : (at + 1) * self.stride]
            if self.ends_with_zero and not any(piece):
                break
            values.append(self.record(piece) if self.record else self._value(piece))
        return tuple(values)

    def load(self, raw: bytes) -> tuple[Any, ...]:
        return self.elements(raw, self.count)

    def store(self, subject: str, value: Any) -> bytes:
        if isinstance(value, (str, bytes, Mapping)) or not isinstance(value, Iterable):
            raise TypeError(f"{subject}: expected a list; got {value!r}")
        values = list(value)
        if len(values) > self.count:
            raise ValueError(f"{subject}: expected at most {self.count} elements; got {len(values)}")
        pieces = (self._piece(f"{subject}[{at}]", each) for at, each in enumerate(values))
        return b"".join(piece.ljust(self.stride, b"\0") for piece in pieces).ljust(self.size, b"\0")

    def _value(self, piece: bytes) -> Any:
        assert self.element is not None
        return self.element.load(piece[: self.element.size])

    def _piece(self, subject: str, value: Any) -> bytes:
        if self.record is not None:
            return record_bytes(subject, value, self.record, self.stride)
        assert self.element is not None
        return self.element.store(subject, value)


class _Attribute:
    """Loads a field when it is asked for, once."""

    def __init__(self, field: Field) -> None:
        self._field = field

    def __get__(self, record: Optional[Record], owner: Optional[type[Record]] = None) -> Any:
        if record is None:
            return self
        field = self._field
        raw = bytes.__getitem__(record, slice(field.offset, field.offset + field.size))
        if isinstance(field, ArrayField) and field.count_field:
            value: Any = field.elements(raw, getattr(record, field.count_field))
        else:
            value = field.load(raw)
        record.__dict__[field.name] = value
        return value


def record_class(name: str, size: int, fields: Iterable[Field]) -> type[Record]:
    """The dataclass of records of these fields."""
    in_order = tuple(fields)
    made = dataclasses.make_dataclass(
        name.replace(".", "_"),
        [(each.name, each.kind) for each in in_order],
        bases=(Record,),
        namespace={"_fields_in": in_order, "_record_size": size},
        init=False,
        eq=False,
        frozen=True,
    )
    for each in in_order:
        setattr(made, each.name, _Attribute(each))
    return made


def record_bytes(subject: str, value: object, kind: type[Record], size: int) -> bytes:
    """The bytes of a record that is given as bytes, or as fields."""
    if isinstance(value, Mapping):
        try:
            value = kind(bytes(size), **value)
        except ValueError as error:
            raise ValueError(f"{subject}: {error}") from None
    if not isinstance(value, (bytes, bytearray, memoryview)):
        raise TypeError(f"{subject}: expected {size} bytes, or fields by their names; got {value!r}")
    if len(value) != size:
        raise ValueError(f"{subject}: expected {size} bytes; got {len(value)}")
    return bytes(value)
