"""Records with a layout and without one, and layout files."""
import copy
import dataclasses
import json
import pickle
from pathlib import Path
from typing import Union

import pytest

import tarn
from tarn.simulated import SimulatedGateway


def test_a_record_is_a_dataclass_of_the_fields_of_the_gateways_layout(tarn_gateway: SimulatedGateway) -> None:
    data = tarn_gateway.radio(1).data()
    assert dataclasses.is_dataclass(data)
    assert (data.radioId, data.name, data.band, data.channel, data.transmitPower) == (1, "radio0", "5GHz", 36, 100)
    assert (data.enabled.name, data.transmitPower.unit, data.temperature.unit) == ("on", "percent", "degrees Celsius")
    assert data.possibleChannels == (36, 40, 44, 48, 52, 56, 60, 64, 100, 104, 108, 112)
    assert "TarnRadioData(radioId=1, name='radio0', band='5GHz'" in repr(data)
    assert dataclasses.asdict(data)["driverVersion"] == "5.3.1-sim"


def test_a_record_is_its_bytes_and_cannot_be_changed(tarn_gateway: SimulatedGateway) -> None:
    data = tarn_gateway.radio(1).data()
    assert isinstance(data, bytes)
    assert len(data) == 9552
    with pytest.raises(dataclasses.FrozenInstanceError):
        setattr(data, "channel", 44)
    other = data.with_fields(channel=44, band="2.4GHz")
    assert (other.channel, other.band, other.name, data.channel) == (44, "2.4GHz", "radio0", 36)
    assert other != data
    assert other.with_fields(channel=36, band="5GHz") == data
    assert copy.deepcopy(data) is data
    assert pickle.loads(pickle.dumps(data)) == bytes(data)
    assert json.dumps(data.channel) == "36"


def test_a_record_without_a_layout_is_bytes(tarn_gateway: SimulatedGateway) -> None:
    described = tarn_gateway.radio(1).data()
    tarn.use_layout(None)
    try:
        data = tarn_gateway.radio(1).data()
        assert data == bytes(described)
        assert repr(data) == f"Record({described[:32].hex()}..., 9552 bytes)" == str(data)
        with pytest.raises(
            AttributeError,
            match="Record has no field 'channel': no layout tells what is in it; expected one by TARN_LAYOUT",
        ):
            data.channel
        with pytest.raises(ValueError, match="cfg: no layout tells what is in it"):
            tarn_gateway.radio(1).set_cfg(0, {"channel": 44})
        config = bytearray(4432)
        config[4] = 44
        tarn_gateway.radio(1).set_cfg(1 << 1, bytes(config))
    finally:
        tarn.use_layout()
    assert tarn_gateway.radio(1).data().channel == 44


def test_a_configuration_is_given_by_fields_and_the_layout_selects_them(tarn_gateway: SimulatedGateway) -> None:
    tarn_gateway.radio(1).set_cfg(None, {"channel": 44, "transmitPower": 50})
    data = tarn_gateway.radio(1).data()
    assert (data.channel, data.transmitPower, data.enabled.name) == (44, 50, "on")
    tarn_gateway.radio(1).access_point(1).set_mac_filter_mode("deny")
    assert repr(tarn_gateway.radio(1).access_point(1).mac_filter_mode()) == "deny (2)"
    with pytest.raises(TypeError, match="param: expected a number; None is for one that selects fields"):
        tarn_gateway.radio(1).set_cfg(None, bytes(4432))


def test_arrays_of_fields_are_read_and_written(tarn_gateway: SimulatedGateway) -> None:
    entries = [{"name": "colour", "value": "green"}, {"name": "size", "value": "7"}]
    tarn_gateway.interface("wifi0").set_params(None, {"entries": entries})
    assert tarn_gateway.state("/module/bootParameters/wifi0.colour") == "green"
    assert tarn_gateway.module.bootcfg_parameter("wifi0.size") == "7"
    listed = tarn_gateway.interface("wifi0").chan_avail_status()
    assert listed.number == len(listed.channels) == 16
    assert (listed.channels[0].channel, listed.channels[0].availability.name) == (36, "available")


@pytest.mark.parametrize(
    ("fields", "text"),
    [
        ({"chanel": 44}, "cfg: TarnRadioCfg has no field 'chanel'; it has enabled, channel, "),
        ({"chanel": 44}, "did you mean channel?"),
        ({"channel": 1 << 32}, "cfg: TarnRadioCfg.channel: expected a number from 0 to 4294967295; got 4294967296"),
        (
            {"enabled": "of"},
            "cfg: TarnRadioCfg.enabled: expected a number, or one of off, on; got 'of'; did you mean off?",
        ),
        (
            {"channel": "44"},
            "cfg: TarnRadioCfg.channel: expected a number, as the layout has no names for its values; got '44'",
        ),
        ({"country": "europe"}, "cfg: TarnRadioCfg.country: expected a text of at most 3 bytes; got 6 bytes"),
    ],
)
def test_fields_that_cannot_be_are_told_by_their_names(
    tarn_gateway: SimulatedGateway, fields: dict[str, object], text: str
) -> None:
    with pytest.raises(ValueError) as caught:
        tarn_gateway.radio(1).set_cfg(None, fields)
    assert text in str(caught.value)


