"""Events of the device service, one after the other or as they come."""
import collections
import ctypes
import threading
import time
import weakref
from collections.abc import AsyncIterator, Callable, Iterator
from dataclasses import dataclass
from types import TracebackType
from typing import TYPE_CHECKING, Any, Optional, Protocol, Union

from . import contract, layouts
from .calling import caller_bytes, is_caller_id
from .control import ipc_error
from .errors import IpcError, RefusedError
from .libraries import EventHandler, SubscriptionWatcher, koriil, libtarn
from .records import Record
from .values import similar, whole_number

if TYPE_CHECKING:
    import asyncio

_FUNCTION = "KorIilKeepSubscription"
_SECONDS_TO_SUBSCRIBE = 3  # as long as libkoriil waits
_REJECTED = 3
_NUMBERS = {name: number for number, name in contract.EVENTS.items()}


@dataclass(frozen=True)
class Event:
    """One event. `data` has fields where the layout in use tells what is in it."""

    number: int
    name: str
    data: Record


_Arrival = Union[Event, IpcError]
_Waiter = tuple["asyncio.AbstractEventLoop", "asyncio.Future[None]"]


class _Receiver(Protocol):
    def put(self, arrival: _Arrival) -> None:
        """Called on libkoriil's thread."""


class _Inbox:
    """What has arrived and nobody has taken, and who waits for more."""

    def __init__(self) -> None:
        self.changed = threading.Condition(threading.Lock())
        self.arrived: collections.deque[_Arrival] = collections.deque()
        self.is_closed = False
        self.waiting: list[_Waiter] = []

    def put(self, arrival: _Arrival) -> None:
        with self.changed:
            self.arrived.append(arrival)
            self._wake()

    def close(self) -> None:
        with self.changed:
            self.is_closed = True
            self._wake()

    def forget(self, waiter: _Waiter) -> None:
        """For one that is told already, or was cancelled."""
        with self.changed:
            if waiter in self.waiting:
                self.waiting.remove(waiter)

    def _wake(self) -> None:
        self.changed.notify_all()
        waiting, self.waiting = self.waiting, []
        for loop, future in waiting:
            try:
                loop.call_soon_threadsafe(_settle, future)
            except RuntimeError:  # the loop was closed meanwhile
                pass


def _settle(future: "asyncio.Future[None]") -> None:
    if not future.done():
        future.set_result(None)


class _Slot:
    """A handler and a watcher as libkoriil calls them, on a thread of its own. They are used again and never freed: a
    subscription may be collected while its handler runs, and the code that runs must stay.
    """

    _free: "list[_Slot]" = []
    _lock = threading.Lock()

    def __init__(self) -> None:
        self.receiver: Optional[_Receiver] = None
        self.handler = EventHandler(self._handle)
        self.watcher = SubscriptionWatcher(self._watch)

    @classmethod
    def take(cls, receiver: _Receiver) -> "_Slot":
        with cls._lock:
            slot = cls._free.pop() if cls._free else cls()
        slot.receiver = receiver
        return slot

    def release(self) -> None:
        self.receiver = None
        self._free.append(self)

    def _handle(self, service: bytes, number: int, data: Optional[int], length: int) -> None:
        receiver = self.receiver
        if receiver is None:
            return
        raw = ctypes.string_at(data, length) if data else b""
        name = contract.EVENTS.get(number, str(number))
        layout = layouts.layout_in_use()
        kind = layout.record(name) if layout else None
        described = kind is not None and kind._record_size == length
        receiver.put(Event(number, name, kind(raw) if kind is not None and described else Record(raw)))

    def _watch(self, context: Any, caller: bytes, service: bytes, number: int, status: int) -> None:
        receiver = self.receiver
        if receiver is not None and status:
            receiver.put(
                ipc_error(contract.EVENTS.get(number, str(number)), service.decode(), status, _SECONDS_TO_SUBSCRIBE)
            )


def event_number(event: Union[int, str]) -> int:
    if isinstance(event, int) and event in contract.EVENTS:
        return event
    if isinstance(event, str) and event in _NUMBERS:
        return _NUMBERS[event]
    names = [f"{name} ({number})" for number, name in contract.EVENTS.items()]
    raise ValueError(f"expected an event, one of {', '.join(names)}; got {event!r}{similar(str(event), _NUMBERS)}")


def _cancel(caller: bytes, numbers: list[int], slot: _Slot) -> None:
    for number in numbers:
        koriil.KorIilCancelEvent(caller, contract.EVENT_SERVICE.encode(), number, slot.handler)
    slot.release()


