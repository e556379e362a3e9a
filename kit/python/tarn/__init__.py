"""The client library of a Wi-Fi gateway's device services.

`Gateway` has radios, interfaces and events as objects with methods. The functions of the library are here by their names on the
wire as well: `tarn.TarnGetRadio("bench", 1)`. Importing this loads libtarn.so.1 and libkoriil.so.1.
"""
from .errors import IpcError as IpcError
from .errors import NoServiceError as NoServiceError
from .errors import RefusedError as RefusedError
from .errors import StatusError as StatusError
from .errors import TarnError as TarnError
from .errors import TimedOutError as TimedOutError
from .events import Event as Event
from .events import Subscription as Subscription
from .events import tarnCancelEvent as tarnCancelEvent
from .events import tarnSubscribeEvent as tarnSubscribeEvent
from .functions import *  # noqa: F403
from .gateway import Gateway as Gateway
from .gateway import Radio as Radio
from .layouts import Layout as Layout
from .layouts import LayoutError as LayoutError
from .layouts import layout_in_use as layout_in_use
from .layouts import read_layout as read_layout
from .layouts import use_layout as use_layout
from .libraries import runtime_directory as runtime_directory
from .objects import AccessPoint as AccessPoint
from .objects import Interface as Interface
from .objects import Mirror as Mirror
from .objects import Module as Module
from .objects import Ssid as Ssid
from .records import Record as Record
from .utilities import RateTable as RateTable
from .utilities import tarnAddRateEntries as tarnAddRateEntries
from .utilities import tarnDelRatesEntries as tarnDelRatesEntries
from .utilities import tarnIpcStatusName as tarnIpcStatusName
from .utilities import tarnValidatePinCode as tarnValidatePinCode
from .values import Number as Number
from .version import VERSION

__version__ = VERSION
