"""Prints what an export of llvm-cov says was not reached. Ends with 0 if that is nothing."""

import glob
import json
import pathlib
import sys


def unreached(file):
    """Line, column and what did not happen there."""
    for line, column, count, has_count, is_entry, *_ in file["segments"]:
        if has_count and is_entry and count == 0:
            yield line, column, "never reached"
    for line, column, _, _, times_true, times_false, *_ in file["branches"]:
        if times_true == 0:
            yield line, column, "never true"
        if times_false == 0:
            yield line, column, "never false"
    for line, column, *_, conditions in file["mcdc_records"]:
        for number, decides in enumerate(conditions, 1):
            if not decides:
                yield line, column, "condition %d never decides alone" % number


# The build shortens the paths of sources; what is sure is their end, src/ROOM/FILE.
with open(sys.argv[1], encoding="utf-8") as export:
    files = {"/".join(pathlib.PurePath(file["filename"]).parts[-3:]): file for file in json.load(export)["data"][0]["files"]}

places = ["%s: not in the programs" % path for path in sorted(set(glob.glob("src/*/*.cpp")) - set(files))]
for path, file in sorted(files.items()):
    places += ["%s:%d:%d: %s" % (path, *place) for place in sorted(set(unreached(file)))]
for kind in "lines", "branches", "mcdc":
    covered, count = (sum(file["summary"][kind][key] for file in files.values()) for key in ("covered", "count"))
    print("%s: %d of %d reached" % (kind, covered, count))
    if covered != count or count == 0:
        places.append("%s: not all reached" % kind)
for place in places:
    print(place)
sys.exit(bool(places))
