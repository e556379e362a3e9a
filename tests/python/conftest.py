"""Shared by the tests of the package."""
import pytest

pytest_plugins = ["pytester"]


@pytest.fixture(autouse=True)
def quiet_traces(monkeypatch: pytest.MonkeyPatch, tmp_path_factory: pytest.TempPathFactory) -> None:
    """A runtime directory without services, for tests that have no gateway, and no layout of the machine's."""
    monkeypatch.setenv("KORIIL_DIR", str(tmp_path_factory.mktemp("run", numbered=True)))
    monkeypatch.delenv("TARN_LAYOUT", raising=False)
