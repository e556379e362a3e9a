"""What documents show: the README's examples and those in docstrings do what they say, and its test bench passes."""
import doctest
import importlib
import re
from pathlib import Path

import pytest

import tarn
from tarn import simulated

_ROOT = Path(__file__).parents[2]
_README = _ROOT / "kit" / "python" / "README.md"
_MODULES = ["gateway", "simulated", "utilities", "values"]


@pytest.mark.parametrize("name", _MODULES)
def test_examples_in_docstrings_hold(name: str) -> None:
    """Beside a gateway, unless they start one."""
    attempted = 0
    for examples in doctest.DocTestFinder(exclude_empty=True).find(importlib.import_module(f"tarn.{name}")):
        runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
        examples.globs["tarn"] = tarn
        if any("SimulatedGateway(" in each.source for each in examples.examples):
            runner.run(examples)
        else:
            with simulated.SimulatedGateway(speed=0) as examples.globs["gateway"]:
                runner.run(examples)
        assert runner.failures == 0
        attempted += runner.tries
    assert attempted > 0


def test_no_other_docstring_has_examples() -> None:
    folder = Path(str(tarn.__file__)).parent
    assert sorted(path.stem for path in folder.glob("*.py") if ">>> " in path.read_text(encoding="utf-8")) == _MODULES


@pytest.mark.tarn_gateway(speed=0)
@pytest.mark.parametrize("path, least", [(_README, 10), (_ROOT / "README.md", 5)])
def test_the_examples_of_the_readmes_hold(tarn_gateway: simulated.SimulatedGateway, path: Path, least: int) -> None:
    text = "\n".join(
        re.findall(r"^```python\n(>>> .*?)^```", path.read_text(encoding="utf-8"), re.DOTALL | re.MULTILINE)
    )
    examples = doctest.DocTestParser().get_doctest(text, {}, path.name, str(path), 0)
    assert len(examples.examples) >= least
    assert doctest.DocTestRunner().run(examples).failed == 0


def test_the_test_bench_of_the_readme_is_the_example_and_passes(pytester: pytest.Pytester) -> None:
    example = (_README.parent / "example" / "test_bench.py").read_text(encoding="utf-8")
    assert f"```python\n{example.partition(chr(10))[2]}```\n" in _README.read_text(encoding="utf-8")
    pytester.makepyfile(test_bench=example)
    pytester.runpytest_inprocess("-p", "no:cacheprovider").assert_outcomes(passed=3)


def test_the_evening_of_the_example_is_measured_and_drawn(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.syspath_prepend(_README.parent / "example")
    evening = importlib.import_module("evening")
    measured = evening.measure()
    busy = [measured.occupancy[minute] for minute in (19, 20, 40, 55, 119)]
    assert busy[0] < busy[1] < busy[2] < busy[3]
    assert busy[4] < busy[0]
    assert len(set(measured.channel)) == 2
    assert measured.signal[0] > measured.signal[30] > -88
    assert measured.signal[60] is None
    assert measured.signal[119] > measured.signal[90] > -88
    evening.draw(measured, str(tmp_path / "evening.png"))
    assert (tmp_path / "evening.png").read_bytes().startswith(b"\x89PNG")
    for name, dark in (("evening-light.svg", False), ("evening-dark.svg", True)):
        evening.draw(measured, str(tmp_path / name), dark)
        shown = _ROOT / "docs" / "pictures" / name
        assert (tmp_path / name).read_text() == shown.read_text(), f"kit/python/example/evening.py draws another {name}"


def test_the_version_is_that_of_the_distribution() -> None:
    from importlib import metadata

    assert metadata.version("tarn") == tarn.__version__
    assert metadata.entry_points(group="pytest11")["tarn"].value == "pytest_tarn"
