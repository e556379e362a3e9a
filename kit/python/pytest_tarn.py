"""For pytest: the fixture `tarn_gateway`, a simulated gateway for each test that asks for it, and the marker of that
name, which says what kind of gateway.

    @pytest.mark.tarn_gateway(scenario="dfs", speed=0)
    def test_the_radio_is_ready_after_its_radar_check(tarn_gateway):
        tarn_gateway.step(60.5)
        assert tarn_gateway.radio(1).is_ready()

The keywords are those of `tarn.simulated.SimulatedGateway`; a marker of a test comes before one of its class or module.
Of a test that fails, the report has the requests that its gateway was sent, with why one was refused. Gateways of tests
that run at the same time do not meet.
"""
from collections.abc import Generator, Iterator
from typing import TYPE_CHECKING, Any

import pytest

if TYPE_CHECKING:
    from tarn.simulated import SimulatedGateway

_GATEWAY = pytest.StashKey["SimulatedGateway"]()
_NAME = "tarn_gateway"
_MOST_LINES = 200  # of a report
_KEYWORDS = ("scenario", "layout", "speed", "seed", "faults", "caller", "program")


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line(
        "markers",
        f"{_NAME}({', '.join(f'{each}=...' for each in _KEYWORDS)}): what the simulated gateway of a "
        "test is like; see tarn.simulated.SimulatedGateway",
    )


def _wishes(request: pytest.FixtureRequest) -> dict[str, Any]:
    wishes: dict[str, Any] = {}
    for marker in request.node.iter_markers(_NAME):  # the closest comes first
        wrong = [name for name in marker.kwargs if name not in _KEYWORDS]
        if marker.args or wrong:
            raise pytest.UsageError(
                f"marker {_NAME}: expected keywords among {', '.join(_KEYWORDS)}; "
                f"got {', '.join(map(repr, [*marker.args, *wrong]))}"
            )
        wishes = {**marker.kwargs, **wishes}
    return wishes


@pytest.fixture
def tarn_gateway(request: pytest.FixtureRequest) -> Iterator["SimulatedGateway"]:
    """A simulated gateway for this test alone. All calls of the test, and of programs that it starts, go to it."""
    from tarn.simulated import SimulatedGateway

    gateway = SimulatedGateway(**_wishes(request))
    request.node.stash[_GATEWAY] = gateway
    yield gateway
    gateway.stop()


def _last_lines(log: str) -> str:
    lines = log.splitlines() or ["It was sent no request."]
    if len(lines) > _MOST_LINES:
        lines[:-_MOST_LINES] = [f"... {len(lines) - _MOST_LINES} lines before"]
    return "\n".join(lines)


@pytest.hookimpl(hookwrapper=True)  # type: ignore[misc]  # Debian's pluggy has no types
def pytest_runtest_makereport(item: pytest.Item, call: "pytest.CallInfo[None]") -> Generator[None, Any, None]:
    outcome = yield
    report = outcome.get_result()
    gateway = item.stash.get(_GATEWAY, None)
    if gateway is not None and report.when == "call" and report.failed:
        report.sections.append((_NAME, _last_lines(gateway.log())))
