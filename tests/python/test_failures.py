"""What callers are told of calls that fail: refused arguments, IPC failures, reply statuses, and what cannot be sent at all."""
import concurrent.futures
import operator
import os
import signal
import subprocess
import sys
from collections.abc import Callable
from pathlib import Path

import pytest

import tarn
from another_gateway import another_gateway
from tarn.simulated import SimulatedGateway, SimulatorError


def test_a_reply_status_has_service_number_name_and_text_and_the_outputs(tarn_gateway: SimulatedGateway) -> None:
    with pytest.raises(tarn.StatusError) as caught:
        tarn_gateway.radio(1).chain_rssi_at(9)
    error = caught.value
    assert (error.function, error.service, error.number, error.name, error.text, error.outputs) == (
        "TarnGetRadioChainRssiAt",
        "TARN",
        16,
        "NO_SUCH_OBJECT",
        "no such object",
        0,
    )
    with pytest.raises(
        tarn.StatusError, match=r"QTN_RPC_PROXY answered tarn_qcsapi_wifi_get_channel with status -201 \(NO_SUCH_OBJECT"
    ):
        tarn_gateway.interface("wifi9").channel()


def test_a_reply_status_has_no_name_without_a_layout(tarn_gateway: SimulatedGateway) -> None:
    tarn.use_layout(None)
    try:
        with pytest.raises(tarn.StatusError, match="with status 16$") as caught:
            tarn_gateway.radio(9).is_ready()
        assert (caught.value.name, caught.value.text) == ("", "")
    finally:
        tarn.use_layout()


@pytest.mark.parametrize(
    ("refused", "reason"),
    [
        (lambda: tarn.Gateway("").log_level(), "invalid id is "),
        (lambda: tarn.Gateway("x" * 32).log_level(), "invalid id is " + "x" * 32),
        (lambda: tarn.Gateway("\x1fbench").log_level(), "invalid id is \x1fbench"),
        (lambda: tarn.TarnDownloadQuantennaWirelessConf("bench", ""), "path is invalid"),
        (lambda: tarn.tarn_qcsapi_init(""), "handle is invalid"),
        (lambda: tarn.tarn_qtn_mirror_set_telnet_enable("bench", 1, 0), "invalid pid"),
        (lambda: tarn.tarn_qcsapi_wifi_get_channel("bench", None), "intf_name is NULL"),  # type: ignore[arg-type]
    ],
)
def test_an_argument_that_the_library_refuses_is_told_as_it_is_traced(
    refused: Callable[[], object], reason: str
) -> None:
    with pytest.raises(tarn.RefusedError) as caught:
        refused()
    assert caught.value.reason == reason


def test_the_reasons_are_those_that_the_library_traces(tmp_path: Path) -> None:
    script = (
        "import tarn\n"
        "for call in (lambda: tarn.Gateway('').log_level(), lambda: tarn.tarn_qtn_mirror_set_telnet_enable('bench', 1, 0),\n"
        "             lambda: tarn.tarn_qcsapi_wifi_get_channel('bench', None), lambda: tarn.tarn_qcsapi_init(''),\n"
        "             lambda: tarn.TarnDownloadQuantennaWirelessConf('bench', '')):\n"
        "    try: call()\n"
        "    except tarn.RefusedError as error: print(error.reason)\n"
    )
    trace = tmp_path / "trace"
    printed = subprocess.run(
        [sys.executable, "-c", script],
        check=True,
        capture_output=True,
        text=True,
        env={**os.environ, "KORIIL_TRACE_FILE": str(trace)},
    ).stdout
    traced = [line.split(" ", 3)[3] for line in trace.read_text().splitlines() if " error " in line]
    assert printed.splitlines() == traced
    assert len(traced) == 5


def test_a_status_that_looks_like_the_librarys_own_failure_is_the_services(tmp_path: Path) -> None:
    """The library returns 1 for a failed call, 2 for a time-out, 3 for a refusal, and for the module -1 for all of them."""
    layout = tmp_path / "attic.json"
    layout.write_text(
        """{
        "layout": 1, "name": "attic", "version": "3", "owner": "us",
        "statuses": [
            { "number": 1, "name": "NO_SUCH_OBJECT", "text": "what?", "services": ["TARN"] },
            { "number": 2, "name": "BUSY", "text": "later", "services": ["TARN"] },
            { "number": 3, "name": "NOT_THERE", "text": "no", "services": ["TARN"] },
            { "number": -1, "name": "NO_SUCH_OBJECT", "text": "which?", "services": ["QTN_RPC_PROXY"] }
        ]}"""
    )
    with SimulatedGateway(layout=layout) as gateway:
        calls: list[tuple[Callable[[], object], int, str]] = [
            (gateway.radio(9).is_ready, 1, "what?"),
            (gateway.radio(1).cancel_neighborhood_scanning, 3, "no"),
            (gateway.interface("wifi9").channel, -1, "which?"),
        ]
        gateway.radio(1).scan_neighborhood()
        calls.insert(1, (gateway.radio(1).scan_neighborhood, 2, "later"))
        for call, number, text in calls:
            if number == 3:
                call()  # cancels the scan
            with pytest.raises(tarn.StatusError) as caught:
                call()
            assert (caught.value.number, caught.value.text) == (number, text)


