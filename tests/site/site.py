"""One check of the site: site.py CHECK SITE REFERENCE."""
import functools
import glob
import html.parser
import json
import os
import re
import sys

_SOURCE = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
_VOID = {"area", "br", "col", "hr", "img", "input", "link", "meta", "source", "wbr"}


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Page(html.parser.HTMLParser):
    """What one page has: links, what it loads, anchors, and what is wrong with its elements."""

    def __init__(self, path):
        super().__init__()
        self.links, self.loaded, self.anchors, self.wrong = [], [], [], []
        self._open, self._headings = [], 0
        self.feed(read(path))
        self.wrong += ["<%s> is not closed" % each for each in self._open]
        self.wrong += ["the anchor %s is there twice" % each for each in set(self.anchors) if self.anchors.count(each) > 1]
        if self._headings != 1:
            self.wrong.append("%d headings of the first level, expected 1" % self._headings)

    def handle_starttag(self, tag, attrs):
        if tag not in _VOID:
            self._open.append(tag)
        self._headings += tag == "h1"
        values = dict(attrs)
        if "id" in values:
            self.anchors.append(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        elif "src" in values or "srcset" in values or (tag == "link" and "href" in values):
            self.loaded += [values[key] for key in ("src", "srcset", "href") if key in values]
        if tag == "img" and "alt" not in values:
            self.wrong.append("a picture without a text in its place: %s" % values["src"])
        if "style" in values or any(key.startswith("on") for key in values):
            self.wrong.append("<%s> has a style or a script of its own" % tag)

    def handle_startendtag(self, tag, attrs):
        self.handle_starttag(tag, attrs)
        if tag not in _VOID:
            self._open.pop()

    def handle_endtag(self, tag):
        if tag in _VOID:
            return
        if not self._open or self._open[-1] != tag:
            self.wrong.append("</%s> where %s is open" % (tag, self._open[-1:] or "nothing"))
        else:
            self._open.pop()


class Site:
    def __init__(self, directory, reference):
        self.directory = directory
        self.manual = json.loads(read(os.path.join(reference, "pages.json")))

    @functools.cached_property
    def pages(self):
        """By their paths."""
        found = glob.glob(os.path.join(self.directory, "**", "*.html"), recursive=True)
        return {os.path.relpath(path, self.directory): Page(path) for path in found}

    def target(self, page, link):
        """Path and anchor that a link of a page leads to."""
        path, _, anchor = link.partition("#")
        return os.path.normpath(os.path.join(os.path.dirname(page), path)) if path else page, anchor

    def is_there(self, page, link):
        path, anchor = self.target(page, link)
        if path in self.pages:
            return not anchor or anchor in self.pages[path].anchors
        return not anchor and os.path.isfile(os.path.join(self.directory, path))


def expect_none(found):
    assert not found, "\n".join(found[:20])


def links_resolve(site):
    expect_none(["%s: %s" % (name, link) for name, page in site.pages.items() for link in page.links + page.loaded
                 if not site.is_there(name, link)])
    reached, waiting = set(), ["index.html"]
    while waiting:
        name = waiting.pop()
        if name in site.pages and name not in reached:
            reached.add(name)
            waiting += [site.target(name, link)[0] for link in site.pages[name].links]
    expect_none(["nothing leads to %s" % name for name in site.pages if name not in reached])


def pages_are_sound(site):
    """And they load only files that are beside them: whoever reads them tells nobody, and needs no network."""
    expect_none(["%s: %s" % (name, wrong) for name, page in site.pages.items() for wrong in page.wrong])
    expect_none(["%s loads %s" % (name, each) for name, page in site.pages.items() for each in page.loaded
                 if re.match(r"\w+:|//", each)])
    for name in ("style.css", "site.js", "search.js"):
        outside = re.findall(r"url\(|@import|https?://|fetch\(|XMLHttpRequest", read(os.path.join(site.directory, name)))
        assert not outside, "%s: %s" % (name, outside)


def nothing_is_left_out(site):
    manual = {"reference/%s.%d.html" % (page["name"], page["section"]) for page in site.manual}
    functions = set(re.findall(r"^ *([tT]arn\w+);", read(os.path.join(_SOURCE, "src", "libtarn.map")), re.MULTILINE))
    assert functions and {page["name"] for page in site.manual} >= functions
    expect_none(["%s is missing" % page for page in manual if page not in site.pages])
    text = read(os.path.join(site.directory, "search.js"))
    entries = json.loads(re.fullmatch(r"window\.tarnPages = (.*);\n", text, re.DOTALL)[1])
    expect_none(["the search leads to %s" % address for _, address, _, _ in entries if not site.is_there("", address)])
    searched = {address.partition("#")[0] for _, address, _, _ in entries}
    expect_none(["%s is not searched" % page for page in site.pages
                 if page not in searched and page != "reference/index.html"])
    shown = set(read(os.path.join(_SOURCE, "docs", "site", "contents.py")).split('"'))
    patterns = ("*.md", "docs/*.md", "kit/*/README.md", "packaging/*/README.md")
    documents = [os.path.relpath(path, _SOURCE) for each in patterns for path in glob.glob(os.path.join(_SOURCE, each))]
    assert len(documents) > 15, documents
    expect_none(["%s is no page of the site" % each for each in documents if each not in shown])


def packages_are_named(site):
    control = read(os.path.join(_SOURCE, "debian", "control"))
    packages = re.findall(r"^Package: (\S+)$", control, re.MULTILINE)
    assert len(packages) > 5, packages
    rows = re.findall(r"^\| (`.*?) \|", read(os.path.join(_SOURCE, "docs", "installing.md")), re.MULTILINE)
    named = re.findall(r"`([^`]+)`", " ".join(rows))
    assert sorted(named) == sorted(packages), set(named) ^ set(packages)


# Each colour that something is written in, and those that it is written on.
_WRITTEN = ("text", "quiet", "link")
_ON = ("page", "soft", "mark")
_CODE = ("text", "keyword", "string", "number", "comment", "name")
_LEAST = 4.5  # the contrast that WCAG 2 demands of text at level AA


def luminance(colour):
    parts = [int(colour[at:at + 2], 16) / 255 for at in (1, 3, 5)]
    red, green, blue = (part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts)
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(one, other):
    darker, lighter = sorted((luminance(one), luminance(other)))
    return (lighter + 0.05) / (darker + 0.05)


def contrast_is_enough(site):
    style = read(os.path.join(site.directory, "style.css"))
    blocks = re.findall(r":root \{(.*?)\}", style, re.DOTALL)
    themes = [dict(re.findall(r"--(\w+): (#[0-9a-f]{6});", block)) for block in blocks]
    assert len(themes) == 2 and themes[0].keys() == themes[1].keys() == {*_WRITTEN, *_ON, *_CODE, "line"}, themes
    pairs = [(text, page) for text in _WRITTEN for page in _ON] + [(text, "soft") for text in _CODE]
    compared = [(text, page, contrast(colours[text], colours[page])) for colours in themes for text, page in pairs]
    expect_none(["%s on %s: %.2f" % each for each in compared if each[2] < _LEAST])
    others = re.findall(r"color: (#\w+)", re.sub(r"@media print \{.*", "", style, flags=re.DOTALL))
    assert not others, "colours without a name are not compared: %s" % others


check, *arguments = sys.argv[1:]
globals()[check](Site(*arguments))
