"""The pytest plugin, in test sessions of its own."""
import os
from pathlib import Path

import pytest

import tarn
from tarn.simulated import SimulatedGateway

_NO_CACHE = ("-p", "no:cacheprovider")


def test_each_of_four_tests_at_a_time_has_a_gateway_of_its_own(pytester: pytest.Pytester) -> None:
    pytester.makepyfile(
        """
        import pytest

        @pytest.mark.parametrize("level", range(8))
        def test_the_level_is_nobody_elses(tarn_gateway, level):
            assert tarn_gateway.log_level() == 3
            tarn_gateway.set_log_level(level)
            assert tarn_gateway.log_level() == level

        def test_fails(tarn_gateway):
            assert tarn_gateway.radio_num() == 3
    """
    )
    result = pytester.runpytest_subprocess("-n", "4", *_NO_CACHE)
    result.assert_outcomes(passed=8, failed=1)
    result.stdout.fnmatch_lines(["*- tarn_gateway -*", "*.* bench (*) TarnGetRadioNum: 0 (DONE)*"])


def test_markers_say_what_kind_of_gateway(pytester: pytest.Pytester) -> None:
    pytester.makepyfile(
        """
        import pytest, tarn

        pytestmark = pytest.mark.tarn_gateway(scenario="dfs", speed=0)

        def test_radar_makes_the_radio_leave(tarn_gateway):
            assert (tarn_gateway.time, tarn_gateway.speed) == (0, 0)
            assert tarn_gateway.radio(1).data().channel == 100
            with tarn_gateway.events("EVT_RADIO_OPR_CHANNEL_CHANGED") as events:
                assert tarn_gateway.step_to_next() == 120
                assert events.next(5).data.channel == 36

        @pytest.mark.tarn_gateway(faults=[{"kind": "ipcStatus", "status": 21, "function": "TarnGetRadioNum", "count": 1}])
        def test_faults_happen_from_the_start(tarn_gateway):
            with pytest.raises(tarn.IpcError, match="BUSY"):
                tarn_gateway.radio_num()
            assert tarn_gateway.radio_num() == 1

        @pytest.mark.tarn_gateway(speed=1000, caller="other")
        def test_the_closest_marker_counts(tarn_gateway):
            assert tarn_gateway.speed == 1000
            assert tarn_gateway.caller == "other"
            assert tarn_gateway.radio_num() == 1

        @pytest.mark.tarn_gateway(scenario="empty", seed=7)
        def test_random_numbers_have_a_seed(tarn_gateway):
            assert tarn_gateway.state("/random/state") == 7

        @pytest.mark.tarn_gateway(scenario={"scenario": 1, "service": {"logLevel": 6}, "radios": [
            {"name": "radio0", "band": "5GHz", "onModule": True,
             "interfaces": [{"name": "wifi0", "bssid": "02:00:00:00:00:10"}]}]})
        def test_a_scenario_may_be_given_as_it_is(tarn_gateway):
            assert tarn_gateway.log_level() == 6
    """
    )
    pytester.runpytest_inprocess(*_NO_CACHE).assert_outcomes(passed=5)


def test_a_layout_may_be_another_one(pytester: pytest.Pytester) -> None:
    pytester.makefile(
        ".json",
        attic="""{
        "layout": 1, "name": "attic", "version": "3", "owner": "us",
        "records": {"TarnRadioData": {"size": 9552, "fields": [
            {"name": "channel", "offset": 9000, "size": 2, "type": "number"}]}},
        "statuses": [{"number": 40, "name": "NO_SUCH_OBJECT", "text": "what is that?"}]
    }""",
    )
    pytester.makepyfile(
        """
        import pytest, tarn

        @pytest.mark.tarn_gateway(layout="attic.json")
        def test_the_gateway_is_of_another_make(tarn_gateway):
            data = tarn_gateway.radio(1).data()
            assert repr(data) == "TarnRadioData(channel=36)"
            assert data[9000] == 36
            with pytest.raises(tarn.StatusError, match="status 40 .NO_SUCH_OBJECT: what is that"):
                tarn_gateway.radio(9).data()
    """
    )
    pytester.runpytest_inprocess(*_NO_CACHE).assert_outcomes(passed=1)


