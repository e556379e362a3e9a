"""The pages as HTML, written by mandoc(1), and an index of them."""
import html
import os
import shutil
import subprocess

_STYLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "style.css")
_TITLES = {1: "Programs", 5: "Files", 7: "Concepts"}


def write(directory, man, mandoc, reference, functions):
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(directory)
    shutil.copy(_STYLE, directory)
    for name, section in reference.sections.items():
        page = os.path.join(man, "man%d" % section, "%s.%d" % (name, section))
        with open(os.path.join(directory, "%s.%d.html" % (name, section)), "wb") as file:
            options = ["-I", "os=tarn " + reference.version, "-O", "man=%N.%S.html,style=style.css"]
            subprocess.run([mandoc, "-T", "html", *options, page], stdout=file, check=True)
    with open(os.path.join(directory, "index.html"), "w", encoding="utf-8") as file:
        file.write(_index(reference, functions))


def _index(reference, functions):
    parts = []
    for section, title in _TITLES.items():
        parts.append(_list(title, [(name, section, "") for name, each in reference.sections.items() if each == section]))
    groups = {}
    for name in reference.functions:
        groups.setdefault(functions.group(name), []).append((name, 3, functions.summary(name)))
    parts += [_list(title, entries) for title, entries in groups.items()]
    return ('<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
            '<meta name="viewport" content="width=device-width, initial-scale=1">\n<title>tarn %s: reference</title>\n'
            '<link rel="stylesheet" href="style.css">\n</head>\n<body>\n<h1>tarn %s: reference</h1>\n%s</body>\n</html>\n'
            % (reference.version, reference.version, "".join(parts)))


def _list(title, entries):
    rows = "".join('<tr><td><a href="%s.%d.html">%s(%d)</a></td><td>%s</td></tr>\n'
                   % (name, section, name, section, html.escape(text)) for name, section, text in entries)
    return "<h2>%s</h2>\n<table>\n%s</table>\n" % (html.escape(title), rows)
