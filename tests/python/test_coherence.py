"""What is set by one function is told by the others: the pairs of coherence.txt, each on a gateway as the default
scenario has it at its start, whose time stands. coherence.txt says how they are written.
"""
import dataclasses
import inspect
import json
import os
import shlex
from collections.abc import Iterator
from typing import Any

import pytest

import tarn
from tarn import contract
from tarn.simulated import SimulatedGateway
from waiting import once_it_is_back

_TABLE = os.path.join(os.path.dirname(__file__), "coherence.txt")
_LEAST_PAIRS = 400


@dataclasses.dataclass(frozen=True)
class Pair:
    line: int
    steps: tuple[str, ...]
    question: str
    expected: str

    def __str__(self) -> str:
        return f"{' ; '.join(self.steps)} | {self.question}"


def _pairs() -> list[Pair]:
    pairs = []
    with open(_TABLE, encoding="utf-8") as file:
        for line, text in enumerate(file, start=1):
            if text.strip() and not text.startswith("#"):
                columns = [column.strip() for column in text.split(" | ")]
                place = f"coherence.txt:{line}"
                assert len(columns) in (3, 4), f"{place}: expected steps | question | expected [| choice]; got {text}"
                assert columns[3:] in ([], ["choice"]), f"{place}: expected choice, or no fourth column; got {text}"
                steps = tuple(step.strip() for step in columns[0].split(" ; "))
                pairs.append(Pair(line, steps, columns[1], columns[2]))
    return pairs


_PAIRS = _pairs()


def _value(word: str) -> Any:
    """Of a field, or of an argument that is a number: JSON, or else a text. "-" leaves it to the layout which bits
    select the fields that are given.
    """
    if word == "-":
        return None
    try:
        return json.loads(word)
    except ValueError:
        return word


def _argument(entry: dict[str, Any], word: str) -> Any:
    if entry["type"] == "text":
        return word
    if entry["type"] == "bytes":
        return word if ":" in word else bytes.fromhex(word)
    value = _value(word)
    return value & 0xFFFFFFFF if isinstance(value, int) else value  # an error code is below zero


def _takes_fields(function: str, name: str) -> bool:
    layout = tarn.layout_in_use()
    assert layout is not None
    _, command = contract.COMMANDS[function]
    entry = next(each for each in command["arguments"] if each["name"] == name)
    return layout.record(entry.get("record", f"{function}.{name}")) is not None


def _call(words: list[str]) -> Any:
    """Calls the function that the words begin with. Those with an equals sign are fields of its record."""
    function = words[0]
    _, command = contract.COMMANDS[function]
    entries = {entry["name"]: entry for entry in command["arguments"]}
    arguments: list[Any] = []
    rest = words[1:]
    for name in list(inspect.signature(getattr(tarn, function)).parameters)[1:]:
        if _takes_fields(function, name):
            fields = [word for word in rest if word == "..." or "=" in word]
            arguments.append(_fields(function, arguments, fields))
            rest = [word for word in rest if word not in fields]
        else:
            assert rest, f"{function}: expected {name}"
            arguments.append(_argument(entries[name], rest.pop(0)))
    assert not rest, f"{function}: expected no more arguments; got {rest}"
    return getattr(tarn, function)("bench", *arguments)


def _fields(function: str, arguments: list[Any], words: list[str]) -> dict[str, Any]:
    fields: dict[str, Any] = {}
    for word in words:
        if word == "...":
            fields.update(_as_it_is(function, arguments))
        else:
            name, _, value = word.partition("=")
            fields[name] = _value(value)
    return fields


def _as_it_is(function: str, arguments: list[Any]) -> dict[str, Any]:
    """The configuration that there is, for one that is taken as a whole."""
    layout = tarn.layout_in_use()
    assert layout is not None
    kind = layout.record(function.replace("TarnSet", "Tarn"))
    assert kind is not None
    told = getattr(tarn, function.replace("TarnSet", "TarnGet")[: -len("Cfg")])("bench", *arguments)
    return {field.name: getattr(told, field.name) for field in kind._fields_in}


def _part(answer: Any, path: str) -> Any:
    for name in path.replace("[", ".[").split(".")[1:]:
        answer = answer[int(name[1:-1])] if name.startswith("[") else getattr(answer, name)
    return answer


