"""The page of each exported function."""
import re

import examples
from headers import joined
from mdoc import Page, Writer, word, words

_FAMILIES = (("Tarn", "`Tarn...`"), ("tarn_", "`tarn_qcsapi_...`"))
_CONDITIONS = {"null": "is NULL", "null or empty": "is NULL or empty", "zero": "is 0"}
_SENT = {"id": "less one; 0 as 0xFFFFFFFF", "inverted": "1 if it is 0, else 0", "text": "cut to %d characters, NULs behind"}
_EFFECTS = {
    "reads": ("A call only reads: it leaves nothing behind on the gateway.",
              "Through a message broker it may be made unless the policy of tarn-bridge(1) denies it."),
    "changes": ("A call changes something on the gateway.",
                "Through a message broker it may be made only if the policy of tarn-bridge(1) allows it."),
}
_EVENTS = ("tarnSubscribeEvent", "tarnCancelEvent")


def _content(argument):
    """What an argument becomes in the message, or what comes of the message, where it is not the same."""
    if argument["direction"] == "in":
        text = _SENT.get(argument["encoding"], "")
        return text % (argument["size"] - 1) if "%" in text else text
    if argument["encoding"] == "text":
        return "ends with a NUL or with its size"
    return "two's complement" if argument.get("signed") else ""


def wire_size(argument, records):
    """Bytes that an argument takes in the message, or None where it is not in it."""
    if argument["encoding"] in ("size", "nothing"):
        return None
    if argument["type"] == "record":
        return records[argument["record"]]
    return argument.get("size", 1 if argument["encoding"] == "byte" else 4)


def _sentence(text):
    text = text[0].upper() + text[1:]
    return text if text[-1] in ".!?" else text + "."


def _summary(text):
    """A description as a page's one line."""
    text = re.split(r"[.:] ", text)[0].rstrip(".")
    return text[0].lower() + text[1:] if text[1:2].islower() else text


