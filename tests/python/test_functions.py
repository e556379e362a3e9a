"""Every function of the library, beside tarnctl: two gateways of the same scenario, whose time stands, are asked the
same, one by Python and one by tarnctl. What they answer is the same, and so is the state that they are in
afterwards.
"""
import json
import os
import re
import subprocess
from pathlib import Path
from typing import Any

import samples
from another_gateway import another_gateway, state_in

import tarn
from tarn import contract
from tarn.simulated import SimulatedGateway

# What the simulated gateway cannot do at that time: no scan is over, nobody has entered what is read, a window is open.
_REFUSED = {
    "TarnGetRadioNeighboringResultAt",
    "TarnUpdateQuantennaPasswordFile",
    "TarnGetSsidOPXShgwBlockAddrAt",
    "TarnGetAccessPointMacFilterAt",
    "tarn_qcsapi_wps_registrar_report_button_press",
    "tarn_qcsapi_wifi_get_properties_AP",
}


def _asked_by_tarnctl(directory: str, function: str, inputs: dict[str, Any]) -> dict[str, Any]:
    words = [
        f"{name}={value.hex() if isinstance(value, bytes) else value}"
        for name, value in inputs.items()
        if value is not None
    ]
    answer = subprocess.run(
        ["tarnctl", "--json", "call", "--caller", "bench", function, *words],
        capture_output=True,
        text=True,
        env={**os.environ, "KORIIL_DIR": directory},
        check=False,
    )
    assert answer.stdout, f"tarnctl call {function} {words}: {answer.stderr}"
    document: dict[str, Any] = json.loads(answer.stdout)
    return document


def _value_document(value: Any) -> Any:
    if isinstance(value, tuple):
        return [_fields_document(each) if isinstance(each, tarn.Record) else _value_document(each) for each in value]
    return value.hex() if isinstance(value, bytes) else value


def _fields_document(record: tarn.Record) -> dict[str, Any]:
    """As tarnctl writes it."""
    document = {}
    for field in record._fields_in:
        value = getattr(record, field.name)
        document[field.name] = {"value": _value_document(value)}
        if isinstance(value, tarn.Number):
            document[field.name].update(_meaning_document(value))
    return document


def _meaning_document(number: tarn.Number) -> dict[str, Any]:
    has_flags = number._meaning is not None and bool(number._meaning.flags)
    return {
        **({"name": number.name} if number.name else {}),
        **({"flags": list(number.flags)} if has_flags else {}),
        **({"unit": number.unit} if number.unit else {}),
    }


def _compare_output(place: str, ours: Any, theirs: dict[str, Any]) -> None:
    assert theirs["written"] is True, place
    if isinstance(ours, tarn.Number):
        assert {"value": int(ours), **_meaning_document(ours)} == {
            key: theirs[key] for key in theirs if key not in ("type", "written")
        }, place
    elif isinstance(ours, str):
        assert ours == theirs["text" if theirs["type"] == "text" else "mac"], place
    elif "hex" in theirs:
        assert ours.hex() == theirs["hex"], place
    else:
        assert list(memoryview(ours).cast("I")) == theirs["values"], place
    if isinstance(ours, tarn.Record) and ours._fields_in:
        fields = {
            name: {key: each for key, each in field.items() if key != "unit" or not isinstance(field["value"], list)}
            for name, field in theirs["fields"].items()
        }  # the unit of an array's elements is that of each of ours
        assert _fields_document(ours) == fields, place
    else:
        assert "fields" not in theirs, place


def _compare(function: str, inputs: dict[str, Any], directory: str) -> int:
    """The reply status, once it and every output have been compared."""
    theirs = _asked_by_tarnctl(directory, function, inputs)
    status = 0
    try:
        answer = getattr(tarn, function)("bench", *inputs.values())
    except tarn.StatusError as error:
        status, answer = error.number, error.outputs
        assert (error.service, error.name, error.text) == (
            theirs["service"],
            theirs["status_name"],
            theirs["status_text"],
        )
    assert status == theirs["status"], f"{function}: {theirs['message']}"

    _, command = contract.COMMANDS[function]
    names = [
        entry["name"]
        for entry in command["arguments"]
        if entry["direction"] == "out" and entry["encoding"] != "nothing"
    ]
    answers = [] if not names else [answer] if len(names) == 1 else list(answer)
    assert len(names) < 2 or list(answer._fields) == names
    for name, each in zip(names, answers):
        _compare_output(f"{function}.{name}", each, theirs["outputs"][name])
    return status


