"""A test bench: the test of the README."""
import subprocess

import pytest
import tarn
from tarn.simulated import SimulatedGateway


def test_the_channel_is_set_and_told(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events("EVT_RADIO_OPR_CHANNEL_CHANGED") as events:
        subprocess.run(["tarnctl", "channel", "radio0", "44"], check=True)  # or the component under test
        event = events.next(timeout=5)
    assert (event.data.radioId, event.data.channel) == (1, 44)
    assert tarn_gateway.interface("wifi0").channel() == 44


@pytest.mark.tarn_gateway(scenario="dfs", speed=0)  # no time passes until it is stepped
def test_the_radio_leaves_when_radar_appears(tarn_gateway: SimulatedGateway) -> None:
    assert tarn_gateway.radio(1).data().channel == 100
    tarn_gateway.radar(104)
    assert tarn_gateway.radio(1).data().channel == 36


@pytest.mark.tarn_gateway(faults=[{"kind": "die", "function": "TarnGetRadio", "count": 1}])
def test_a_service_that_dies_is_told_at_once(tarn_gateway: SimulatedGateway) -> None:
    with pytest.raises(tarn.IpcError, match="RX_FAIL"):
        tarn_gateway.radio(1).data()
