"""The manual pages as HTML, which mandoc(1) writes, and the index of them."""
import html
import os
import re
import subprocess
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

from documents import highlighted, scrolling

@dataclass
class ManualPage:
    name: str
    section: int
    group: str
    summary: str
    html: str = ""

    @property
    def file(self):
        return "%s.%d.html" % (self.name, self.section)

    @property
    def title(self):
        return "%s(%d)" % (self.name, self.section)

    def in_python(self):
        """The line in Python that a function's page ends its examples with, so that it is found by its method."""
        if self.section != 3:
            return ""
        return html.unescape(re.sub("<.*?>", "", re.findall(r"<pre>(.*?)</pre>", self.html, re.DOTALL)[-1])).strip()

    def names(self):
        """What documents call it, the words for a shell included. The name alone of tarn(7) is also the Python package's."""
        names = [self.title, "man %s" % self.name, "man %d %s" % (self.section, self.name)]
        if self.section != 7:
            names.append(self.name)
        if self.name.startswith("tarnctl-"):
            names.append(self.name.replace("-", " ", 1))
        return names


def read(reference, entries, mandoc):
    """The pages of a directory that docs/reference/generate has written, with what its pages.json says of them."""
    pages = [ManualPage(**entry) for entry in entries]

    def convert(page):
        path = os.path.join(reference, "man", "man%d" % page.section, "%s.%d" % (page.name, page.section))
        done = subprocess.run([mandoc, "-T", "html", "-O", "fragment,man=%N.%S.html", path], capture_output=True, check=True)
        page.html = _within_a_page(done.stdout.decode())

    with ThreadPoolExecutor(os.cpu_count()) as threads:
        list(threads.map(convert, pages))  # raises what was raised
    return pages


def _within_a_page(text):
    """Without the lines at head and foot, below a heading of the page's own, and with wide parts that scroll."""
    text = re.sub(r'<table class="(head|foot)">.*?</table>\n', "", text, flags=re.DOTALL)
    text = re.sub(r"<(/?)h([12])\b", lambda found: "<%sh%d" % (found[1], int(found[2]) + 1), text)
    text = re.sub(r'<section class="Sh">\n<h2 class="Sh" id="NAME">.*?</section>\n', "", text, count=1, flags=re.DOTALL)
    text = re.sub(r'<table class="Bl-column">.*?</table>', lambda table: scrolling(table[0]), text, flags=re.DOTALL)
    text = re.sub(r"&#x2018;(<code [^>]*>[^<]*</code>)&#x2019;", r"\1", text)  # code is seen to be code
    text = re.sub(r'(<h2 class="Sh"[^>]*><a[^>]*>)([^<]*)', lambda found: found[1] + found[2].capitalize(), text)
    text = re.sub(r'<section class="Sh">(?=\n<h2 class="Sh" id="SYNOPSIS">)', '<section class="Sh synopsis">', text)
    return re.sub(r"<pre>(.*?)</pre>", _code, text, flags=re.DOTALL)


def _code(block):
    """An example as the documents show theirs; what has elements of its own stays as it is."""
    if "<" in block[1]:
        return '<div class="code">%s</div>' % block[0]
    text = html.unescape(block[1]).strip("\n") + "\n"
    language = "c" if text.startswith("#include") else "python" if text.startswith("tarn.") else "text"
    return highlighted(text, language)


def groups(pages):
    """The pages of each group, in their order."""
    result = {}
    for page in pages:
        result.setdefault(page.group, []).append(page)
    return result


def breakable(name):
    """A function's name, which may go on in another line between its words."""
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=_)", "<wbr>", html.escape(name))


def anchor(group):
    return re.sub(r"\W+", "-", group.lower())


def index(pages):
    """The body of the page that leads to all of them."""
    parts = []
    for group, members in groups(pages).items():
        rows = "".join('<tr><td><a href="%s"><code>%s</code></a></td><td>%s</td></tr>\n'
                       % (page.file, breakable(page.name), html.escape(page.summary)) for page in members)
        table = scrolling('<table class="bare">\n%s</table>' % rows)
        parts.append('<h2 id="%s">%s</h2>\n%s' % (anchor(group), html.escape(group), table))
    return "".join(parts)