def test_without_a_gateway_there_is_no_such_service() -> None:
    with pytest.raises(tarn.NoServiceError) as caught:
        tarn.Gateway("bench").log_level()
    error = caught.value
    assert (error.function, error.service, error.number, error.name) == ("TarnGetLogLevel", "TARN", 9, "UNKNOWN_DST_ID")
    assert str(error).startswith(
        f"TarnGetLogLevel: no service TARN is running in {tarn.runtime_directory()}: UNKNOWN_DST_ID"
    )
    with pytest.raises(tarn.NoServiceError):
        tarn.Gateway("bench").module.init()


def test_a_service_that_hangs_is_a_time_out(tarn_gateway: SimulatedGateway) -> None:
    process = tarn_gateway._process
    assert process is not None
    assert tarn_gateway.log_level() == 3
    os.kill(process.pid, signal.SIGSTOP)
    os.waitpid(process.pid, os.WUNTRACED)  # until it has stopped
    try:
        with pytest.raises(tarn.TimedOutError, match="service TARN did not answer within 3 s: TIMEOUT") as caught:
            tarn_gateway.log_level()
    finally:
        os.kill(process.pid, signal.SIGCONT)
    assert isinstance(caught.value, TimeoutError)
    assert tarn_gateway.log_level() == 3


