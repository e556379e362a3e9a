"""A gateway, as a component sees it: its services, radios and interfaces."""
from typing import Union

from . import objects
from .events import Subscription
from .values import NumberLike, TextLike


class Radio(objects.Radio):
    """A radio."""

    def ssid(self, ssidId: NumberLike) -> objects.Ssid:
        """An SSID interface of it, counted from 1."""
        return objects.Ssid(self.caller, self.radioId, ssidId)

    def access_point(self, apId: NumberLike) -> objects.AccessPoint:
        """An access point of it, counted from 1."""
        return objects.AccessPoint(self.caller, self.radioId, apId)


class Gateway(objects.DeviceService):
    """The gateway that runs in the runtime directory, called under an IPC identifier of 1 to 31 characters.

    Nothing is connected before the first call, and each thread has connections of its own: a gateway can be shared by threads.
    They are kept: of KORIIL_DIR a thread sees what it was when it called a service for the first time.

    >>> gateway = tarn.Gateway("bench")
    >>> gateway.radio(1).chain_rssi_at(0)
    -48 dBm
    >>> gateway.radio(1).data().channel
    36
    >>> gateway.interface("wifi0").set_channel(44)
    >>> gateway.radio(1).chain_rssi_at(9)
    Traceback (most recent call last):
    ...
    tarn.errors.StatusError: service TARN answered TarnGetRadioChainRssiAt with status 16 (NO_SUCH_OBJECT: no such object)
    """

    def radio(self, radioId: NumberLike) -> Radio:
        """A radio, counted from 1."""
        return Radio(self.caller, radioId)

    def interface(self, ifname: TextLike) -> objects.Interface:
        """An interface of the Wi-Fi module, such as "wifi0"."""
        return objects.Interface(self.caller, ifname)

    @property
    def module(self) -> objects.Module:
        """The Wi-Fi module, where no interface is named."""
        return objects.Module(self.caller)

    @property
    def mirror(self) -> objects.Mirror:
        """The module's port mirroring and telnet access."""
        return objects.Mirror(self.caller)

    def events(self, *events: Union[int, str]) -> Subscription:
        """Subscribes to these events, by number or name; to all of them if none is named.

        >>> with gateway.events(tarn.EVT_RADIO_OPR_CHANNEL_CHANGED) as events:
        ...     gateway.interface("wifi0").set_channel(40)
        ...     event = events.next(timeout=5)
        >>> event.name, event.data.channel
        ('EVT_RADIO_OPR_CHANNEL_CHANGED', 40)
        """
        return Subscription(self.caller, *events)
