"""tarn(7), and the formats of files in section 5."""
import json
import re

import markdown
from mdoc import Page, Writer, words


def pages(reference, functions):
    return {("tarn", 7): _concepts(reference, functions), ("tarn-layout", 5): _layout(reference),
            ("tarn-scenario", 5): _scenario(reference)}


def _chapters(page, writer, chapters, skipped=0):
    for chapter in chapters:
        if chapter.title:
            page.subsection(chapter.title.replace("`", ""))
        for block in chapter.blocks[skipped:]:
            if isinstance(block, list):
                page.tags([(words(term), writer.text(text + ".")) for term, text in block])
            else:
                page.paragraph(writer.text(block))


def _concepts(reference, functions):
    page = Page("tarn", 7, "client library of a gateway's Wi-Fi services", reference.date)
    writer = Writer(reference.sections, "tarn")
    page.section("DESCRIPTION")
    readme = markdown.sections(reference.read("README.md"))
    markdown.write(page, writer, _without_pictures(readme[""]))
    _chapters(page, writer, reference.frame[:1], skipped=1)  # the file's own subject
    page.subsection("An example")
    markdown.write(page, writer, _first_code(readme["One call in C"]))
    page.paragraph("It is compiled with")
    page.display("cc level.c $(pkg-config --cflags --libs libtarn libkoriil)")
    page.paragraph(writer.text("On the gateway its own IPC library takes the place of libkoriil."))
    _chapters(page, writer, reference.frame[1:])
    page.section("THE DEVICE SERVICE")
    _chapters(page, writer, reference.device)
    page.section("THE WI-FI MODULE")
    _chapters(page, writer, reference.module)
    page.section("FUNCTIONS")
    page.macros("By what they are about:")
    group = None
    for name in reference.functions:
        if functions.group(name) != group:
            if group:
                page.macros(".El")
            group = functions.group(name)
            page.subsection(group)
            page.macros(".Bl -tag -width Ds")
        page.macros(".It Xr %s 3" % name, writer.text(functions.summary(name)))
    page.macros(".El")
    page.section("ENVIRONMENT")
    page.macros("These are read by libkoriil, the IPC library of a workstation.")
    markdown.write(page, writer, markdown.sections(reference.read("kit/host/README.md"))["Environment"])
    page.section("FILES")
    page.tags([("Pa %s/contract" % reference.data, writer.text("The messages of every function as JSON, and the schema.")),
               ("Pa %s/layout" % reference.data, writer.text("The simulated gateway's layout, see tarn-layout(5).")),
               ("Pa %s/scenarios" % reference.data, writer.text("Gateways to simulate, see tarn-scenario(5)."))])
    page.see_also([("tarn-gateway", 1), ("tarnctl", 1), ("tarn-layout", 5), ("tarn-scenario", 5)])
    return page.text()


def _without_pictures(lines):
    text = "\n".join(lines)
    return re.sub(r"<picture>.*?</picture>", "", text, flags=re.DOTALL).split("\n")


def _first_code(lines):
    begin, end = [at for at, line in enumerate(lines) if line.startswith("```")][:2]
    return lines[begin:end + 1]


def _layout(reference):
    page = Page("tarn-layout", 5, "what is inside the records of one make of gateway", reference.date)
    writer = Writer(reference.sections, "tarn-layout")
    document = markdown.sections(reference.read("kit/layout/README.md"))
    page.section("DESCRIPTION")
    for title in ("", "An example", "The file", "For C and C++"):
        markdown.write(page, writer, document[title], title)
    page.section("FILES")
    page.tags([("Pa %s/layout/tarn\\-gateway.json" % reference.data, writer.text("The simulated gateway's layout.")),
               ("Pa %s/layout/layout.schema.json" % reference.data, writer.text("The JSON Schema of layout files."))])
    page.see_also([("tarn-gateway", 1), ("tarnctl", 1), ("tarnctl-layout", 1), ("tarn", 7)])
    return page.text()


def _scenario(reference):
    page = Page("tarn-scenario", 5, "what a simulated gateway consists of", reference.date)
    writer = Writer(reference.sections, "tarn-scenario")
    page.section("DESCRIPTION")
    markdown.write(page, writer, markdown.sections(reference.read("kit/simulator/README.md"))["Scenarios"])
    schema = json.loads(reference.read("kit/simulator/scenario.schema.json"))
    page.section("KEYS")
    page.macros("Each key of each object, with the values that it takes.", "A key in square brackets may be left out.")
    for path, node in _objects(schema, schema, ""):
        page.subsection(path or "The file")
        required = node.get("required", [])
        page.tags([("Cm " + words(key if key in required else "[%s]" % key), writer.text(_kind(schema, value)))
                   for key, value in node.get("properties", {}).items() if key != "$schema"])
    page.section("FILES")
    page.tags([("Pa %s/scenarios" % reference.data, writer.text("Scenarios to begin with.")),
               ("Pa %s/scenario.schema.json" % reference.data, writer.text("The JSON Schema of scenario files."))])
    page.section("EXAMPLES")
    page.macros("The gateway that is simulated if no scenario is named:")
    page.display(reference.read("kit/simulator/scenarios/default.json"))
    page.see_also([("tarn-gateway", 1), ("tarn", 7)])
    return page.text()


def _resolved(schema, node):
    while "$ref" in node:
        target = schema
        for step in node["$ref"].lstrip("#/").split("/"):
            target = target[step]
        node = target
    return node


def _objects(schema, node, path):
    """Each object of the schema that has keys, with its place."""
    node = _resolved(schema, node)
    if node.get("type") == "array":
        yield from _objects(schema, node.get("items", {}), "each of " + path if not path.startswith("each") else path)
    elif node.get("properties"):
        yield path, node
        for key, value in node["properties"].items():
            yield from _objects(schema, value, path + "." + key if path else key)


def _kind(schema, node):
    node = _resolved(schema, node)
    if "enum" in node:
        return "One of " + ", ".join(json.dumps(each) for each in node["enum"]) + "."
    if "const" in node:
        return json.dumps(node["const"]) + "."
    kind = node.get("type", "any value")
    if kind == "array":
        most = ", at most %d" % node["maxItems"] if "maxItems" in node else ""
        item = _kind(schema, node.get("items", {}))
        return "A list%s, of: %s" % (most, item[0].lower() + item[1:])
    if kind == "object":
        return "An object, see below." if node.get("properties") else "An object."
    limits = [node.get(low, node.get(other)) for low, other in (("minimum", "minLength"), ("maximum", "maxLength"))]
    text = {"string": "A text", "integer": "A whole number", "number": "A number", "boolean": "true or false"}.get(kind, kind)
    if "pattern" in node:
        text += " that matches `%s`" % node["pattern"]
    elif limits[0] == limits[1] is not None:
        return "%s." % limits[0]
    elif limits != [None, None]:
        shown = tuple("any" if each is None else each for each in limits)
        text += (" of %s to %s characters" if kind == "string" else " from %s to %s") % shown
    return text + "."
