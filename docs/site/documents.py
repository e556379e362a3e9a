"""A document in Markdown as HTML, its headings, and its text by sections for the search."""
import html
import os
import re
import sys
from dataclasses import dataclass, field

import pygments
import pygments.formatters
import pygments.lexers
from markdown_it import MarkdownIt

_WIDE_CELL = 30  # characters; a column with a longer text is not made narrower than some words
_LANGUAGES = {"": "text", "sh": "bash", "cpp": "c++"}


@dataclass
class Section:
    """A heading, and the words below it up to the next one."""

    level: int
    anchor: str
    title: str
    words: list = field(default_factory=list)


def slug(title, taken):
    """The anchor of a heading, as code hosts make it, so that one link fits both places."""
    anchor = re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")
    same = sum(each == anchor or re.fullmatch(re.escape(anchor) + r"-\d+", each) is not None for each in taken)
    return "%s-%d" % (anchor, same) if same else anchor


def scrolling(content):
    """What may be wider than the page: it scrolls by itself."""
    return '<div class="scroll">%s</div>\n' % content


def highlighted(code, language):
    """A block of code. Prompts, and what was printed, are marked, so that neither is copied."""
    if not language and code.startswith("$ "):
        language = "console"
    if language == "python" and code.startswith(">>> "):
        language = "pycon"
    lexer = pygments.lexers.get_lexer_by_name(_LANGUAGES.get(language, language), stripnl=False)
    marked = pygments.highlight(code, lexer, pygments.formatters.HtmlFormatter(nowrap=True))
    return '<div class="code"><pre><code>%s</code></pre></div>\n' % marked


class Document:
    """place is the document's path in the tree; target(path) gives the address of what a link leads to, or None; manual the
    address of each manual page by its name.
    """

    def __init__(self, place, text, target, manual):
        self._place, self._target, self._manual = place, target, manual
        self.sections = []
        reader = MarkdownIt("commonmark").enable("table")
        for rule in ("fence", "code_block", "table_open", "table_close", "html_block", "code_inline"):
            reader.renderer.rules[rule] = getattr(self, "_" + rule)
        tokens = reader.parse(text)
        self._prepare(tokens)
        self.html = reader.renderer.render(tokens, reader.options, {})

    @property
    def title(self):
        return self.sections[0].title

    @property
    def summary(self):
        """The first words of the document."""
        words = " ".join(next(section.words for section in self.sections if section.words))
        return words if len(words) <= 160 else words[:160].rpartition(" ")[0] + " ..."

    def _address(self, link):
        """Of what a link in this document leads to."""
        if re.match(r"https?:", link):
            return link
        path, _, anchor = link.partition("#")
        if not path:
            return link
        path = os.path.normpath(os.path.join(os.path.dirname(self._place), path))
        address = self._target(path)
        if address is None:
            sys.exit("%s: a link leads to %s; expected a document or a picture of the site" % (self._place, link))
        return address + ("#" + anchor if anchor else "")

    def _prepare(self, tokens):
        """Gives headings their anchors, leads links to the site's pages, and gathers the text."""
        for before, token in zip([None, *tokens], tokens):
            if token.type != "inline":
                continue
            text = re.sub(r"\s+", " ", "".join(each.content or " " for each in token.children)).strip()
            if before.type == "heading_open":
                anchor = slug(text, [section.anchor for section in self.sections])
                before.attrSet("id", anchor)
                self.sections.append(Section(int(before.tag[1]), anchor, text))
            else:
                self.sections[-1].words.append(text)
            if before.type == "td_open" and len(text) > _WIDE_CELL:
                before.attrSet("class", "prose")
            inside = False
            for child in token.children:
                if child.type == "link_open":
                    child.attrSet("href", self._address(child.attrGet("href")))
                    inside = True
                elif child.type == "link_close":
                    inside = False
                elif child.type == "code_inline":
                    child.meta = {"linked": inside or before.type == "heading_open"}

    def _fence(self, tokens, index, options, environment):
        return highlighted(tokens[index].content, tokens[index].info.strip())

    def _code_block(self, tokens, index, options, environment):
        return highlighted(tokens[index].content, "")

    def _table_open(self, tokens, index, options, environment):
        """One whose columns have no titles has no line for them."""
        titles = tokens[index:next(at for at in range(index, len(tokens)) if tokens[at].type == "thead_close")]
        kind = "" if any(token.content for token in titles) else ' class="bare"'
        return '<div class="scroll"><table%s>\n' % kind

    def _table_close(self, tokens, index, options, environment):
        return "</table></div>\n"

    def _html_block(self, tokens, index, options, environment):
        """A picture, the only thing that documents have in HTML: one for light pages and one for dark ones."""
        text = tokens[index].content.strip()
        if not re.fullmatch(r"<picture>.*</picture>", text, re.DOTALL):
            sys.exit("%s: expected no HTML but <picture>; got %s" % (self._place, text))
        text = re.sub(r'(src|srcset)="([^"]+)"', lambda found: '%s="%s"' % (found[1], self._address(found[2])), text)
        return scrolling(text)

    def _code_inline(self, tokens, index, options, environment):
        token = tokens[index]
        code = "<code>%s</code>" % html.escape(token.content, quote=False)
        address = None if token.meta.get("linked") else self._manual.get(token.content)
        return '<a href="%s">%s</a>' % (address, code) if address else code
