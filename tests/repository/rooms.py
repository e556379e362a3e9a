"""Compares the table of rooms in ARCHITECTURE.md with what the sources include, and what those in Python read: every
arrow is in it, and none points down.
"""
import os
import re
import subprocess
import sys

rows = re.findall(r"^\| `((?:src|kit)/\w+)` \|.*\|(.*)\|$", open("ARCHITECTURE.md").read(), re.MULTILINE)
rooms = [room for room, _ in rows]
stated = {(room, used) for room, uses in rows for used in re.findall(r"`([^`]+)`", uses)}

sources = [path for path in subprocess.check_output(["git", "ls-files", "src", "kit"], text=True).split()
           if path.endswith((".c", ".cpp", ".h", ".hpp")) and "/example/" not in path]


def room_of(path):
    return "/".join(path.split("/")[:2])


def included_room(path, header):
    """The room of a header: the includer's own, the room that the include names, or where an installed header lies."""
    if os.path.exists(os.path.join(os.path.dirname(path), header)):
        return room_of(path)
    if "/" in header:
        return "kit/" + header.split("/")[0]
    public = [room_of(other) for other in sources if os.path.basename(other) == header]
    return next((room for room in public if room in rooms[:3] or len(public) == 1), None)


found = set()
for path in sources:
    for header in re.findall(r'^#include "([^"]+)"', open(path).read(), re.MULTILINE):
        found.add((room_of(path), included_room(path, header)))
for path in subprocess.check_output(["git", "ls-files", "kit/python"], text=True).split():
    for used in re.findall(r'"((?:src|kit)/\w+)/', open(path).read()):
        found.add((room_of(path), used))
found = {(room, used) for room, used in found if used is not None and used != room}

wrong = ["%s uses %s, and ARCHITECTURE.md does not say so" % arrow for arrow in sorted(found - stated)]
wrong += ["ARCHITECTURE.md lets %s use %s, and nothing does" % arrow for arrow in sorted(stated - found)]
wrong += ["%s uses %s, which is not above it" % (room, used) for room, used in sorted(found)
          if room in rooms and used in rooms and rooms.index(used) >= rooms.index(room)]
all_rooms = {room for room, _ in found} | {room_of(path) for path in sources}
wrong += ["%s is not in ARCHITECTURE.md" % room for room in sorted(all_rooms - set(rooms))]
print("\n".join(wrong))
sys.exit(bool(wrong))