class Subscription(Iterator[Event], AsyncIterator[Event]):
    """Events that arrive from its making on, in their order. Iterating waits for the next one, and ends after close().

    It outlives a restart of the service. When the service ends, iterating raises an IpcError, as events are missed from
    then on; whoever iterates again gets those that come once the service is back.
    """

    def __init__(self, caller: str, *events: Union[int, str]) -> None:
        self._inbox = _Inbox()
        caller_id = caller_bytes(caller)
        made: list[int] = []
        slot = _Slot.take(self._inbox)
        self._finalizer = weakref.finalize(self, _cancel, caller_id, made, slot)
        for number in sorted({event_number(event) for event in events or contract.EVENTS}):
            service = contract.EVENT_SERVICE
            status = koriil.KorIilKeepSubscription(
                caller_id, service.encode(), number, slot.handler, slot.watcher, None
            )
            if status:
                self.close()
                raise ipc_error(_FUNCTION, service, status, _SECONDS_TO_SUBSCRIBE)
            made.append(number)

    def close(self) -> None:
        """Ends the subscription. What has arrived before can still be taken."""
        self._finalizer()
        self._inbox.close()

    def next(self, timeout: Optional[float] = None) -> Event:
        """The next event. Raises TimeoutError if there is none within so many seconds, IpcError when the service has ended."""
        inbox = self._inbox
        end = None if timeout is None else time.monotonic() + timeout
        with inbox.changed:
            while not inbox.arrived:
                if inbox.is_closed:
                    raise StopIteration
                left = None if end is None else end - time.monotonic()
                if left is not None and left <= 0:
                    raise TimeoutError(f"no event within {timeout} s")
                inbox.changed.wait(left)
            return _taken(inbox)

    def __next__(self) -> Event:
        return self.next()

    async def __anext__(self) -> Event:
        import asyncio  # not at the head of the file: it takes longer than all else, and few need it

        inbox = self._inbox
        loop = asyncio.get_running_loop()
        while True:
            with inbox.changed:
                if inbox.arrived:
                    return _taken(inbox)
                if inbox.is_closed:
                    raise StopAsyncIteration
                waiter = (loop, loop.create_future())
                inbox.waiting.append(waiter)
            try:
                await waiter[1]
            finally:
                inbox.forget(waiter)

    def __iter__(self) -> "Subscription":
        return self

    def __aiter__(self) -> "Subscription":
        return self

    def __enter__(self) -> "Subscription":
        return self

    def __exit__(
        self, kind: Optional[type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        self.close()


def _taken(inbox: _Inbox) -> Event:
    arrival = inbox.arrived.popleft()
    if isinstance(arrival, IpcError):
        raise arrival
    return arrival


class _Handler:
    """A function of the caller's that is called for each event."""

    def __init__(self, function: Callable[[Event], object]) -> None:
        self._function = function

    def put(self, arrival: _Arrival) -> None:
        if isinstance(arrival, Event):
            self._function(arrival)


_Subscribed = tuple[bytes, int, Callable[[Event], object]]
_subscribed: dict[_Subscribed, _Slot] = {}  # the library is told of the same function by the same pointer


def _ask(function: str, key: _Subscribed, slot: _Slot) -> None:
    caller, evt, _ = key
    result = getattr(libtarn, function)(caller, evt, None, slot.handler)
    if result == _REJECTED:
        raise RefusedError(function, "evt is invalid" if is_caller_id(caller) else "id is invalid")
    if result:
        raise ipc_error(function, contract.EVENT_SERVICE, koriil.KorIilLastStatus(), _SECONDS_TO_SUBSCRIBE)


def tarnSubscribeEvent(callerId: str, evt: int, handler: Callable[[Event], object]) -> None:
    """Subscribes to one event of the device service, as a component in C does. `Gateway.events` is made for Python: it gives
    events one after the other, and outlives a restart of the service.

    evt: 1 to 5, one of EVT_...
    handler: called for each event, on a thread of the IPC library; what it raises is shown on standard error

    Raises RefusedError (callerId, evt), and IpcError if the IPC library fails: CONFLICT_ID if this handler is subscribed
    already.
    """
    key = (caller_bytes(callerId), whole_number("evt", evt, None, 32), handler)
    slot = _subscribed.get(key) or _Slot.take(_Handler(handler))
    try:
        _ask("tarnSubscribeEvent", key, slot)
    except BaseException:
        if key not in _subscribed:
            slot.release()
        raise
    _subscribed[key] = slot


def tarnCancelEvent(callerId: str, evt: int, handler: Callable[[Event], object]) -> None:
    """Cancels a subscription of tarnSubscribeEvent. Once it has returned the handler does not run any more, unless the handler
    itself has made the call.

    Arguments and errors are those of tarnSubscribeEvent; IpcError BAD_EVT if there is no such subscription.
    """
    key = (caller_bytes(callerId), whole_number("evt", evt, None, 32), handler)
    slot = _subscribed.pop(key, None) or _Slot.take(_Handler(handler))
    try:
        _ask("tarnCancelEvent", key, slot)
    finally:
        slot.release()