def _texts(value: Any) -> set[str]:
    """How a value may be written in the table: a number also by its name."""
    if isinstance(value, tarn.Number):
        return {str(int(value)), value.name or str(int(value))}
    if isinstance(value, (list, tuple)):
        return {" ".join(sorted(_texts(each))[0] for each in value) if value else "none"}
    if isinstance(value, (bool, dict)) or value is None:
        return {json.dumps(value)}
    if isinstance(value, bytes):
        return {value.hex(), value.rstrip(b"\0").decode(errors="replace")}
    return {str(value) or "''"}


class Incoherent(Exception):
    """What was set did not go as the table says. Says what was told."""


class _Bench:
    """A gateway that is put back to how it started."""

    def __init__(self) -> None:
        self._start()

    def _start(self) -> None:
        self.gateway = SimulatedGateway(speed=0)
        self._initial = self.gateway.state()
        self._is_rebooted = False

    def reset(self) -> None:
        """After a reboot it is another one, as services come back some time."""
        if self._is_rebooted:
            self.gateway.stop()
            self._start()
        self.gateway.change("", self._initial)

    def told(self, pair: Pair) -> Any:
        """What is told after what is set."""
        if not pair.question.startswith("event "):
            self._set(pair)
            return self._answer(pair.question)
        _, name, path = pair.question.split()
        with self.gateway.events(name) as events:
            self._set(pair)
            self.gateway.publish(name)  # without data: the last one
            told = iter(lambda: events.next(timeout=30).data, b"")
            return [_part(data, path) for data in told]

    def _set(self, pair: Pair) -> None:
        """What the gateway comes to is a scenario, which leads to the same."""
        for step in pair.steps:
            self._do(step)
        state = self._state()
        try:
            self.gateway.change("", self.gateway.state())
        except tarn.StatusError as error:
            raise Incoherent(f"a state that is no scenario: {error}") from None
        if self._state() != state:
            raise Incoherent("a state that, played as a scenario, becomes another one")

    def _do(self, step: str) -> None:
        """One that is refused has the status that it names, and changes nothing."""
        order, _, refusal = (part.strip() for part in step.partition(" -> "))
        words = shlex.split(order)
        before = self._state() if refusal else None
        told = ""
        try:
            if words[0] == "gateway":
                self._is_rebooted = self._is_rebooted or words[1] == "reboot"
                self.gateway.order(*words[1:])
            else:
                _call(words)
        except tarn.StatusError as error:
            told = error.name
        if told != refusal:
            raise Incoherent(f"{order} -> {told or 'done'}")
        if refusal and self._state() != before:
            raise Incoherent(f"{order} -> {told}, and another state than before")

    def _state(self) -> Any:
        """Without what a refusal leaves behind."""
        state = self.gateway.state()
        del state["service"]["errorMask"]
        return state

    def _answer(self, question: str) -> Any:
        words = shlex.split(question)
        if words[0] == "state":
            return self.gateway.state(words[1])
        path = words.pop() if words[-1].startswith(".") else ""
        try:
            return _part(once_it_is_back(lambda: _call(words)), path)
        except tarn.StatusError as error:
            return f"-> {error.name}"


@pytest.fixture(scope="module")
def shared_bench() -> Iterator[_Bench]:
    bench = _Bench()
    yield bench
    bench.gateway.stop()


@pytest.fixture
def bench(shared_bench: _Bench, monkeypatch: pytest.MonkeyPatch) -> _Bench:
    monkeypatch.setenv("KORIIL_DIR", shared_bench.gateway.directory)
    shared_bench.reset()
    return shared_bench


@pytest.mark.parametrize("pair", _PAIRS, ids=str)
def test_what_is_set_is_told(pair: Pair, bench: _Bench) -> None:
    try:
        told = _texts(bench.told(pair))
    except Incoherent as error:
        told = {str(error)}
    if pair.expected not in told:
        pytest.fail(
            f"coherence.txt:{pair.line}:\n  set:      {' ; '.join(pair.steps)}\n  asked:    {pair.question}\n"
            f"  expected: {pair.expected}\n  told:     {' or '.join(sorted(told))}",
            pytrace=False,
        )


def test_the_pairs_are_different_ones_and_at_least_400() -> None:
    assert len({(pair.steps, pair.question) for pair in _PAIRS}) == len(_PAIRS)
    assert len(_PAIRS) >= _LEAST_PAIRS


def test_every_function_is_in_the_table() -> None:
    words = {word for pair in _PAIRS for part in (*pair.steps, pair.question) for word in part.split()}
    assert set(contract.COMMANDS) - words == set()