def test_the_report_of_a_failed_test_has_the_requests_that_its_gateway_was_sent(pytester: pytest.Pytester) -> None:
    pytester.makepyfile(
        """
        import pytest, tarn

        def test_fails(tarn_gateway):
            tarn_gateway.interface("wifi0").set_ssid("guest room")
            with pytest.raises(tarn.StatusError):
                tarn_gateway.radio(1).chain_rssi_at(9)
            assert False

        def test_fails_without_a_request(tarn_gateway):
            assert False

        def test_fails_after_many(tarn_gateway):
            for _ in range(300):
                tarn_gateway.module.init()
            assert False

        def test_passes(tarn_gateway):
            tarn_gateway.mirror.mirror_status()
    """
    )
    result = pytester.runpytest_inprocess(*_NO_CACHE)
    result.assert_outcomes(failed=3, passed=1)
    result.stdout.fnmatch_lines_random(
        [
            "*- tarn_gateway -*",
            '*bench (*) tarn_qcsapi_wifi_set_SSID intf_name="wifi0" ssid="guest room": 0 (DONE)',
            "*bench (*) TarnGetRadioChainRssiAt radioId=1 chainIndex=9: 16 (NO_SUCH_OBJECT), chain 9; radio radio0 has 4*",
            "It was sent no request.",
            "... 100 lines before",
        ]
    )
    result.stdout.no_fnmatch_line("*get_mirror_status*")


def test_a_gateway_that_ended_by_itself_is_an_error_of_the_test(pytester: pytest.Pytester) -> None:
    pytester.makepyfile(
        """
        import os, signal

        def test_passes_but_for_the_gateway(tarn_gateway):
            os.kill(tarn_gateway._process.pid, signal.SIGKILL)
    """
    )
    result = pytester.runpytest_inprocess(*_NO_CACHE)
    result.assert_outcomes(passed=1, errors=1)
    result.stdout.fnmatch_lines(["*SimulatorError: tarn-gateway ended with exit status -9, expected 0*"])


@pytest.mark.parametrize("marker", ['tarn_gateway("dfs")', "tarn_gateway(sped=0)"])
def test_a_marker_with_other_keywords_is_refused(pytester: pytest.Pytester, marker: str) -> None:
    pytester.makepyfile(
        f"""
        import pytest

        @pytest.mark.{marker}
        def test_nothing(tarn_gateway):
            pass
    """
    )
    result = pytester.runpytest_inprocess(*_NO_CACHE)
    result.assert_outcomes(errors=1)
    result.stdout.fnmatch_lines(
        ["*marker tarn_gateway: expected keywords among scenario, layout, speed, seed, faults, caller, program; got *"]
    )


def test_the_markers_are_listed_and_a_session_without_gateways_does_not_load_the_libraries(
    pytester: pytest.Pytester,
) -> None:
    pytester.runpytest_inprocess("--markers").stdout.fnmatch_lines(
        ["@pytest.mark.tarn_gateway(scenario=..., layout=..., *"]
    )
    pytester.makepyfile("import sys\n\ndef test_nothing():\n    assert 'tarn' not in sys.modules\n")
    pytester.runpytest_subprocess(*_NO_CACHE).assert_outcomes(passed=1)


def test_programs_that_a_test_starts_use_its_gateway_too(
    tarn_gateway: SimulatedGateway, pytester: pytest.Pytester
) -> None:
    tarn_gateway.set_log_level(6)
    assert os.environ["KORIIL_DIR"] == tarn_gateway.directory == tarn.runtime_directory()
    pytester.run("tarnctl", "call", "TarnGetLogLevel").stdout.fnmatch_lines(["level: 6 *"])


def test_nothing_is_left_behind(tmp_path: Path) -> None:
    before = os.environ.get("KORIIL_DIR")
    with SimulatedGateway() as gateway:
        directory = gateway.directory
        assert os.path.isdir(directory)
        assert os.environ["KORIIL_DIR"] == directory
        process = gateway._process
    assert not os.path.exists(directory)
    assert os.environ.get("KORIIL_DIR") == before
    assert process is not None and process.returncode == 0
