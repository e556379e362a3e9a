"""A simulated gateway of one's own: tarn-gateway in a process and a runtime directory that nobody else uses."""
import json
import os
import select
import shlex
import shutil
import subprocess
import tempfile
import threading
import weakref
from collections.abc import Iterable, Mapping
from types import TracebackType
from typing import Any, ClassVar, Optional, Union

from . import contract, control, layouts
from .errors import StatusError, TarnError
from .events import Subscription, event_number
from .gateway import Gateway
from .records import Record, record_bytes

_PROGRAM = "tarn-gateway"
_SCENARIOS = os.path.join(os.path.dirname(__file__), "data", "scenarios")
_SECONDS_TO_START = 30  # and to end; a machine under load is slow
_DIRECTORY = "KORIIL_DIR"

Path = Union[str, "os.PathLike[str]"]


class SimulatorError(TarnError):
    """The simulated gateway could not be started, or did not end as it should. Says what it wrote to standard error."""


class SimulatedGateway(Gateway):
    """Starts a simulated gateway, and stops it at the end of a `with` block or by stop(). Meanwhile all calls of this
    process, and of programs that it starts, go to it. So there is one at a time in a process: a second one is refused, and so
    is one that is started where the thread is connected to another gateway already, whose calls would go there. Programs that
    are started with another KORIIL_DIR call the gateway of that directory.

    scenario: what the gateway consists of: the name of a scenario that comes with it ("home", "crowded", "empty", "dfs"),
        a file, or a scenario itself
    layout: a layout file that it answers by
    speed: gateway seconds for each second of real time; at 0 no time passes until it is stepped
    seed: where random numbers start, in place of the scenario's
    faults: what happens to requests and events from the start on, as in a scenario:
        {"kind": "noAnswer", "function": "TarnGetRadio", "count": 1}
    caller: the IPC identifier that it is called under
    program: what is started, if it is not found as tarn-gateway

    >>> with SimulatedGateway(scenario="dfs", speed=0) as gateway:
    ...     gateway.radio(1).data().channel
    ...     gateway.step(121)  # radar has appeared after 120 s
    ...     gateway.radio(1).data().channel
    100
    121.0
    36
    """

    _only: ClassVar[Optional["SimulatedGateway"]] = None
    _starting: ClassVar[threading.Lock] = threading.Lock()

    def __init__(
        self,
        scenario: Union[Path, Mapping[str, Any], None] = None,
        layout: Optional[Path] = None,
        speed: float = 1,
        seed: Optional[int] = None,
        faults: Iterable[Mapping[str, Any]] = (),
        caller: str = "bench",
        program: Path = _PROGRAM,
    ) -> None:
        super().__init__(caller)
        found = shutil.which(os.fspath(program))
        if found is None:
            raise SimulatorError(
                _PROGRAM, f"{os.fspath(program)} is not there; expected the simulated gateway in a directory of PATH"
            )
        self.directory = tempfile.mkdtemp(prefix="tarn-")  # its path is short: those of sockets are limited
        self._before = os.environ.get(_DIRECTORY)
        self._subscriptions: "weakref.WeakSet[Subscription]" = weakref.WeakSet()
        self._process: Optional[subprocess.Popen[bytes]] = None
        self._log = open(os.path.join(self.directory, "log"), "wb")
        try:
            self._become_the_only_one()
            command = [found, "--log", f"--directory={self.directory}", f"--speed={speed}"]
            if scenario is not None:
                command.append(f"--scenario={self._scenario_file(scenario)}")
            if layout is not None:
                command.append(f"--layout={os.path.abspath(layout)}")
            if seed is not None:
                command.append(f"--seed={seed}")
            self._start(command)
            os.environ[_DIRECTORY] = self.directory
            self._check_that_calls_arrive()
            for fault in faults:
                self.add_fault(**fault)
        except BaseException:
            self._clean_up()
            raise

    def _become_the_only_one(self) -> None:
        with SimulatedGateway._starting:
            other = SimulatedGateway._only
            if other is not None:
                raise SimulatorError(
                    _PROGRAM,
                    f"a simulated gateway is running for this process already, in {other.directory}; expected it to be "
                    "stopped before another one is started, as all calls of a process go to one",
                )
            SimulatedGateway._only = self

    def _check_that_calls_arrive(self) -> None:
        """Connections are kept, so those of this thread may be to another gateway."""
        assert self._process is not None
        for service in (*contract.SERVICES, control.SERVICE):
            process = control.process_of(service)
            if process != self._process.pid:
                raise SimulatorError(
                    _PROGRAM,
                    f"this thread has called {service} before, and stays connected with process {process}; expected the "
                    "simulated gateway to be started before the first call, or in a thread of its own",
                )

    def _scenario_file(self, scenario: Union[Path, Mapping[str, Any]]) -> str:
        if isinstance(scenario, Mapping):
            path = os.path.join(self.directory, "scenario.json")
            with open(path, "w", encoding="utf-8") as file:
                json.dump(scenario, file)
            return path
        shipped = os.path.join(_SCENARIOS, f"{os.fspath(scenario)}.json")
        return shipped if os.path.dirname(scenario) == "" and os.path.exists(shipped) else os.path.abspath(scenario)

    def _start(self, command: list[str]) -> None:
        reading, writing = os.pipe()
        with open(reading, "rb") as ready:
            try:
                self._process = subprocess.Popen(
                    [*command, f"--ready-fd={writing}"],
                    pass_fds=[writing],
                    stdin=subprocess.DEVNULL,
                    stdout=subprocess.DEVNULL,
                    stderr=self._log,
                )
            finally:
                os.close(writing)
            if not select.select([ready], [], [], _SECONDS_TO_START)[0] or not ready.readline():
                raise SimulatorError(_PROGRAM, f"{' '.join(command)} did not become ready:\n{self.log()}")

    def stop(self) -> None:
        """Ends the gateway. Raises SimulatorError if it had ended by itself, or in another way than it should."""
        process = self._process
        if process is None:
            return
        text = ""
        if process.poll() is None:
            process.terminate()
        try:
            status = process.wait(_SECONDS_TO_START)
        except subprocess.TimeoutExpired:
            status = -1
        if status != 0:
            text = f"{_PROGRAM} ended with exit status {status}, expected 0:\n{self.log()}"
        self._clean_up()
        if text:
            raise SimulatorError(_PROGRAM, text)

    def _clean_up(self) -> None:
        for subscription in list(self._subscriptions):
            subscription.close()
        if self._process is not None:
            self._process.kill()
            self._process.wait()
            self._process = None
        self._log.close()
        shutil.rmtree(self.directory, ignore_errors=True)
        if SimulatedGateway._only is self:
            SimulatedGateway._only = None
        if os.environ.get(_DIRECTORY) == self.directory:
            os.environ.pop(_DIRECTORY)
            if self._before is not None:
                os.environ[_DIRECTORY] = self._before

    def __enter__(self) -> "SimulatedGateway":
        return self

    def __exit__(
        self, kind: Optional[type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        if error is None:
            self.stop()
        else:
            self._clean_up()

    def log(self) -> str:
        """What it has written to standard error: each request with its arguments, and why one was refused."""
        with open(self._log.name, "rb") as file:
            return file.read().decode(errors="replace")

    def events(self, *events: Union[int, str]) -> Subscription:
        """Subscribes to these events, by number or name; to all of them if none is named. Ends with the gateway."""
        subscription = super().events(*events)
        self._subscriptions.add(subscription)
        return subscription

    def order(self, *words: str) -> Any:
        """Gives it an order by its words, such as "radar", "52"; the methods below give most of them. Returns the answer.
        Raises StatusError, whose text says what was expected.
        """
        status, text = control.order(shlex.join(words))
        if status:
            raise _refusal("TarnGatewayOrder", status, text)
        return json.loads(text)

    @property
    def time(self) -> float:
        """The gateway's own time in seconds since it was started."""
        return float(self.order("speed")["seconds"])

    @property
    def speed(self) -> float:
        """Gateway seconds for each second of real time; at 0 no time passes."""
        return float(self.order("speed")["speed"])

    @speed.setter
    def speed(self, factor: float) -> None:
        self.order("speed", str(factor))

    def step(self, seconds: float) -> float:
        """Lets so many seconds pass at once, with all that happens in them. Returns the time."""
        return float(self.order("step", str(seconds))["seconds"])

    def step_to_next(self) -> float:
        """Lets time pass until the next thing that is due has happened. Returns the time; StatusError if nothing is."""
        return float(self.order("step", "next")["seconds"])

    def state(self, pointer: str = "") -> Any:
        """The state, which is a scenario, or the part of it under a JSON pointer such as "/radios/0/channel"."""
        return self.order("state", *([pointer] if pointer else []))

    def change(self, pointer: str, value: Any) -> None:
        """Changes the state to what it would be with that value there, if that is a scenario; "/-" adds to a list."""
        self.order("set", pointer, json.dumps(value))

    def add_station(self, **keys: Any) -> None:
        """A client comes, with the keys of a scenario.

        >>> gateway.add_station(address="02:00:00:00:0a:01", ssid="guests", bands=["5GHz"], pathLoss=60)
        >>> gateway.radio(1).access_point(2).associated("02:00:00:00:0a:01").rssi
        -52 dBm
        """
        self.order("station", "add", *_assignments(keys))

    def move_station(self, address: str, pathLoss: int) -> None:
        """A client goes to another place, given as path loss in dB."""
        self.order("station", "move", address, str(pathLoss))

    def remove_station(self, address: str) -> None:
        """A client is not there any more."""
        self.order("station", "remove", address)

    def add_neighbour(self, **keys: Any) -> None:
        """Another network appears, with the keys of a scenario: bssid, band, channel, rssi, load ..."""
        self.order("neighbour", "add", *_assignments(keys))

    def remove_neighbour(self, bssid: str) -> None:
        """And goes."""
        self.order("neighbour", "remove", bssid)

    def radar(self, channel: int) -> None:
        """Radar appears on a channel of 20 MHz."""
        self.order("radar", str(channel))

    def reboot(self, without_settings: bool = False) -> None:
        """As after a loss of power, or a reset of the gateway to its scenario. Its services end, and come back."""
        self.order("reboot", *(["without-settings"] if without_settings else []))

    def faults(self) -> list[dict[str, Any]]:
        """The faults that happen, or will."""
        faults: list[dict[str, Any]] = self.order("faults")
        return faults

    def add_fault(self, kind: str, **keys: Any) -> None:
        """From now on a fault happens to requests or events, with the keys of a scenario.

        >>> gateway.add_fault("ipcStatus", function="TarnGetLogLevel", status=6, count=1)
        >>> gateway.log_level()
        Traceback (most recent call last):
        ...
        tarn.errors.IpcError: TarnGetLogLevel: the IPC call to service TARN failed: RX_FAIL (IPC status 6)
        """
        self.order("faults", "add", kind, *_assignments(keys))

    def clear_faults(self) -> None:
        """No fault happens any more."""
        self.order("faults", "clear")

    def save(self, path: Path) -> None:
        """Writes the state as a scenario."""
        self.order("save", os.path.abspath(path))

    def publish(self, event: Union[int, str], data: Union[bytes, Mapping[str, Any]] = b"") -> int:
        """Publishes an event, whatever the state of the gateway is; its data as bytes or by fields. Returns how many processes
        it was sent to."""
        number = event_number(event)
        layout = layouts.layout_in_use()
        if isinstance(data, Mapping):
            kind = layout.record(contract.EVENTS[number]) if layout else None
            data = record_bytes("data", data, kind or Record, kind._record_size if kind else 0)
        most = control.Publish.data.size
        if len(data) > most:
            raise ValueError(f"data: expected at most {most} bytes; got {len(data)}")
        message = control.Publish(event=number, length=len(data))
        control.put_data(message, data)
        answer = control.exchange(message)
        if answer.status:
            raise _refusal("TarnGatewayPublish", answer.status)
        return int(answer.subscribers)


def _assignments(keys: Mapping[str, Any]) -> list[str]:
    return [f"{key}={value if isinstance(value, str) else json.dumps(value)}" for key, value in keys.items()]


def _refusal(function: str, status: int, text: str = "") -> StatusError:
    layout = layouts.layout_in_use()
    name, meaning = layout.status(contract.EVENT_SERVICE, status) if layout else ("", "")
    return StatusError(function, control.SERVICE, status, name, text or meaning, None)