def test_a_directory_that_others_can_write_to_is_an_ipc_failure(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    tmp_path.chmod(0o777)
    monkeypatch.setenv("KORIIL_DIR", str(tmp_path))
    with pytest.raises(tarn.IpcError) as caught:
        tarn.Gateway("bench").mirror.mirror_status()
    assert type(caught.value) is tarn.IpcError
    assert (caught.value.service, caught.value.number, caught.value.name) == ("QTN_MIRROR", 10, "UNKNOWN_COMM")


@pytest.mark.parametrize(
    ("wrong", "kind", "text"),
    [
        (lambda g: g.radio(-1).is_ready(), ValueError, "radioId: expected a number from 0 to 4294967295; got -1"),
        (
            lambda g: g.radio(1 << 32).is_ready(),
            ValueError,
            "radioId: expected a number from 0 to 4294967295; got 4294967296",
        ),
        (lambda g: g.radio(1.5).is_ready(), TypeError, "radioId: expected a number; got 1.5"),
        (
            lambda g: g.radio(None).is_ready(),
            TypeError,
            "radioId: expected a number; None is for one that selects fields",
        ),
        (
            lambda g: g.radio("one").is_ready(),
            ValueError,
            "radioId: expected a number, as there is no layout with names for it; got 'one'",
        ),
        (
            lambda g: g.interface("w" * 65).channel(),
            ValueError,
            "intf_name: expected a text of at most 64 bytes; got 65 bytes",
        ),
        (lambda g: g.interface("wifi\x000").channel(), ValueError, "expected a text without a NUL"),
        (lambda g: g.interface(7).channel(), TypeError, "intf_name: expected a text; got 7"),
        (
            lambda g: g.interface("wifi0").set_priority(256),
            ValueError,
            "priority: expected a number from 0 to 255; got 256",
        ),
        (
            lambda g: g.interface("wifi0").node_infoset(65536, bytes(6)),
            ValueError,
            "index: expected a number from 0 to 65535",
        ),
        (
            lambda g: g.interface("wifi0").disassociate_sta("02:00"),
            ValueError,
            "mac: expected a MAC address such as 02:00:00:00:00:01",
        ),
        (
            lambda g: g.interface("wifi0").rates(1, 1 << 21),
            ValueError,
            "length: expected at most 1048576 bytes; got 2097152",
        ),
        (lambda g: g.radio(1).set_cfg(0, bytes(5)), ValueError, "cfg: expected 4432 bytes; got 5"),
        (
            lambda g: g.radio(1).set_cfg(0, "44"),
            TypeError,
            "cfg: expected 4432 bytes, or fields by their names; got '44'",
        ),
        (lambda g: g.radio(1).set_cfg(0, {"channel": 44}), ValueError, "cfg: no layout tells what is in it"),
        (lambda g: g.quantenna_smart_wifi_qsl(b"abc"), ValueError, "mdid: expected 2 bytes; got 3"),
        (lambda g: tarn.Gateway(7).log_level(), TypeError, "identifier: expected a text; got 7"),  # type: ignore[arg-type]
        (
            lambda g: tarn.TarnGetLogLevel("be\0nch"),
            ValueError,
            "the caller's identifier: expected a text without a NUL",
        ),
        (lambda g: g.events("EVT_RADIO_STATUS"), ValueError, "did you mean EVT_RADIO_STATUS_CHANGED?"),
        (lambda g: g.events(6), ValueError, "expected an event, one of EVT_RADIO_STATUS_CHANGED (1), "),
    ],
)
def test_what_cannot_be_sent_is_told_by_the_name_of_the_argument(
    wrong: Callable[[tarn.Gateway], object], kind: type[Exception], text: str
) -> None:
    with pytest.raises(kind) as caught:  # not an IPC failure, as there is no gateway
        wrong(tarn.Gateway("bench"))
    assert text in str(caught.value)


def import_with_libraries_in(path: Path) -> str:
    """What an import says on standard error where the dynamic linker looks there first."""
    result = subprocess.run(
        [sys.executable, "-c", "import tarn"],
        env={**os.environ, "LD_LIBRARY_PATH": str(path)},
        capture_output=True,
        text=True,
        check=False,
    )
    return result.stderr


def test_a_library_that_is_not_there_is_named_at_import(tmp_path: Path) -> None:
    said = import_with_libraries_in(tmp_path)
    assert "ImportError: libkoriil.so.1 cannot be loaded (" in said
    assert "expected the library of this package's version where the dynamic linker looks" in said


def test_a_library_of_another_abi_is_refused_at_import(tmp_path: Path) -> None:
    (tmp_path / "libkoriil.so.1").symlink_to("/lib/x86_64-linux-gnu/libm.so.6")
    said = import_with_libraries_in(tmp_path)
    assert (
        "ImportError: libkoriil.so.1 has no KorIilLastStatus of the ABI KORIIL_1: it is another library, or an older one"
        in said
    )


def test_a_gateway_that_cannot_start_says_why() -> None:
    with pytest.raises(SimulatorError, match="did not become ready:\n.*/nowhere.json"):
        SimulatedGateway(scenario="/nowhere.json")
    with pytest.raises(
        SimulatorError, match="no-such-program is not there; expected the simulated gateway in a directory of PATH"
    ):
        SimulatedGateway(program="no-such-program")


def test_a_gateway_that_dies_is_told_when_it_is_stopped() -> None:
    gateway = SimulatedGateway()
    assert gateway._process is not None
    gateway._process.kill()
    with pytest.raises(SimulatorError, match="tarn-gateway ended with exit status -9, expected 0"):
        gateway.stop()
    assert not os.path.exists(gateway.directory)


def test_a_second_gateway_in_a_process_is_refused_and_the_first_goes_on(tarn_gateway: SimulatedGateway) -> None:
    tarn_gateway.set_log_level(6)
    expected = f"is running for this process already, in {tarn_gateway.directory}; expected it to be stopped before"
    with pytest.raises(SimulatorError, match=expected):
        SimulatedGateway(speed=0)
    assert (tarn_gateway.log_level(), os.environ["KORIIL_DIR"]) == (6, tarn_gateway.directory)
    tarn_gateway.stop()
    with SimulatedGateway() as next_one:
        assert next_one.log_level() == 3


@pytest.mark.parametrize("call", ["log_level", "mirror.mirror_status", "module.init"])
def test_a_gateway_that_this_thread_would_not_call_is_refused(call: str, monkeypatch: pytest.MonkeyPatch) -> None:
    """Connections are kept: a thread that has called one gateway goes on to call it, whatever KORIIL_DIR is by then."""
    with another_gateway() as directory:
        monkeypatch.setenv("KORIIL_DIR", directory)
        operator.attrgetter(call)(tarn.Gateway("bench"))()
        with pytest.raises(SimulatorError, match="this thread has called [A-Z_]+ before, and stays connected with process"):
            SimulatedGateway()
        assert os.environ["KORIIL_DIR"] == directory

        def in_a_thread_of_its_own() -> int:
            with SimulatedGateway(scenario="empty") as gateway:
                return int(gateway.radio_num())

        with concurrent.futures.ThreadPoolExecutor(1) as pool:
            assert pool.submit(in_a_thread_of_its_own).result() == 1
        assert tarn.Gateway("bench").radio_num() == 2
