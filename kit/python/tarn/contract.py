"""The contract: the wire as data, for each function its arguments and how they are sent."""
import json
import os
from typing import Any

_FOLDER = os.path.join(os.path.dirname(__file__), "data")


def _read(name: str) -> dict[str, Any]:
    with open(os.path.join(_FOLDER, name), encoding="utf-8") as file:
        document: dict[str, Any] = json.load(file)
    return document


DOCUMENTS = tuple(_read(name) for name in ("tarn.json", "qtn_rpc_proxy.json", "qtn_mirror.json"))
SERVICES = tuple(str(document["service"]) for document in DOCUMENTS)
COMMANDS = {str(command["function"]): (document, command) for document in DOCUMENTS for command in document["commands"]}
RECORD_SIZES: dict[str, int] = {
    name: size for document in DOCUMENTS for name, size in document.get("records", {}).items()
}
EVENTS: dict[int, str] = {each["event"]: each["name"] for document in DOCUMENTS for each in document.get("events", [])}
EVENT_SERVICE = next(str(document["service"]) for document in DOCUMENTS if "events" in document)
