"""What a test does to its gateway: state, time, stations, neighbours, radar, faults."""
import json
import time
from pathlib import Path

import pytest

import tarn
from another_gateway import another_gateway, state_in
from tarn.simulated import SimulatedGateway
from waiting import AMPLE, once_it_is_back

_ADDRESS = "02:00:00:00:0a:01"

pytestmark = pytest.mark.tarn_gateway(speed=0)


def test_the_state_is_read_changed_and_saved(tarn_gateway: SimulatedGateway, tmp_path: Path) -> None:
    assert tarn_gateway.state("/radios/0/channel") == 36
    tarn_gateway.change("/radios/0/interfaces/0/ssid", 'it\'s "late" here')
    assert tarn_gateway.radio(1).ssid(1).data().ssid == 'it\'s "late" here'
    tarn_gateway.change("/radios/0/channel", 44)
    assert tarn_gateway.interface("wifi0").channel() == 44
    tarn_gateway.save(tmp_path / "saved.json")
    saved = json.loads((tmp_path / "saved.json").read_text())
    assert saved == tarn_gateway.state()
    with another_gateway(f"--scenario={tmp_path / 'saved.json'}") as again:
        assert state_in(again) == saved


def test_a_state_of_any_size_is_read(tarn_gateway: SimulatedGateway) -> None:
    neighbours = [
        {"bssid": f"02:00:00:01:{at // 256:02x}:{at % 256:02x}", "band": "5GHz", "channel": 36} for at in range(255)
    ]
    tarn_gateway.change("/air/neighbours", neighbours)
    state = tarn_gateway.state()
    assert len(json.dumps(state)) > 32768
    assert len(state["air"]["neighbours"]) == 255


def test_time_passes_as_it_is_told(tarn_gateway: SimulatedGateway) -> None:
    assert (tarn_gateway.time, tarn_gateway.speed) == (0, 0)
    tarn_gateway.radio(1).scan_neighborhood()
    assert tarn_gateway.step(2.5) == 2.5
    assert tarn_gateway.radio(1).neighboring_status().name == "running"
    assert tarn_gateway.step_to_next() == tarn_gateway.time == 4
    assert tarn_gateway.radio(1).neighboring_status().name == "done"
    tarn_gateway.speed = 1000
    end = time.monotonic() + AMPLE
    while tarn_gateway.time < 60 and time.monotonic() < end:
        time.sleep(0.01)
    assert tarn_gateway.time >= 60
    assert tarn_gateway.speed == 1000


def test_a_station_comes_moves_and_goes(tarn_gateway: SimulatedGateway) -> None:
    point = tarn_gateway.radio(1).access_point(2)
    with tarn_gateway.events("EVT_AP_ASSOCIATED_CHANGED") as events:
        tarn_gateway.add_station(address=_ADDRESS, ssid="guests", bands=["5GHz"], pathLoss=60)
        assert events.next(AMPLE).data.macAddress == _ADDRESS
        near = point.associated(_ADDRESS).rssi
        tarn_gateway.move_station(_ADDRESS, 80)
        assert point.associated(_ADDRESS).rssi == near - 20
        tarn_gateway.remove_station(_ADDRESS)
        assert events.next(AMPLE).data.macAddress == _ADDRESS
    with pytest.raises(tarn.StatusError, match="NO_SUCH_OBJECT"):
        point.associated(_ADDRESS)


def test_neighbours_load_the_channel(tarn_gateway: SimulatedGateway) -> None:
    quiet = tarn_gateway.interface("wifi0").cca_stats().channelLoad
    tarn_gateway.add_neighbour(bssid=_ADDRESS, band="5GHz", channel=36, bandwidth=80, rssi=-60, load=40)
    assert tarn_gateway.interface("wifi0").cca_stats().channelLoad > quiet + 20
    tarn_gateway.remove_neighbour(_ADDRESS)
    assert tarn_gateway.interface("wifi0").cca_stats().channelLoad == quiet


