"""The project's documents as mdoc: paragraphs, lists, tables and code, which is all that they have."""
import re

from mdoc import column_widths, fits, words


def sections(text):
    """Lines of each section of the second level, by its title; what comes before them under an empty one."""
    result = {"": []}
    title = ""
    for line in text.split("\n"):
        if line.startswith("## "):
            title = line[3:]
            result[title] = []
        elif not line.startswith("# "):
            result[title].append(line)
    return result


def _blocks(lines):
    """Pairs of kind and lines: code, table, list, heading, text."""
    blocks = []
    fenced = False
    for line in lines:
        if line.startswith("```"):
            fenced = not fenced
            if fenced:
                blocks.append(("code", []))
        elif fenced:
            blocks[-1][1].append(line)
        elif not line.strip():
            blocks.append(("", []))
        else:
            kind = ("table" if line.startswith("|") else "code" if line.startswith("    ") else
                    "heading" if line.startswith("#") else "list" if line.startswith("- ") else "text")
            if kind == "text" and blocks and blocks[-1][0] == "list" and line.startswith("  "):
                blocks[-1][1][-1] += " " + line.strip()
            elif blocks and blocks[-1][0] == kind != "heading":
                blocks[-1][1].append(line)
            else:
                blocks.append((kind, [line]))
    return [each for each in blocks if each[0]]


def _cells(line):
    return [_unlinked(cell.strip().replace("\\|", "|")) for cell in re.split(r"(?<!\\)\|", line.strip())[1:-1]]


def _unlinked(text):
    """Without links and bold type."""
    return re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text).replace("**", "")


def _plain(text):
    return text.replace("`", "")


def write(page, writer, lines, title=None):
    """A document's lines onto a page, as a subsection if there is a title."""
    if title:
        page.subsection(title)
    for kind, content in _blocks(lines):
        if kind == "code":
            page.display("\n".join(content))
        elif kind == "heading":
            page.subsection(content[0].lstrip("# "))
        elif kind == "list":
            page.macros(".Bl -bullet")
            for item in content:
                page.macros(".It", writer.text(_unlinked(item[2:])))
            page.macros(".El")
        elif kind == "table":
            _table(page, writer, [_cells(line) for line in content])
        else:
            page.paragraph(writer.text(_unlinked(" ".join(content))))


def _named_cells(titles, row):
    """What a row has behind its first cell; where it has anything, with the title of its column from the second on."""
    return [text if at == 1 else "%s: %s" % (titles[at], text) for at, text in enumerate(row) if at and text]


def _table(page, writer, rows):
    titles, _, *others = rows
    if len(titles) == 2:  # a term and what there is to say of it: too long for columns
        page.tags([("Cm " + words(_plain(term)), writer.text(text)) for term, text in others])
    elif not fits(column_widths([[_plain(cell) for cell in row] for row in [titles, *others]])):
        page.tags([("Em " + words(_plain(row[0])), writer.text("; ".join(_named_cells(titles, row)))) for row in others])
    else:
        page.columns([[_plain(cell) for cell in row] for row in [titles, *others]])
