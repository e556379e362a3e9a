"""The examples of a function's page: a C program that calls it, and a line for the shell."""
import os

_MAC = "02:00:00:00:01:01"
# What goes in, by the argument's name. Numbers that are not here are 1, bytes 0.
_VALUES = {
    "address_to_authorize": _MAC, "address_to_deny": _MAC, "mac": _MAC, "macAddress": _MAC, "mac_addr": _MAC, "mdid": "a1b2",
    "association_index": 0, "chainIndex": 0, "index": 0, "bandwidth": 80, "channel": 44, "level": 3, "pid": 4711,
    "authentication_mode": "PSKAuthentication", "curr_country_name": "us", "new_country_name": "eu", "region_by_name": "eu",
    "region_name": "eu", "custom_key": "led", "custom_value": "blue", "encryption_modes": "AESEncryption",
    "ifname": "wifi0", "intf_name": "wifi0", "key": "led", "name": "wifi0", "action": "status", "new_mcs_rate": "MCS7",
    "new_phy_mode": "11ac", "p_new_beacon": "WPAand11i", "param": "", "param_name": "bootdelay", "param_value": "1",
    "passphrase": "a passphrase", "path": "/tmp/firmware.img", "scriptname": "set_leds", "ssid": "my network", "value": "a1b2",
    "wps_pin": "12345670",
}
_SIZE = 256  # of the buffer for a text that the caller sizes


def _layout_text(layout, function, argument):
    return (layout["arguments"].get("%s.%s" % (function, argument["name"]), {}).get("texts") or [None])[0]


def _value(layout, function, argument):
    """A number for a number, else a text: of characters, or a MAC address or hexadecimal digits for bytes."""
    name, kind = argument["name"], argument["type"]
    value = _VALUES.get(name)
    if kind in ("u32", "u16", "u8"):
        return value if isinstance(value, int) else 1
    if kind == "bytes":
        return value
    return _layout_text(layout, function, argument) or (value if isinstance(value, str) else "example")


# --- C ----------------------------------------------------------------------------------------------------------------------


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
        return "uint8_t %s[%d];" % (name, size), name, None
    if argument["encoding"] == "words" and size > 4:
        return "uint32_t %s[%d];" % (name, size // 4), name, r'printf("%s: %%u ...\n", (unsigned)%s[0]);' % (name, name)
    shown = r'printf("%s: %%d\n", (int)(int32_t)%s);' if argument.get("signed") else r'printf("%s: %%u\n", (unsigned)%s);'
    return "%s %s = 0;" % ("uint8_t" if kind == "u8" else "uint32_t", name), "&" + name, shown % (name, name)


def c_example(layout, function, command):
    """A whole program. `function` is what the header says, `command` what the contract says."""
    declarations, passed, shown = [], ['"ledd"'], []
    sized = {each["size_argument"]: each["name"] for each in command["arguments"] if "size_argument" in each}
    for argument in command["arguments"]:
        if argument["name"] in sized:
            passed.append("sizeof(%s)" % sized[argument["name"]])
        elif argument["direction"] == "in":
            declaration, expression = _input(layout, command["function"], argument)
            declarations += [declaration] if declaration else []
            passed.append(expression)
        else:
            declaration, expression, printed = _output(argument)
            declarations.append(declaration)
            passed.append(expression)
            shown += [printed] if printed else []
    call = "%s(%s)" % (function.name, ", ".join(passed))
    conversion, cast = ("%u", "(unsigned)") if function.result == "uint32_t" else ("%d", "(int)")
    lines = ["#include <stdio.h>", "#include <%s>" % function.header, "", "int main(void)", "{"]
    lines += ["    " + each for each in declarations]
    lines += ["    %s result = %s;" % (function.result, call), "", "    if (result != 0)", "    {",
              '        fprintf(stderr, "%s: %s\\n", %sresult);' % (function.name, conversion, cast),
              "        return 1;", "    }"]
    lines += ["    " + each for each in shown] + ["    return 0;", "}"]
    return "\n".join(lines) + "\n"


# --- The shell --------------------------------------------------------------------------------------------------------------


def _quoted(text):
    plain = text and all(character.isalnum() or character in "._-/:" for character in text)
    return text if plain else "'%s'" % text


def _field_assignment(layout, key, structure, prefix):
    """Sets the first field of a record that the layout can name."""
    for field in structure["fields"]:
        name = "%s.%s" % (prefix, field["name"])
        if field["type"] == "array":
            name += "[0]"
            field = field.get("element") or field
            if "fields" in field:
                field = field["fields"][0]
                name += "." + field["name"]
        values = field.get("values")
        if values:
            values = layout["values"][values] if isinstance(values, str) else values
            return "%s=%s" % (name, list(values)[-1])
        if field["type"] == "text":
            return "%s=%s" % (name, (field.get("texts") or ["example"])[0])
        if field["type"] == "mac address":
            return "%s=%s" % (name, _MAC)
        return "%s=1" % name
    raise KeyError(key)


def shell_example(layout, command):
    """The line for the shell; where the inside of a record is set, it names fields of the simulated gateway's layout."""
    words = ["tarnctl", "call", command["function"]]
    sizes = {each.get("size_argument") for each in command["arguments"]}
    for argument in command["arguments"]:
        name, key = argument["name"], "%s.%s" % (command["function"], argument["name"])
        if argument["direction"] == "out" or name in sizes or key in layout["selections"]:
            continue
        structure = layout["records"].get(argument.get("record")) or layout["blocks"].get(key)
        value = _value(layout, command["function"], argument)
        if structure:
            words.append(_field_assignment(layout, key, structure, name))
        elif argument["type"] == "record" or value is None:
            words.append(name + "=zero")
        else:
            words.append("%s=%s" % (name, _quoted(str(value)) if value != "" else ""))
    return " ".join(words)


# --- Functions that send no command -----------------------------------------------------------------------------------------

SHELL_LINES = {
    "tarnSubscribeEvent": "tarnctl events EVT_RADIO_OPR_CHANNEL_CHANGED --timeout 60",
    "tarnCancelEvent": "tarnctl events EVT_RADIO_OPR_CHANNEL_CHANGED --count 1",
    "tarnIpcStatusName": "tarnctl call tarnIpcStatusName status=7",
    "tarnValidatePinCode": "tarnctl call tarnValidatePinCode pin=12345670",
    "tarnAddRateEntries": "tarnctl call tarnAddRateEntries table=zero rate=5.5 --save table=rates.bin",
    "tarnDelRatesEntries": "tarnctl call tarnDelRatesEntries table=@rates.bin rate=5.5",
}
PROGRAMS = {name: "rate_table.c" if "Rate" in name else name + ".c" for name in SHELL_LINES}
PROGRAMS["tarnCancelEvent"] = "tarnSubscribeEvent.c"


def program(name):
    with open(os.path.join(os.path.dirname(__file__), "programs", PROGRAMS[name]), encoding="ascii") as file:
        return file.read()
