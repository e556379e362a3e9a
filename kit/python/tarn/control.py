"""Messages to the simulated gateway itself, which no real gateway knows: those of tarn_gateway_control.h."""
import ctypes
from typing import Optional, TypeVar, Union

from .errors import IpcError, NoServiceError, TimedOutError
from .libraries import ServiceCounters, koriil, runtime_directory
from .utilities import tarnIpcStatusName

SERVICE = "TARN_GATEWAY"
_WAIT = 3  # seconds
_UNKNOWN_DST_ID, _TIMEOUT = 9, 7

_word = ctypes.c_uint32


class Publish(ctypes.Structure):
    command = 0
    _fields_ = [
        ("event", _word),
        ("length", _word),
        ("data", ctypes.c_uint8 * 1024),
        ("subscribers", _word),
        ("status", _word),
    ]


class Order(ctypes.Structure):
    command = 1
    _fields_ = [
        ("order", ctypes.c_char * 28672),
        ("number", _word),
        ("total", _word),
        ("length", _word),
        ("text", ctypes.c_char * 32768),
        ("status", _word),
    ]


class ReadAnswer(ctypes.Structure):
    command = 2
    _fields_ = [
        ("number", _word),
        ("offset", _word),
        ("length", _word),
        ("text", ctypes.c_char * 32768),
        ("status", _word),
    ]


class ReadLayout(ctypes.Structure):
    command = 3
    _fields_ = [
        ("offset", _word),
        ("total", _word),
        ("length", _word),
        ("text", ctypes.c_char * 32768),
        ("status", _word),
    ]


Message = TypeVar("Message", Publish, Order, ReadAnswer, ReadLayout)


def ipc_error(function: str, service: str, number: int, wait: int) -> IpcError:
    """The exception for an IPC status."""
    name = tarnIpcStatusName(number)
    if number == _UNKNOWN_DST_ID:
        return NoServiceError(
            function, service, number, name, f"no service {service} is running in {runtime_directory()}"
        )
    if number == _TIMEOUT:
        return TimedOutError(function, service, number, name, f"service {service} did not answer within {wait} s")
    return IpcError(function, service, number, name, f"the IPC call to service {service} failed")


def process_of(service: str) -> int:
    """The process of the service that this thread calls. Raises IpcError."""
    counters = ServiceCounters()
    status = koriil.KorIilAskCounters(service.encode(), _WAIT, ctypes.byref(counters))
    if status:
        raise ipc_error("KorIilAskCounters", service, status, _WAIT)
    return int(counters.processId)


def exchange(message: Message) -> Message:
    """The message with its answer. Raises IpcError; the status is left to the caller."""
    status = koriil.KorIilExecute(
        b"tarn.py", SERVICE.encode(), _WAIT, message.command, ctypes.sizeof(message), ctypes.byref(message)
    )
    if status:
        raise ipc_error(type(message).__name__, SERVICE, status, _WAIT)
    return message


def put_data(message: Publish, data: bytes) -> None:
    message.data[: len(data)] = data


def _piece(answer: Union[Order, ReadAnswer, ReadLayout]) -> bytes:
    """The text of an answer, which may have NULs and has none behind it."""
    return bytes(answer)[type(answer).text.offset :][: answer.length]


def order(line: str) -> tuple[int, str]:
    """Gives the gateway an order. Returns the status and the answer: JSON, or what was expected if the status is not 0."""
    encoded = line.encode(errors="surrogateescape")
    if len(encoded) >= Order.order.size:
        raise ValueError(f"an order: expected at most {Order.order.size - 1} bytes; got {len(encoded)}")
    answer = exchange(Order(order=encoded))
    text = _piece(answer)
    while len(text) < answer.total:
        more = exchange(ReadAnswer(number=answer.number, offset=len(text)))
        if more.status or not more.length:
            raise ValueError(f"the answer to {line!r} is not kept any more; got {len(text)} bytes of {answer.total}")
        text += _piece(more)
    return answer.status, text.decode(errors="surrogateescape")


def layout_text() -> Optional[bytes]:
    """The layout file that the simulated gateway answers by; None where none is running."""
    text = b""
    while True:
        try:
            answer = exchange(ReadLayout(offset=len(text)))
        except IpcError:
            return None
        if answer.status or not answer.length:
            return None
        text += _piece(answer)
        if len(text) >= answer.total:
            return text