@pytest.mark.tarn_gateway(scenario="dfs")
def test_radar_makes_the_radio_leave(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events("EVT_RADIO_OPR_CHANNEL_CHANGED") as events:
        tarn_gateway.radar(104)
        assert events.next(AMPLE).data.channel == tarn_gateway.radio(1).data().channel == 36


def test_a_reboot_ends_the_uptime_and_if_wanted_the_settings(tarn_gateway: SimulatedGateway) -> None:
    tarn_gateway.set_log_level(6)
    tarn_gateway.step(100)
    tarn_gateway.reboot()
    assert once_it_is_back(tarn_gateway.module.system_time_since_start) == 0
    assert once_it_is_back(tarn_gateway.log_level) == 6
    tarn_gateway.reboot(without_settings=True)
    assert once_it_is_back(tarn_gateway.log_level) == 3


@pytest.mark.parametrize(
    ("fault", "kind", "number"),
    [
        ({"kind": "ipcStatus", "status": 21}, tarn.IpcError, 21),
        ({"kind": "length"}, tarn.IpcError, 16),
        ({"kind": "die"}, tarn.IpcError, 6),
        ({"kind": "status", "status": 77}, tarn.StatusError, 77),
        ({"kind": "status", "status": 1}, tarn.StatusError, 1),
        ({"kind": "status", "status": 3}, tarn.StatusError, 3),
        ({"kind": "noAnswer"}, tarn.TimedOutError, 7),
    ],
)
def test_each_fault_is_an_exception_of_its_kind_once(
    tarn_gateway: SimulatedGateway, fault: dict[str, object], kind: type[tarn.TarnError], number: int
) -> None:
    tarn_gateway.add_fault(**fault, function="TarnGetLogLevel", count=1)  # type: ignore[arg-type]
    assert len(tarn_gateway.faults()) == 1
    with pytest.raises(kind) as caught:
        tarn_gateway.log_level()
    assert (type(caught.value), getattr(caught.value, "number")) == (kind, number)
    assert tarn_gateway.faults() == []
    assert once_it_is_back(tarn_gateway.log_level) == 3


def test_faults_are_taken_away_and_events_go_wrong(tarn_gateway: SimulatedGateway) -> None:
    tarn_gateway.add_fault("eventLost", event="EVT_RADIO_OPR_CHANNEL_CHANGED", count=1)
    tarn_gateway.add_fault("status", status=5)
    tarn_gateway.clear_faults()
    tarn_gateway.add_fault("eventDoubled", event="EVT_RADIO_OPR_CHANNEL_CHANGED", count=1)
    with tarn_gateway.events(tarn.EVT_RADIO_OPR_CHANNEL_CHANGED) as events:
        tarn_gateway.interface("wifi0").set_channel(44)
        assert events.next(AMPLE) == events.next(AMPLE)


def test_a_restart_of_the_service_is_told_to_subscribers_and_events_go_on(tarn_gateway: SimulatedGateway) -> None:
    with tarn_gateway.events(1) as events:
        tarn_gateway.add_fault("restart", function="TarnGetLogLevel", count=1)
        assert tarn_gateway.log_level() == 3
        with pytest.raises(tarn.IpcError, match="RX_FAIL"):
            events.next(AMPLE)
        end = time.monotonic() + AMPLE
        while not tarn_gateway.publish(1, b"again") and time.monotonic() < end:
            time.sleep(0.01)
        assert events.next(AMPLE).data == b"again"


def test_an_order_that_cannot_be_says_what_was_expected(tarn_gateway: SimulatedGateway) -> None:
    with pytest.raises(tarn.StatusError) as caught:
        tarn_gateway.radar(36)
    assert (caught.value.service, caught.value.number, caught.value.name) == ("TARN_GATEWAY", 17, "INVALID_VALUE")
    assert caught.value.text == "expected a channel of 20 MHz on which there can be radar, from 52 to 144; got 36"
    with pytest.raises(tarn.StatusError, match="the state has no /radios/7"):
        tarn_gateway.state("/radios/7")
    with pytest.raises(tarn.StatusError, match="expected a number of seconds, or next"):
        tarn_gateway.step(-1)
    with pytest.raises(ValueError, match="an order: expected at most 28671 bytes; got "):
        tarn_gateway.order("x" * 30000)
    with pytest.raises(ValueError, match="data: expected at most 1024 bytes; got 1025"):
        tarn_gateway.publish(1, bytes(1025))
