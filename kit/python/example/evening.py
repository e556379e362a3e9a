"""An evening of a gateway in a picture: how busy its channel is, and how well it hears somebody who walks about.

    evening.py [--dark] PICTURE

PICTURE is a file whose name says what kind: evening.svg, evening.png. --dark is for a dark page.

Two hours of the simulated gateway pass in less than a second: it is stepped minute by minute.
"""
import argparse
from dataclasses import dataclass, field
from typing import Optional

import matplotlib  # type: ignore[import]
import matplotlib.figure  # type: ignore[import]
from matplotlib.axes import Axes  # type: ignore[import]

import tarn
from tarn.simulated import SimulatedGateway

_MINUTES = 120
_NEIGHBOURS_COME = {20: "02:00:00:00:0b:01", 40: "02:00:00:00:0b:02", 55: "02:00:00:00:0b:03"}
_CHANNEL_IS_CHOSEN_ANEW = 75
_WALKER = "02:00:00:00:0a:01"
_SETTINGS = {"svg.fonttype": "none", "svg.hashsalt": "evening", "axes.spines.top": False, "axes.spines.right": False}
_METADATA = ("Date", "Creator", "Format", "Type")
_BUSY, _SIGNAL = "#d9902f", "#3a8fb7"  # to be seen on light and on dark pages


@dataclass
class Evening:
    """One value a minute."""

    occupancy: list[int] = field(default_factory=list)  # percent of the time, of the 5 GHz radio's channel
    channel: list[int] = field(default_factory=list)
    signal: list[Optional[int]] = field(default_factory=list)  # dBm; None while the gateway does not hear the walker


def path_loss(minute: int) -> int:
    """To the far end of the garden and back."""
    return 55 + 50 * min(minute, _MINUTES - minute) // (_MINUTES // 2)


def signal_of(gateway: tarn.Gateway) -> Optional[int]:
    try:
        return int(gateway.radio(1).access_point(1).associated(_WALKER).rssi)
    except tarn.StatusError:
        return None


def measure() -> Evening:
    evening = Evening()
    with SimulatedGateway(scenario="home", speed=0) as gateway:
        gateway.add_station(
            address=_WALKER, bands=["5GHz"], ssid="home", passphrase="correct horse", pathLoss=55, patienceSeconds=5
        )
        for minute in range(_MINUTES):
            if minute in _NEIGHBOURS_COME:
                gateway.add_neighbour(
                    bssid=_NEIGHBOURS_COME[minute], band="5GHz", channel=36, bandwidth=80, rssi=-60, load=20
                )
            if minute == _CHANNEL_IS_CHOSEN_ANEW:
                gateway.radio(1).set_cfg(None, {"autoChannel": "on"})
            gateway.move_station(_WALKER, path_loss(minute))
            gateway.step(60)
            evening.occupancy.append(int(gateway.interface("wifi0").cca_stats().channelLoad))
            evening.channel.append(int(gateway.interface("wifi0").channel()))
            evening.signal.append(signal_of(gateway))
    return evening


def draw(evening: Evening, path: str, dark: bool = False) -> None:
    page, text = ("#0d1117", "#e6edf3") if dark else ("#ffffff", "#1f2328")
    tinted = dict.fromkeys(["text.color", "axes.labelcolor", "axes.edgecolor", "xtick.color", "ytick.color"], text)
    with matplotlib.rc_context({**_SETTINGS, **tinted, "figure.facecolor": page, "axes.facecolor": page}):
        figure = matplotlib.figure.Figure(figsize=(9, 5), layout="constrained")
        above, below = figure.subplots(2, 1, sharex=True)
        _draw_occupancy(above, evening)
        below.plot(range(_MINUTES), [float("nan") if each is None else each for each in evening.signal], color=_SIGNAL)
        below.set(ylabel="signal in dBm", xlabel="minutes", xlim=(0, _MINUTES - 1))
        below.set_title("Somebody walks to the end of the garden, and back", loc="left")
        # Without the date that SVG would have, the same evening gives the same file.
        figure.savefig(path, dpi=110, metadata=dict.fromkeys(_METADATA) if path.endswith(".svg") else None)


def _draw_occupancy(axes: Axes, evening: Evening) -> None:
    axes.fill_between(range(_MINUTES), evening.occupancy, step="post", color=_BUSY)
    axes.set(ylabel="percent busy", ylim=(0, 100))
    axes.set_title("Neighbours come, and the radio leaves for a quieter channel", loc="left")
    changes = [at for at in range(_MINUTES) if at == 0 or evening.channel[at] != evening.channel[at - 1]]
    for at in changes:
        axes.annotate(f"channel {evening.channel[at]}", (at + 1, 90))


def main() -> None:
    parser = argparse.ArgumentParser(description="Measures an evening of a simulated gateway, and draws it.")
    parser.add_argument("picture")
    parser.add_argument("--dark", action="store_true", help="for a dark page")
    options = parser.parse_args()
    draw(measure(), options.picture, options.dark)


if __name__ == "__main__":
    main()
