"""Writes mdoc(7): escaping, running text with its cross references, and the blocks of a page."""
import re
import textwrap

_DELIMITERS = set("()[].,:;?!|")
_CODE = {"\\": r"\e", "-": r"\-", "^": r"\(ha", "~": r"\(ti", "'": r"\(aq", "`": r"\(ga"}
_OPENING, _CLOSING = "([", ")].,:;?!"


def escape(text):
    """Text of a text line."""
    text = text.replace("\\", r"\e")
    return r"\&" + text if text[:1] in (".", "'") else text


def code(text):
    """Text that must survive being copied: no character becomes a typographic one."""
    return "".join(_CODE.get(character, character) for character in text)


def word(text):
    """One argument of a macro. A word that is a macro's name or a delimiter is taken as text."""
    text = code(text).replace('"', r"\(dq")
    if not text or text in _DELIMITERS or re.fullmatch(r"[A-Z%][a-z0-9]{1,2}", text):
        text = r"\&" + text
    elif text[-1] in _DELIMITERS:
        text += r"\&"
    return '"%s"' % text if " " in text else text


def words(text):
    """Text as arguments of a macro."""
    return " ".join(word(each) for each in text.split())


def literal(text):
    """Lines as they are."""
    lines = []
    for line in text.rstrip("\n").split("\n"):
        line = code(line.rstrip())
        lines.append(r"\&" + line if line.startswith((".", r"\(aq")) else line)
    return "\n".join(lines)


class Writer:
    """Running text as mdoc, with the names of pages as cross references.

    pages  section of each page that there is, by its name
    own    name of the page that is written: it does not refer to itself
    """

    def __init__(self, pages, own):
        self._pages = pages
        self._own = own

    def _macro(self, token):
        """The macro for a token that is marked up, or None."""
        if token.startswith("`"):
            plain = token.strip("`")
            return self._reference(plain) if plain in self._pages else "Ql " + word(plain)
        match = re.fullmatch(r"([\w-]+)(\((\d)\))?", token)
        if match is None or (match[2] is None and not re.match("[Tt]arn[A-Z_]", token)):
            return None
        section = self._pages.get(match[1])
        if section is None or (match[2] and int(match[3]) != section):
            return None
        return self._reference(match[1])

    def _reference(self, name):
        section = self._pages[name]
        if name != self._own:
            return "Xr %s %d" % (name, section)
        return "Fn " + name if section == 3 else "Nm " + name

    def text(self, text):
        """One paragraph: a sentence begins a line, and so does what is marked up."""
        lines = []
        plain = []

        def flush():
            if plain:
                lines.extend(_sentences(" ".join(plain)))
                plain.clear()

        for token in re.findall(r"[^\s`]*`[^`]+`[^\s`]*|\S+", text):
            marked = re.search(r"`[^`]+`|[A-Za-z][\w-]*(\(\d\))?", token)
            macro = marked and self._macro(marked[0])
            before, after = (token[: marked.start()], token[marked.end():]) if macro else ("", "")
            if not macro or before.strip(_OPENING):
                plain.append(token.replace("`", ""))
                continue
            flush()
            closing = re.match("[%s]*" % re.escape(_CLOSING), after)[0]
            rest = after[len(closing):]
            if rest:
                macro += " Ns " + word(closing + rest)
                closing = ""
            name, _, arguments = macro.partition(" ")
            lines.append(".%s %s" % (name, " ".join([*before, arguments, *closing])))
        flush()
        return "\n".join(lines)


def _sentences(text):
    lines = []
    for sentence in re.split(r"(?<=[a-z0-9)\]\"'][.!?:])\s+(?=[A-Z\"'(])|(?<=[A-Z]{2}[.!?])\s+(?=[A-Z])", text):
        lines += [escape(line) for line in textwrap.wrap(sentence, 78, break_long_words=False, break_on_hyphens=False)]
    return lines


def column_widths(rows):
    """Characters that each column of a table takes, but the last: it takes what is left."""
    return [max(len(row[at]) for row in rows) for at in range(len(rows[0]) - 1)]


def fits(widths):
    """Whether these columns leave room for a last one in a terminal's 78 characters."""
    return sum(width + 4 for width in widths) <= 60


class Page:
    """The blocks of a page in their order. A paragraph macro is written only where one is needed."""

    def __init__(self, name, section, summary, date):
        self._lines = [
            ".Dd %s" % date, ".Dt %s %d" % (name.upper(), section), ".Os", ".Sh NAME", ".Nm %s" % name,
            ".Nd %s" % escape(summary)]
        self._fresh = False

    def heading(self, macro, title):
        self._lines.append(".%s %s" % (macro, words(title)))
        self._fresh = True

    def section(self, title):
        self.heading("Sh", title)

    def subsection(self, title):
        self.heading("Ss", title)

    def macros(self, *lines):
        self._lines.extend(lines)
        self._fresh = False

    def paragraph(self, lines):
        if not self._fresh:
            self._lines.append(".Pp")
        self.macros(lines)

    def display(self, text):
        self.macros(".Bd -literal -offset indent", literal(text), ".Ed")

    def tags(self, items):
        """A list of (head, body): the head is macro arguments, the body lines of mdoc."""
        self._lines.append(".Bl -tag -width Ds")
        for head, body in items:
            self.macros(".It " + head, *([body] if body else []))
        self.macros(".El")

    def columns(self, rows):
        """A table: rows of plain texts, the first of which is the titles."""
        widths = column_widths(rows)
        self._lines.append(".Bl -column %s" % " ".join('"%s"' % ("m" * width) for width in widths))
        titles, *others = rows
        self.macros(".It " + " Ta ".join("Em " + words(each) for each in titles))
        for row in others:
            self.macros(".It " + " Ta ".join(words(each) if each else r"\&" for each in row))
        self.macros(".El")

    def see_also(self, references):
        """References to (name, section), in the order that mdoc wants."""
        self.section("SEE ALSO")
        ordered = sorted(set(references), key=lambda each: (each[1], each[0].lower(), each[0]))
        self.macros(*(".Xr %s %d%s" % (name, section, "" if at == len(ordered) - 1 else " ,")
                      for at, (name, section) in enumerate(ordered)))

    def text(self):
        return "\n".join(self._lines) + "\n"