def test_all_247_functions_send_and_return_what_they_do_by_tarnctl() -> None:
    with another_gateway() as other, SimulatedGateway(speed=0) as gateway:
        layout = tarn.layout_in_use()
        assert layout is not None
        before = gateway.state()
        statuses = {
            function: _compare(function, samples.inputs_of(function, layout), other)
            for function in contract.COMMANDS
        }
        after = gateway.state()
        assert len(statuses) == 247
        assert {function for function, status in statuses.items() if status} == _REFUSED
        assert after == state_in(other)
        assert after != before


def test_methods_of_objects_call_the_functions_that_they_name() -> None:
    with SimulatedGateway(speed=0) as gateway:
        radio = gateway.radio(1)
        assert radio.data() == tarn.TarnGetRadio("bench", 1)
        assert radio.ssid(2).data().ssid == "guests"
        assert radio.access_point(1).associated_num() == 3
        assert gateway.interface("wifi0").channel() == radio.data().channel == 36
        assert gateway.module.firmware_version() == "5.3.1-sim"
        gateway.mirror.set_telnet_enable(1, 77)
        assert gateway.mirror.telnet_status().ref_cnt == 1
        assert gateway.radio_num() == 2


def test_a_block_is_as_long_as_its_caller_says() -> None:
    with SimulatedGateway(speed=0) as gateway:
        lengths = [len(gateway.interface("wifi0").rates(1, length)) for length in (0, 1, 300, 20000)]
    assert lengths == [0, 1, 300, 20000]


def test_every_function_is_a_method_of_one_object() -> None:
    from tarn import objects

    classes = [
        each for each in vars(objects).values() if isinstance(each, type) and each.__module__ == objects.__name__
    ]
    documented = [
        str(method.__doc__) for each in classes for name, method in vars(each).items() if not name.startswith("_")
    ]
    called = sorted(text.rpartition("Calls")[2].strip(" \n.") for text in documented)
    assert called == sorted(contract.COMMANDS)


def test_every_function_is_documented_with_each_of_its_inputs() -> None:
    for name, (_, command) in contract.COMMANDS.items():
        text = str(getattr(tarn, name).__doc__)
        for entry in (
            samples.inputs_of(name, tarn.Layout('{"layout": 1, "name": "", "version": "", "owner": ""}', "none"))
            if not any(each["encoding"] in ("record", "block") for each in command["arguments"])
            else ()
        ):
            assert f"    {entry}: " in text, name
        assert f"Waits up to {command['wait']} s." in text, name


def _command(function: str) -> tuple[str, int]:
    """What is sent: some functions send the same."""
    document, command = contract.COMMANDS[function]
    return document["service"], command["command"]


_MANUAL = Path(str(tarn.__file__)).parents[2] / "reference" / "man" / "man3"


def test_the_line_of_every_manual_page_calls_the_function_of_the_page() -> None:
    """Fields are those of the simulated gateway's layout, and it may refuse what they are set to."""
    pages = {page.stem: page.read_text() for page in _MANUAL.glob("*.3")}
    assert len(pages) == 253
    expected = sorted(contract.COMMANDS)
    with SimulatedGateway(scenario="home", speed=0) as gateway:
        for name in [*expected, *sorted(pages.keys() - set(expected), reverse=True)]:  # subscribes before it cancels
            line = re.findall(r"^\.Bd -literal -offset indent\n(.*)\n\.Ed$", pages[name], re.MULTILINE)[-1]
            if name not in expected:
                assert name in line or "RateTable" in line
            try:
                eval(line.replace(r"\-", "-"), {"tarn": tarn})  # as somebody would copy it from the page
            except tarn.StatusError:
                assert name in expected
        called = re.findall(r" ledd \(\d+\) (\w+)", gateway.log())
    assert [_command(name) for name in called] == [_command(name) for name in expected]