class FunctionPages:
    """contracts and layout as their files have them; functions and chapters as the headers."""

    def __init__(self, reference):
        self._reference = reference
        self._commands = {command["function"]: (contract, command)
                          for contract in reference.contracts for command in contract["commands"]}
        self._records = {}
        for contract in reference.contracts:
            self._records.update(contract.get("records", {}))
        self._null_caller = reference.one_quotation(r'For NULL the trace of every function reads "([^"]+)"')

    def summary(self, name):
        if name in self._commands:
            return _summary(self._commands[name][1]["description"])
        return _summary(self._reference.functions[name].description[0])

    def group(self, name):
        return self._commands[name][1]["group"] if name in self._commands else "Events and local utilities"

    def page(self, name):
        function = self._reference.functions[name]
        contract, command = self._commands.get(name, (None, None))
        page = Page(name, 3, self.summary(name), self._reference.date)
        writer = Writer(self._reference.sections, name)
        page.section("LIBRARY")
        page.macros("Client library of the gateway's Wi-Fi services (libtarn, \\-ltarn)")
        page.section("SYNOPSIS")
        page.macros(".In " + function.header, ".Ft " + word(function.result), ".Fo " + name,
                    *(".Fa " + word(each.declaration) for each in function.parameters), ".Fc")
        self._describe(page, writer, function, contract, command)
        self._returns(page, writer, function)
        if command:
            self._simulated(page, writer, contract, command)
        elif name in _EVENTS:
            self._events(page, writer)
        self._examples(page, function, contract, command)
        page.see_also(self._related(function, command))
        return page.text()

    def _describe(self, page, writer, function, contract, command):
        page.section("DESCRIPTION")
        for paragraph in function.description:
            page.paragraph(writer.text(paragraph))
        if command:
            effect, consequence = _EFFECTS[command["effect"]]
            reason = command.get("effect_reason")
            page.paragraph(writer.text(" ".join([effect, *([reason] if reason else []), consequence])))
        page.subsection("Arguments")
        page.tags([("Fa " + each.name, writer.text(_sentence(function.arguments[each.name]))) for each in function.parameters])
        if command:
            self._checks(page, function, contract, command)
            self._message(page, writer, contract, command)

    def _checks(self, page, function, contract, command):
        page.subsection("Checks")
        page.macros("These are made in this order.",
                    "The first that fails ends the call with a trace of this text;", "nothing is sent.")
        caller = function.parameters[0].name
        rows = [("Refused if", "Trace"), (caller + " is NULL", '"%s"' % self._null_caller),
                (caller + " is no caller id", '"%s"' % contract["invalid_caller"])]
        page.columns(rows + [("%s %s" % (each["argument"], _CONDITIONS[each["when"]]), '"%s"' % each["message"])
                             for each in command["checks"]])

    def _message(self, page, writer, contract, command):
        page.subsection("Message")
        page.paragraph(writer.text(
            "Command %d of the service %s, %d bytes. The reply may take %d seconds. Offsets and sizes are in bytes; words have "
            "32 bits, in the byte order of the processor. What no argument fills is sent as zero."
            % (command["command"], contract["service"], command["length"], command["wait"])))
        rows = []
        for argument in command["arguments"]:
            size = wire_size(argument, self._records)
            if size is not None:
                shown = "caller's" if "size_argument" in argument else str(size)
                rows.append((argument["offset"], shown, argument["name"], argument["direction"], _content(argument)))
        rows.append((command["length"] - 4, "4", "reply status", "out", "the service's own result"))
        rows.sort(key=lambda row: row[0])
        page.columns([("Offset", "Size", "Field", "Direction", "Content")] + [(str(row[0]), *row[1:]) for row in rows])
        if "note" in command:
            page.paragraph(writer.text(command["note"]))

    def _returns(self, page, writer, function):
        page.section("RETURN VALUES")
        page.paragraph(writer.text(function.returns))
        for prefix, marker in _FAMILIES:
            if function.name.startswith(prefix):
                chapter = next(each for each in self._reference.frame if marker in each.title)
                for block in chapter.blocks:
                    if isinstance(block, list):
                        page.tags([(words(term), writer.text(text + ".")) for term, text in block])
                    else:
                        page.paragraph(writer.text(block))

    # --- The simulated gateway --------------------------------------------------------------------------------------------

    def _begin_simulated(self, page, writer):
        layout = self._reference.layout
        page.section("SIMULATED GATEWAY")
        page.paragraph(writer.text("What follows holds for tarn-gateway(1) alone. " + layout["description"]))
        return layout

    def _events(self, page, writer):
        layout = self._begin_simulated(page, writer)
        for contract in self._reference.contracts:
            for event in contract.get("events", []):
                page.subsection("Data of %s (%d)" % (event["name"], event["event"]))
                page.columns(self._field_rows(layout["events"][event["name"]]))

    def _simulated(self, page, writer, contract, command):
        layout = self._begin_simulated(page, writer)
        for argument in command["arguments"]:
            key = "%s.%s" % (command["function"], argument["name"])
            self._meaning(page, writer, argument["name"], key)
            structure = layout["records"].get(argument.get("record")) or layout["blocks"].get(key)
            if structure:
                page.subsection("Fields of " + argument["name"])
                page.columns(self._field_rows(structure))
        page.subsection("Reply statuses")
        page.columns([("Status", "Name", "Meaning")] + [
            (str(each["number"]), each["name"], each["text"]) for each in layout["statuses"]
            if contract["service"] in each.get("services", [contract["service"]])])

    def _meaning(self, page, writer, name, key):
        content = self._content(self._reference.layout["arguments"].get(key, {}))
        selection = self._reference.layout["selections"].get(key)
        if selection:
            content = "bits that select fields of %s: %s%s" % (
                selection["selects"], ", ".join("%s %s" % each for each in selection["bits"].items()),
                "; 0 selects all" if selection.get("zero_is_all") else "")
        if content:
            page.tags([("Fa " + name, writer.text(content + "."))])

    def _content(self, field):
        """Unit, values, flags and words of a field or an argument."""
        values = field.get("values", {})
        values = self._reference.layout["values"][values] if isinstance(values, str) else values
        parts = [", ".join(field[key] for key in ("unit", "description") if key in field)]
        parts.append(", ".join("%d %s" % (number, name) for name, number in values.items()))
        parts.append(", ".join("bit %d %s" % (bit, name) for name, bit in field.get("flags", {}).items()))
        parts.append(", ".join('"%s"' % each for each in field.get("texts", [])))
        return "; ".join(each for each in parts if each)

    def _field_rows(self, structure):
        return [("Offset", "Size", "Field", "Type", "Content"), *self._fields(structure["fields"])]

    def _fields(self, fields, prefix="", base=0, step=""):
        """Rows of a table. The offsets in an array are those of its first element, with what is added for each further one."""
        for field in fields:
            name, offset = prefix + field["name"], base + field["offset"]
            content = [self._content(field)]
            if field["type"] != "array":
                yield ("%d%s" % (offset, step), str(field.get("size", 6)), name, field["type"], *content)
                continue
            element = field.get("element", {"type": "array", "size": field.get("stride")})
            stride = field.get("stride") or element.get("size", 6)
            each_step = "%s+%sn" % (step, stride if stride > 1 else "")
            content.append(self._content(element))
            content.append("ends with the first that is all zeros" if field.get("ends_with_zero") else "")
            content.append("in use: " + field["count_field"] if "count_field" in field else "")
            yield ("%d%s" % (offset, each_step), str(element.get("size", 6)), "%s[%d]" % (name, field["count"]),
                   element["type"], "; ".join(each for each in content if each))
            yield from self._fields(field.get("fields", []), name + "[n].", offset, each_step)

    # --- Examples, and what is related ------------------------------------------------------------------------------------

    def _examples(self, page, function, contract, command):
        layout = self._reference.layout
        page.section("EXAMPLES")
        page.macros("In C:")
        page.display(examples.c_example(layout, function, command) if command else examples.program(function.name))
        line = self._shell_line(function, command)
        names_fields = any("." in word.split("=")[0] for word in line.split() if "=" in word)
        page.paragraph("At the shell, with the fields of the simulated gateway:" if names_fields else "At the shell:")
        page.display(line)
        page.paragraph("In Python:")
        page.display(examples.python_example(layout, contract, command) if command else examples.PYTHON_LINES[function.name])

    def _shell_line(self, function, command):
        return examples.shell_example(self._reference.layout, command) if command else examples.SHELL_LINES[function.name]

    def _related(self, function, command):
        names = {each for each, other in self._reference.functions.items()
                 if each != function.name and (
                     self._stem(each) == self._stem(function.name)
                     or self._mentions(other, function.name) or self._mentions(function, each))}
        if not names:  # then what is next to it
            every = list(self._reference.functions)
            at = every.index(function.name)
            near = every[max(0, at - 2):at] + every[at + 1:at + 3]
            names = {each for each in near if self.group(each) == self.group(function.name)}
        verb = self._shell_line(function, command).split()[1]
        return [(each, 3) for each in names] + [("tarn", 7), ("tarnctl", 1), ("tarnctl-" + verb, 1)]

    @staticmethod
    def _stem(name):
        """What a function is about: its name without what it does, and in which form."""
        verbs = "get|set|is|apply|add|remove|update|start|stop|do|show"
        stem = re.sub(r"^Tarn(Get|Set|Trigger|Cancel|Sync|Is)|(?<=_)(%s)_" % verbs, "", name)
        forms = "(State|Enable|ExCfg|Cfg|Stats|Status|Number|Num|At|Exist)+|_(status|enable|state|num|count)"
        return re.sub("(%s)$" % forms, "", stem)

    @staticmethod
    def _mentions(function, name):
        text = joined(" ".join([*function.description, *function.arguments.values(), function.returns]))
        return re.search(r"\b%s\b" % name, text) is not None
