"""The pages as HTML, written by mandoc(1), and an index of them."""
import html
import os
import re
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor

_STYLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "style.css")
_TITLES = {7: "Concepts", 1: "Programs", 5: "Files"}


def write(directory, man, mandoc, reference, functions):
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(directory)
    shutil.copy(_STYLE, directory)

    def convert(name, section):
        page = os.path.join(man, "man%d" % section, "%s.%d" % (name, section))
        with open(os.path.join(directory, "%s.%d.html" % (name, section)), "wb") as file:
            options = ["-I", "os=tarn " + reference.version, "-O", "man=%N.%S.html,style=style.css"]
            subprocess.run([mandoc, "-T", "html", *options, page], stdout=file, check=True)

    with ThreadPoolExecutor(os.cpu_count()) as threads:
        list(threads.map(convert, reference.sections.keys(), reference.sections.values()))  # raises what was raised
    with open(os.path.join(directory, "index.html"), "w", encoding="utf-8") as file:
        file.write(_index(reference, functions, man))


def _index(reference, functions, man):
    groups = {title: [] for title in _TITLES.values()}
    for name, section in sorted(reference.sections.items(), key=lambda page: page[1] == 3):
        group = _TITLES.get(section) or functions.group(name)
        groups.setdefault(group, []).append((name, section, _summary(man, name, section)))
    parts = [_list(title, entries) for title, entries in groups.items()]
    return ('<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
            '<meta name="viewport" content="width=device-width, initial-scale=1">\n<title>tarn %s: reference</title>\n'
            '<link rel="stylesheet" href="style.css">\n</head>\n<body>\n<h1>tarn %s: reference</h1>\n%s</body>\n</html>\n'
            % (reference.version, reference.version, "".join(parts)))


def _summary(man, name, section):
    with open(os.path.join(man, "man%d" % section, "%s.%d" % (name, section)), encoding="utf-8") as file:
        return re.search(r"^\.Nd (.*)$", file.read(), re.MULTILINE)[1]


def _list(title, entries):
    rows = "".join('<tr><td><a href="%s.%d.html">%s(%d)</a></td><td>%s</td></tr>\n'
                   % (name, section, name, section, html.escape(text)) for name, section, text in entries)
    return "<h2>%s</h2>\n<table>\n%s</table>\n" % (html.escape(title), rows)
