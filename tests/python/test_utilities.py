"""What the library computes by itself; and that all of its functions are there."""
import inspect
import re
from pathlib import Path

import pytest

import tarn

_ROOT = Path(__file__).parents[2]


def test_every_function_of_the_library_is_there_with_types_and_a_docstring() -> None:
    exported = re.findall(r"^ *([tT]arn\w+);", (_ROOT / "src" / "libtarn.map").read_text(), re.MULTILINE)
    assert len(exported) == 253
    for name in exported:
        function = getattr(tarn, name)
        assert inspect.isfunction(function), name
        signature = inspect.signature(function)
        assert signature.return_annotation is not inspect.Signature.empty, name
        untyped = [each.name for each in signature.parameters.values() if each.annotation is inspect.Parameter.empty]
        assert not untyped, f"{name}: {untyped}"
        assert len(str(inspect.getdoc(function)).splitlines()) > 1, name


def test_a_pin_is_valid_with_its_check_digit_alone() -> None:
    assert [digit for digit in range(10) if tarn.tarnValidatePinCode(12345670 + digit)] == [0]
    assert tarn.tarnValidatePinCode(0) is True
    with pytest.raises(ValueError, match="pin: expected a number from 0 to 4294967295; got -1"):
        tarn.tarnValidatePinCode(-1)


def test_ipc_statuses_have_names() -> None:
    assert [tarn.tarnIpcStatusName(status) for status in (0, 7, 21, 22)] == ["OK", "TIMEOUT", "BUSY", "Unknown"]


def test_rates_are_kept_in_their_order_and_compared_by_value() -> None:
    table = tarn.RateTable(["54", "5.5", b"11"])
    table.add("5.50")
    assert list(table) == ["54", "5.5", "11"]
    table.remove("54.0")
    assert (len(table), list(table), repr(table)) == (2, ["5.5", "11"], "RateTable(['5.5', '11'])")
    assert bytes(table) == b"\x02" + b"5.5".ljust(17, b"\0") + b"11".ljust(17, b"\0") + bytes(4336 - 35)


def test_a_rate_that_cannot_be_is_refused_with_the_reason() -> None:
    table = tarn.RateTable(["54"])
    with pytest.raises(tarn.RefusedError, match="rate: expected a number above zero; got '0'"):
        table.add("0")
    with pytest.raises(tarn.RefusedError, match="the table has no rate '11'; it has 54"):
        table.remove("11")
    with pytest.raises(ValueError, match="rate: expected a text of at most 16 bytes; got 17 bytes"):
        table.add("1" * 17)
    with pytest.raises(TypeError, match="table: expected a RateTable; got b''"):
        tarn.tarnAddRateEntries(b"", "54")  # type: ignore[arg-type]
    full = tarn.RateTable(str(rate) for rate in range(1, 256))
    with pytest.raises(tarn.RefusedError, match="the table has 255 rates, and no room for '256'"):
        full.add("256")
    assert (len(table), len(full)) == (1, 255)
