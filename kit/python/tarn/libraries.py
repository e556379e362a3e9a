"""The two shared libraries: libtarn, and the IPC library of a workstation that it needs.

Both are loaded by their names, where the dynamic linker looks for them; LD_LIBRARY_PATH leads it elsewhere. libtarn does not
name the IPC library that it needs, as each platform has its own: it is loaded first, and for everybody.
"""
import ctypes

_EXPECTED = (
    "expected the library of this package's version where the dynamic linker looks, or in one of LD_LIBRARY_PATH"
)


def _load(name: str, abi: str, symbol: str, mode: int) -> ctypes.CDLL:
    try:
        library = ctypes.CDLL(name, mode=mode)
    except OSError as error:
        raise ImportError(f"{name} cannot be loaded ({error}); {_EXPECTED}") from None
    try:
        find_version = ctypes.CDLL(None).dlvsym
    except AttributeError:  # a C library without versions of symbols, such as musl
        found = hasattr(library, symbol)
    else:
        find_version.restype = ctypes.c_void_p
        find_version.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]
        found = find_version(library._handle, symbol.encode(), abi.encode()) is not None
    if not found:
        raise ImportError(
            f"{name} has no {symbol} of the ABI {abi}: it is another library, or an older one; {_EXPECTED}"
        )
    return library


koriil = _load("libkoriil.so.1", "KORIIL_1", "KorIilLastStatus", ctypes.RTLD_GLOBAL)
libtarn = _load("libtarn.so.1", "TARN_1", "TarnGetRadio", ctypes.RTLD_LOCAL)

class ServiceCounters(ctypes.Structure):
    """What a service has counted."""

    _fields_ = [
        (name, ctypes.c_uint64)
        for name in ("processId", "openedAt", "connections", "subscriptions", "calls", "refusals", "drops")
    ]


EventHandler = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_void_p, ctypes.c_uint32)
SubscriptionWatcher = ctypes.CFUNCTYPE(
    None, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_uint32
)

_TEXT, _WORD, _POINTER = ctypes.c_char_p, ctypes.c_uint32, ctypes.c_void_p

koriil.KorIilExecute.argtypes = [_TEXT, _TEXT, _WORD, _WORD, _WORD, _POINTER]
koriil.KorIilExecute.restype = _WORD
koriil.KorIilLastStatus.argtypes = []
koriil.KorIilLastStatus.restype = _WORD
koriil.KorIilKeepSubscription.argtypes = [_TEXT, _TEXT, _WORD, EventHandler, SubscriptionWatcher, _POINTER]
koriil.KorIilKeepSubscription.restype = _WORD
koriil.KorIilCancelEvent.argtypes = [_TEXT, _TEXT, _WORD, EventHandler]
koriil.KorIilCancelEvent.restype = _WORD
koriil.KorIilAskCounters.argtypes = [_TEXT, _WORD, ctypes.POINTER(ServiceCounters)]
koriil.KorIilAskCounters.restype = _WORD
koriil.KorIilRuntimeDirectory.argtypes = [_TEXT, _WORD]
koriil.KorIilRuntimeDirectory.restype = _WORD
libtarn.tarnSubscribeEvent.argtypes = [_TEXT, _WORD, _POINTER, EventHandler]
libtarn.tarnSubscribeEvent.restype = _WORD
libtarn.tarnCancelEvent.argtypes = [_TEXT, _WORD, _POINTER, EventHandler]
libtarn.tarnCancelEvent.restype = _WORD
libtarn.tarnIpcStatusName.argtypes = [_WORD]
libtarn.tarnIpcStatusName.restype = _TEXT
libtarn.tarnValidatePinCode.argtypes = [_WORD]
libtarn.tarnValidatePinCode.restype = _WORD
libtarn.tarnAddRateEntries.argtypes = [_POINTER, _TEXT]
libtarn.tarnAddRateEntries.restype = _WORD
libtarn.tarnDelRatesEntries.argtypes = [_POINTER, _TEXT]
libtarn.tarnDelRatesEntries.restype = _WORD


def runtime_directory() -> str:
    """Where services and callers meet. libkoriil reads KORIIL_DIR when a thread calls a service for the first time, and again
    once that service has ended: a change is not seen by a thread whose connections go on.
    """
    path = ctypes.create_string_buffer(koriil.KorIilRuntimeDirectory(None, 0) + 1)
    koriil.KorIilRuntimeDirectory(path, len(path))
    return path.value.decode(errors="surrogateescape")