def test_a_field_that_is_not_there_is_told_with_those_that_are(tarn_gateway: SimulatedGateway) -> None:
    with pytest.raises(
        AttributeError, match="TarnRadioData has no field 'chanel'; it has radioId, .*did you mean channel?"
    ):
        tarn_gateway.radio(1).data().chanel


def test_texts_that_are_no_utf_8_come_back_as_they_were_sent(tarn_gateway: SimulatedGateway) -> None:
    ssids: list[Union[str, bytes]] = [b"caf\xc3\xa9", b"caf\xe9", "caf\xe9"]
    for ssid in ssids:
        tarn_gateway.interface("wifi1").set_ssid(ssid)
        read = tarn_gateway.radio(1).ssid(2).data().ssid
        assert read.encode(errors="surrogateescape") == (ssid if isinstance(ssid, bytes) else ssid.encode())
        tarn_gateway.interface("wifi1").set_ssid(read)
        assert tarn_gateway.radio(1).ssid(2).data().ssid == read


_ATTIC = {
    "layout": 1,
    "name": "attic",
    "version": "3",
    "owner": "us",
    "values": {"switch": {"off": 0, "on": 1}},
    "records": {
        "TarnRadioStats": {
            "size": 96,
            "fields": [
                {"name": "class", "offset": 1, "size": 2, "type": "signed", "unit": "dBm"},
                {"name": "size", "offset": 3, "size": 1, "type": "number", "flags": {"isolated": 0, "hidden": 1}},
                {"name": "raw", "offset": 4, "size": 3, "type": "bytes"},
                {"name": "mac", "offset": 7, "type": "mac address"},
                {"name": "used", "offset": 13, "size": 1, "type": "number"},
                {
                    "name": "index",
                    "offset": 14,
                    "type": "array",
                    "count": 4,
                    "count_field": "used",
                    "element": {"type": "number", "size": 8},
                },
            ],
        }
    },
    "arguments": {"TarnGetRadioNum.number": {"unit": "radios", "values": "switch"}},
}


def test_a_layout_file_has_fields_of_every_type(tmp_path: Path) -> None:
    path = tmp_path / "attic.json"
    path.write_text(json.dumps(_ATTIC))
    layout = tarn.read_layout(path)
    kind = layout.record("TarnRadioStats")
    assert kind is not None
    stats = kind(class_=-61, size="isolated+hidden", raw=b"abc", mac="02-00-00-00-01-05", index=[1, 1 << 63])
    assert (stats.class_, stats.size, stats.size.flags, stats.raw, stats.mac) == (
        -61,
        3,
        ("isolated", "hidden"),
        b"abc",
        "02:00:00:00:01:05",
    )
    assert (stats.used, getattr(stats, "index"), len(stats)) == (2, (1, 1 << 63), 96)
    assert repr(stats.class_) == "-61 dBm"
    assert layout.record("TarnRadioData") is None


def test_the_layout_that_is_named_comes_before_that_of_the_gateway(
    tarn_gateway: SimulatedGateway, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    assert repr(tarn_gateway.radio_num()) == "2"
    path = tmp_path / "attic.json"
    path.write_text(json.dumps(_ATTIC))
    monkeypatch.setenv("TARN_LAYOUT", str(path))
    assert repr(tarn_gateway.radio_num()) == "2 radios"
    monkeypatch.setenv("TARN_LAYOUT", "")
    assert tarn.layout_in_use() is None
    tarn.use_layout(path)
    try:
        assert repr(tarn_gateway.radio_num()) == "2 radios"
    finally:
        tarn.use_layout()


@pytest.mark.parametrize(
    ("text", "message"),
    [
        ("{", "expected a layout file; got no sound JSON"),
        ("[]", 'expected a layout file, with "layout": 1'),
        ('{"layout": 2}', 'expected a layout file, with "layout": 1'),
        ('{"layout": 1, "name": "x", "version": "1"}', "expected the keys that a layout file has; KeyError: 'owner'"),
        (
            json.dumps({**_ATTIC, "records": {"TarnRadioStats": {"size": 95, "fields": []}}}),
            "TarnRadioStats: expected size 96, as the contract has it; got 95",
        ),
        (
            json.dumps(
                {
                    **_ATTIC,
                    "records": {
                        "TarnRadioStats": {
                            "size": 96,
                            "fields": [{"name": "a", "offset": 95, "size": 2, "type": "number"}],
                        }
                    },
                }
            ),
            "TarnRadioStats.a: expected a field within 96 bytes; it ends at 97",
        ),
        (
            json.dumps(
                {
                    **_ATTIC,
                    "records": {
                        "TarnRadioStats": {
                            "size": 96,
                            "fields": [{"name": "a", "offset": 0, "size": 2, "type": "word"}],
                        }
                    },
                }
            ),
            "TarnRadioStats.a: expected one of number, signed, text, mac address, bytes, array as type; got 'word'",
        ),
    ],
)
def test_a_layout_file_that_cannot_be_used_says_where_and_what_was_expected(
    tmp_path: Path, text: str, message: str
) -> None:
    path = tmp_path / "wrong.json"
    path.write_text(text)
    with pytest.raises(tarn.LayoutError) as caught:
        tarn.read_layout(path)
    assert str(caught.value).startswith(f"{path}: {message}")
    with pytest.raises(tarn.LayoutError, match="/nowhere.json: expected a layout file; No such file or directory"):
        tarn.use_layout("/nowhere.json")
