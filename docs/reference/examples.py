"""The examples of a function's page: a C program that calls it, a line for the shell, and one in Python."""
import os
import re

from naming import PythonFunction

_MAC = "02:00:00:00:01:01"
# What goes in, by the argument's name, or by FUNCTION.ARGUMENT where that is not enough. Texts that are not here are those of
# the simulated gateway's layout, numbers are 1, bytes 0.
_VALUES = {
    "address_to_authorize": _MAC, "address_to_deny": _MAC, "mac": _MAC, "macAddress": _MAC, "mac_addr": _MAC, "mdid": "a1b2",
    "association_index": 0, "chainIndex": 0, "index": 0, "bandwidth": 80, "channel": 44, "level": 3, "pid": 4711,
    "curr_country_name": "us", "new_country_name": "eu", "region_by_name": "eu", "region_name": "eu", "custom_key": "led",
    "custom_value": "blue", "ifname": "wifi0", "intf_name": "wifi0", "key": "led", "name": "wifi0", "new_phy_mode": "11ac",
    "param": "", "param_name": "bootdelay", "param_value": "1", "passphrase": "a passphrase", "scriptname": "set_leds",
    "ssid": "my network", "value": "a1b2", "wps_pin": "12345670",
    "TarnDownloadQuantennaWirelessConf.path": "/tmp/wireless.conf",
    "TarnGetQuantennaSmartWiFiCfgToFile.path": "/tmp/smart_wifi.conf",
    "TarnTriggerAccessPointWpsWindow.value2": 0,
    "tarn_qcsapi_wifi_set_assoc_limit.value": 32,
    "tarn_qcsapi_wifi_set_beacon_interval.value": 100,
    "tarn_qcsapi_wifi_set_bss_assoc_limit.value2": 32,
    "tarn_qcsapi_wifi_set_chan_pri_inactive.value1": 44,
    "tarn_qcsapi_wifi_set_current_tx_power_level.value": 50,
    "tarn_qcsapi_wifi_set_dtim.value": 2,
    "tarn_qcsapi_wifi_set_group_key_interval.value": 3600,
    "tarn_qcsapi_wifi_set_rts_threshold.value": 2347,
    "tarn_qcsapi_wifi_set_sec_chan.value1": 36,
    "tarn_qcsapi_wifi_set_sec_chan.value2": 40,
}
_SIZE = 256  # of the buffer for a text that the caller sizes


def _value(layout, function, argument):
    """A number for a number, else a text: of characters, or a MAC address or hexadecimal digits for bytes."""
    name, kind = argument["name"], argument["type"]
    key = "%s.%s" % (function, name)
    value = _VALUES.get(key, _VALUES.get(name))
    if kind in ("u32", "u16", "u8"):
        return value if isinstance(value, int) else 1
    if kind == "bytes":
        return value
    texts = layout["arguments"].get(key, {}).get("texts", [])
    if isinstance(value, str) and (value in texts or not texts):
        return value
    if not texts:
        raise SystemExit("examples.py: there is no value for %s" % key)
    return texts[0]


def _first_field(structure):
    """The first field of a record, but one that only counts the others."""
    counts = {field.get("count_field") for field in structure["fields"]}
    return next(each for each in structure["fields"] if each["name"] not in counts)


def _named_value(layout, field):
    """A name of a value that a field can have, and its number; None if its values have no names."""
    values = field.get("values")
    values = layout["values"][values] if isinstance(values, str) else values
    return list(values.items())[-1] if values else None


# --- C ----------------------------------------------------------------------------------------------------------------------


def c_name(name):
    """A name of the layout as tarn_gateway_records.h has it."""
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name.replace(".", "_")).lower()


def _set_field(layout, argument):
    """A statement that sets a field of a record, and the field's name."""
    field = _first_field(layout["records"][argument["record"]])
    named = _named_value(layout, field)
    value = '"%s"' % field.get("texts", ["example"])[0] if field["type"] == "text" else named[1] if named else 1
    setter = "%s_set_%s" % (c_name(argument["record"]), c_name(field["name"]))
    return "%s(&%s, %s);" % (setter, argument["name"], value), field["name"]


def _print_field(layout, argument):
    """Prints the first number of a record that means something, if there is one."""
    fields = [each for each in layout["records"][argument["record"]]["fields"] if each["type"] in ("number", "signed")]
    telling = [each for each in fields if each["size"] <= 4 and ("unit" in each or "values" in each)]
    if not telling:
        return None
    field, kind = telling[0], ("d", "int") if telling[0]["type"] == "signed" else ("u", "unsigned")
    return r'printf("%s: %%%s\n", (%s)%s_%s(&%s));' % (
        field["name"], *kind, c_name(argument["record"]), c_name(field["name"]), argument["name"])


