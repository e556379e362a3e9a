"""What a function of the library is in Python: what goes in, what comes out, whose method it is, and its name there."""
import re

# The classes of objects.py: name, service, the arguments that name the object (in front of all others), what of a
# function's name tells of it as well, what it is, and how a gateway leads to it. A function belongs to the first class
# that it fits.
OBJECTS = (
    ("Ssid", "TARN", ("radioId", "ssidId"), "SsidIntf|Ssid", "An SSID interface of a radio.", ".radio(%s).ssid(%s)"),
    ("AccessPoint", "TARN", ("radioId", "apId"), "AccessPoint", "An access point of a radio.", ".radio(%s).access_point(%s)"),
    ("Radio", "TARN", ("radioId",), "Radio", "A radio.", ".radio(%s)"),
    ("DeviceService", "TARN", (), "", "The device service, where no radio is named.", ""),
    ("Interface", "QTN_RPC_PROXY", ("ifname",), "", "An interface of the Wi-Fi module, by its name.", ".interface(%s)"),
    ("Module", "QTN_RPC_PROXY", (), "", "The Wi-Fi module, where no interface is named.", ".module"),
    ("Mirror", "QTN_MIRROR", (), "", "The module's port mirroring and telnet access.", ".mirror"),
)


class PythonFunction:
    """One command of the contract."""

    def __init__(self, service, command):
        self.name = command["function"]
        self.command = command
        entries = command["arguments"]
        sized_texts = {
            entry["size_argument"] for entry in entries if "size_argument" in entry and entry["type"] == "text"
        }
        self.inputs = [entry for entry in entries if entry["direction"] == "in" and entry["name"] not in sized_texts]
        self.outputs = [entry for entry in entries if entry["direction"] == "out" and entry["encoding"] != "nothing"]
        names = tuple("ifname" if entry["name"] == "intf_name" else entry["name"] for entry in self.inputs)
        self.owner, _, self.leading, self._about, _, self.road = next(
            each for each in OBJECTS if each[1] == service and names[: len(each[2])] == each[2]
        )

    def method(self):
        """chain_rssi_at of TarnGetRadioChainRssiAt, set_channel of tarn_qcsapi_wifi_set_channel."""
        name = re.sub(r"^(Tarn|tarn_qcsapi_(wifi_)?|tarn_qtn_mirror_)", "", self.name)
        if self._about:
            name = re.sub(self._about, "", name, count=1)
        name = re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name.replace("WiFi", "Wifi")).lower()
        name = re.sub(r"(^|_)get_|^get$", r"\1", name)
        return name or self.outputs[0]["name"]

    def may_select(self, entry):
        """Whether the bits of a number may select fields of a record."""
        return entry["encoding"] == "word" and any(other["type"] == "record" for other in self.inputs)
