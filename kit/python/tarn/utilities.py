"""What the library computes by itself, without a service: names of IPC statuses, the check of a WPS PIN, tables of rates."""
import ctypes
from collections.abc import Iterable, Iterator

from .errors import RefusedError
from .libraries import libtarn
from .values import TextLike, text_bytes, text_of, whole_number

_RATES = 255
_RATE_TEXT_SIZE = 17
_REJECTED, _NOT_FOUND, _TABLE_FULL = 3, 4, 5


def tarnIpcStatusName(status: int) -> str:
    """Names an IPC status.

    status: an IPC status

    Returns "OK" for 0, "TIMEOUT" for 7 ... "BUSY" for 21, "Unknown" for every other number.
    """
    name: bytes = libtarn.tarnIpcStatusName(whole_number("status", status, None, 32))
    return name.decode()


def tarnValidatePinCode(pin: int) -> bool:
    """Tells whether a WPS PIN carries a valid check digit.

    pin: the PIN as a number; leading zeros count, digits above the eighth are ignored

    >>> tarn.tarnValidatePinCode(12345670), tarn.tarnValidatePinCode(12345671)
    (True, False)
    """
    return bool(libtarn.tarnValidatePinCode(whole_number("pin", pin, None, 32)))


class RateTable(ctypes.Structure):
    """A table of at most 255 rates in Mbit/s as decimal texts, in the order in which they were added. Rates are compared by
    value. `bytes(table)` are those of the library's own record.

    >>> rates = tarn.RateTable(["54", "5.5"])
    >>> rates.add("5.50")  # is there already
    >>> rates.remove("54.0")
    >>> len(rates), list(rates)
    (1, ['5.5'])
    """

    _fields_ = [("count", ctypes.c_uint8), ("rates", ctypes.c_char * _RATE_TEXT_SIZE * _RATES)]

    def __init__(self, rates: Iterable[TextLike] = ()) -> None:
        super().__init__()
        for rate in rates:
            self.add(rate)

    def add(self, rate: TextLike) -> None:
        """Calls tarnAddRateEntries."""
        tarnAddRateEntries(self, rate)

    def remove(self, rate: TextLike) -> None:
        """Calls tarnDelRatesEntries."""
        tarnDelRatesEntries(self, rate)

    def __len__(self) -> int:
        return int(self.count)

    def __iter__(self) -> Iterator[str]:
        return iter([text_of(self.rates[slot].value) for slot in range(len(self))])

    def __repr__(self) -> str:
        return f"RateTable({list(self)})"


def _changed(function: str, table: RateTable, rate: TextLike) -> None:
    if not isinstance(table, RateTable):
        raise TypeError(f"table: expected a RateTable; got {table!r}")
    text = text_bytes("rate", rate, _RATE_TEXT_SIZE - 1)
    result = getattr(libtarn, function)(ctypes.byref(table), ctypes.create_string_buffer(text, _RATE_TEXT_SIZE))
    reasons = {
        _REJECTED: f"rate: expected a number above zero; got {rate!r}",
        _NOT_FOUND: f"the table has no rate {rate!r}; it has {', '.join(table) or 'none'}",
        _TABLE_FULL: f"the table has {_RATES} rates, and no room for {rate!r}",
    }
    if result in reasons:
        raise RefusedError(function, reasons[result])


def tarnAddRateEntries(table: RateTable, rate: TextLike) -> None:
    """Adds a rate behind the last one; one that is there already by its value is not added again.

    table: the table
    rate: a decimal text of at most 16 characters, above zero

    Raises RefusedError for a rate that is not above zero, and where the table is full.
    """
    _changed("tarnAddRateEntries", table, rate)


def tarnDelRatesEntries(table: RateTable, rate: TextLike) -> None:
    """Deletes a rate and closes the gap.

    table: the table
    rate: a decimal text of at most 16 characters

    Raises RefusedError if no rate has that value.
    """
    _changed("tarnDelRatesEntries", table, rate)