def _selecting_bit(layout, command, argument, fields):
    """The constant for the bit of a field that is set, if the argument selects fields."""
    key = "%s.%s" % (command["function"], argument["name"])
    bits = layout["selections"].get(key, {}).get("bits", {})
    return next((c_name("%s.%s" % (key, each)).upper() for each in fields if each in bits), None)


def _bytes_initialiser(value):
    if value is None:
        return "{0}"
    digits = value.replace(":", "")
    return "{%s}" % ", ".join("0x" + digits[at:at + 2] for at in range(0, len(digits), 2))


def _input(layout, function, argument):
    """A declaration, or None, and the expression that is passed."""
    name, kind = argument["name"], argument["type"]
    if kind == "record":
        return "%s %s = {{0}};" % (argument["record"], name), name
    value = _value(layout, function, argument)
    if kind == "bytes":
        return "const uint8_t %s[%d] = %s;" % (name, argument["size"], _bytes_initialiser(value)), name
    if kind == "text" and argument["encoding"] == "block":
        return 'const char %s[%d] = "%s"; /* all of it is read */' % (name, argument["size"], value), name
    return None, '"%s"' % value if kind == "text" else str(value)


def _output(argument):
    """A declaration, the expression that is passed, and what is printed of it, or None."""
    name, kind = argument["name"], argument["type"]
    size = argument.get("size", _SIZE if "size_argument" in argument else 4)
    if kind == "record":
        return "%s %s;" % (argument["record"], name), "&" + name, None
    if kind == "text":
        return "char %s[%d];" % (name, size), name, r'printf("%s: %%s\n", %s);' % (name, name)
    if kind == "bytes":
        return "uint8_t %s[%d];" % (name, size), name, r'printf("%s: %%02x ...\n", %s[0]);' % (name, name)
    if argument["encoding"] == "words" and size > 4:
        return "uint32_t %s[%d];" % (name, size // 4), name, r'printf("%s: %%u ...\n", (unsigned)%s[0]);' % (name, name)
    shown = r'printf("%s: %%d\n", (int)(int32_t)%s);' if argument.get("signed") else r'printf("%s: %%u\n", (unsigned)%s);'
    return "%s %s = 0;" % ("uint8_t" if kind == "u8" else "uint32_t", name), "&" + name, shown % (name, name)


def c_example(layout, function, command):
    """A whole program. `function` is what the header says, `command` what the contract says."""
    declarations, passed, shown = [], ['"ledd"'], []
    records = {each["name"]: each for each in command["arguments"] if each["type"] == "record"}
    set_fields = [_set_field(layout, each) for each in records.values() if each["direction"] == "in"]
    sized = {each["size_argument"]: each["name"] for each in command["arguments"] if "size_argument" in each}
    for argument in command["arguments"]:
        if argument["name"] in sized:
            passed.append("sizeof(%s)" % sized[argument["name"]])
        elif argument["direction"] == "in":
            declaration, expression = _input(layout, command["function"], argument)
            declarations += [declaration] if declaration else []
            bit = _selecting_bit(layout, command, argument, [field for _, field in set_fields])
            passed.append(bit or expression)
        else:
            declaration, expression, printed = _output(argument)
            declarations.append(declaration)
            passed.append(expression)
            printed = _print_field(layout, argument) if argument["name"] in records else printed
            shown += [printed] if printed else []
    call = "%s(%s)" % (function.name, ", ".join(passed))
    conversion, cast = ("%u", "(unsigned)") if function.result == "uint32_t" else ("%d", "(int)")
    lines = ["#include <stdio.h>", "", "#include <%s>" % function.header]
    lines += ["#include <tarn_gateway_records.h> /* the simulated gateway's */"] if records else []
    lines += ["", "int main(void)", "{", *("    " + each for each in declarations), "    %s result;" % function.result, ""]
    lines += ["    " + each for each, _ in set_fields]
    lines += ["    result = %s;" % call, "    if (result != 0)", "    {",
              '        fprintf(stderr, "%s: %s\\n", %sresult);' % (function.name, conversion, cast),
              "        return 1;", "    }"]
    lines += ["    " + each for each in shown] + ["    return 0;", "}"]
    return "\n".join(lines) + "\n"


# --- The shell --------------------------------------------------------------------------------------------------------------


def _quoted(text):
    plain = text and all(character.isalnum() or character in "._-/:" for character in text)
    return text if plain else "'%s'" % text


def _field_assignment(layout, structure, name):
    """Sets the first field of a record, but one that only counts the others."""
    field = _first_field(structure)
    name += "." + field["name"]
    if field["type"] == "array":
        name += "[0]"
        if "fields" in field:
            return _field_assignment(layout, field, name)
        field = field["element"]
    named = _named_value(layout, field)
    if named:
        return "%s=%s" % (name, named[0])
    texts = field.get("texts", ["example"])
    return "%s=%s" % (name, {"text": texts[0], "mac address": _MAC}.get(field["type"], "1"))


def shell_example(layout, command):
    """The line for the shell; where the inside of a record is set, it names fields of the simulated gateway's layout."""
    words = ["tarnctl", "call", command["function"]]
    sizes = {each.get("size_argument") for each in command["arguments"]}
    for argument in command["arguments"]:
        name, key = argument["name"], "%s.%s" % (command["function"], argument["name"])
        if argument["direction"] == "out" or name in sizes or key in layout["selections"]:
            continue
        structure = layout["records"].get(argument.get("record")) or layout["blocks"].get(key)
        if structure:
            words.append(_field_assignment(layout, structure, name))
            continue
        value = _value(layout, command["function"], argument)
        if value is None:
            words.append(name + "=zero")
        else:
            words.append("%s=%s" % (name, _quoted(str(value)) if value != "" else ""))
    return " ".join(words)


# --- Python -----------------------------------------------------------------------------------------------------------------


def _field_in_python(layout, structure):
    """A mapping that sets the first field of a record, but one that only counts the others."""
    field = _first_field(structure)
    name, element = field["name"], field
    if field["type"] == "array":
        element = field.get("element", field)
    if "fields" in element:
        return '{"%s": [%s]}' % (name, _field_in_python(layout, element))
    named = _named_value(layout, element)
    texts = element.get("texts", ["example"])
    value = named[0] if named else {"text": texts[0], "mac address": _MAC}.get(element["type"])
    value = '"%s"' % value if value is not None else "1"
    return '{"%s": %s}' % (name, "[%s]" % value if field["type"] == "array" else value)


def _argument_in_python(layout, python, entry):
    key = "%s.%s" % (python.name, entry["name"])
    structure = layout["records"].get(entry.get("record")) or layout["blocks"].get(key)
    if structure:
        return _field_in_python(layout, structure)
    if key in layout["selections"]:
        return "None"
    if any(other.get("size_argument") == entry["name"] for other in python.outputs):
        return str(_SIZE)
    value = _value(layout, python.name, entry)
    if value is None:
        return "bytes(%d)" % entry["size"]
    if entry["type"] == "bytes" and entry["size"] != 6:
        return 'bytes.fromhex("%s")' % value
    return '"%s"' % value if isinstance(value, str) else str(value)


def python_example(layout, contract, command):
    """A line that calls the method."""
    python = PythonFunction(contract["service"], command)
    passed = [_argument_in_python(layout, python, entry) for entry in python.inputs]
    own = len(python.leading)
    road = python.road % tuple(passed[:own]) if own else python.road
    return 'tarn.Gateway("ledd")%s.%s(%s)' % (road, python.method(), ", ".join(passed[own:]))


# --- Functions that send no command -----------------------------------------------------------------------------------------

SHELL_LINES = {
    "tarnSubscribeEvent": "tarnctl events EVT_RADIO_OPR_CHANNEL_CHANGED --timeout 60",
    "tarnCancelEvent": "tarnctl events EVT_RADIO_OPR_CHANNEL_CHANGED --count 1",
    "tarnIpcStatusName": "tarnctl call tarnIpcStatusName status=7",
    "tarnValidatePinCode": "tarnctl call tarnValidatePinCode pin=12345670",
    "tarnAddRateEntries": "tarnctl call tarnAddRateEntries table=zero rate=5.5 --save table=rates.bin",
    "tarnDelRatesEntries": "tarnctl call tarnDelRatesEntries table=@rates.bin rate=5.5",
}
PYTHON_LINES = {
    "tarnSubscribeEvent": 'tarn.tarnSubscribeEvent("ledd", tarn.EVT_RADIO_OPR_CHANNEL_CHANGED, print)',
    "tarnCancelEvent": 'tarn.tarnCancelEvent("ledd", tarn.EVT_RADIO_OPR_CHANNEL_CHANGED, print)',
    "tarnIpcStatusName": "tarn.tarnIpcStatusName(7)",
    "tarnValidatePinCode": "tarn.tarnValidatePinCode(12345670)",
    "tarnAddRateEntries": 'tarn.RateTable(["5.5"]).add("54")',
    "tarnDelRatesEntries": 'tarn.RateTable(["5.5", "54"]).remove("5.5")',
}
PROGRAMS = {name: "rate_table.c" if "Rate" in name else name + ".c" for name in SHELL_LINES}
PROGRAMS["tarnCancelEvent"] = "tarnSubscribeEvent.c"


def program(name):
    with open(os.path.join(os.path.dirname(__file__), "programs", PROGRAMS[name]), encoding="ascii") as file:
        return file.read()
