"""Reads the public headers: each function's prototype, and what its comment says of it."""
import re
from dataclasses import dataclass, field


@dataclass
class Parameter:
    name: str
    declaration: str  # "const char *callerId"
    type: str  # "const char *"


@dataclass
class Function:
    name: str
    header: str
    result: str
    parameters: list
    description: list = field(default_factory=list)  # paragraphs in front of and behind the arguments
    arguments: dict = field(default_factory=dict)  # "in: radio, counted from 1", by name
    returns: str = ""


@dataclass
class Chapter:
    """A part of the comment at the head of a file: its title, and paragraphs and pairs of term and text."""
    title: str
    blocks: list


def comment_lines(comment):
    """A comment's lines without its marks."""
    lines = comment.strip()[2:-2].rstrip().split("\n")
    return [re.sub(r"^ \* ?", "", line).rstrip() if at else line.strip() for at, line in enumerate(lines)]


def _paragraphs(lines):
    return [part for part in re.split(r"\n(?:[ \t]*\n)+", "\n".join(lines)) if part.strip()]


def joined(text):
    return " ".join(text.split())


def blocks_of(block):
    """An indented block: pairs where a line is a term, two spaces and a text, and paragraphs."""
    lines = block.split("\n")
    least = min(len(line) - len(line.lstrip()) for line in lines)
    blocks = []
    for line in lines:
        match = re.match(r"(\S+(?: \S+)*)  +(\S.*)", line[least:])
        if match and (not blocks or isinstance(blocks[-1], list)):
            blocks = blocks or [[]]
            blocks[-1].append([match[1], match[2]])
        elif blocks and isinstance(blocks[-1], list) and line[least:].startswith("  "):
            blocks[-1][-1][1] += " " + line.strip()
        elif blocks and isinstance(blocks[-1], str):
            blocks[-1] += " " + joined(line)
        else:
            blocks.append(joined(line))
    return blocks


def _function(header, comment, result, name, parameters):
    function = Function(name, header, joined(result), [_parameter(each) for each in parameters.split(",") if each != "void"])
    for paragraph in _paragraphs(comment_lines(comment)):
        for content in blocks_of(paragraph) if paragraph.startswith("  ") else [joined(paragraph)]:
            if isinstance(content, list):
                function.arguments.update(content)
            elif content.startswith("Returns "):
                function.returns = content
            else:
                function.description.append(content)
    return function


def _parameter(text):
    text = joined(text)
    match = re.fullmatch(r"(.*?)(\w+)", text)
    kind = re.sub(r"\s*\*\s*$", " *", match[1]).rstrip() if "*" in match[1] else match[1].strip()
    return Parameter(match[2], kind + ("" if kind.endswith("*") else " ") + match[2], kind)


def read_functions(header, text):
    """The exported functions of a header, by name, in their order."""
    pattern = r"(/\*(?:(?!\*/).)*\*/)\nTARN_EXPORT ([\w *]+?)(\w+)\(([^)]*)\);"
    functions = {}
    for comment, result, name, parameters in re.findall(pattern, text, re.DOTALL):
        functions[name] = _function(header, comment, result, name, parameters)
    for function in functions.values():
        _take_over(function, functions)
    return functions


def _take_over(function, functions):
    """`Arguments and results are those of NAME` is what it says."""
    match = re.search(r"Arguments and results are those of (\w+)", " ".join(function.description))
    if match:
        function.arguments = functions[match[1]].arguments
        function.returns = functions[match[1]].returns


def read_chapters(text):
    """The comment at the head of a file. What has no title comes first, under an empty one."""
    chapters = [Chapter("", [])]
    lines = comment_lines(re.match(r"/\*.*?\*/", text, re.DOTALL)[0])
    for at, line in enumerate(lines):  # a title is a line that an indented one follows
        if line and line[0] != " " and at + 1 < len(lines) and lines[at + 1].startswith("  "):
            lines[at] = "\n=" + line + "\n"
    for paragraph in _paragraphs("\n".join(lines).split("\n")):
        if paragraph.lstrip("\n").startswith("="):
            chapters.append(Chapter(paragraph.strip()[1:], []))
        else:
            content = paragraph.strip("\n")
            chapters[-1].blocks += blocks_of(content) if content.startswith("  ") else [joined(content)]
    return chapters
