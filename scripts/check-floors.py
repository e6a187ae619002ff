#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a source includes, or a target links, what its room must not know.

The build already refuses most of that; this check also sees what the build cannot: a widget header behind the
include path of a room without widgets, a link list that has grown upwards, a folder that belongs to no room.
"""

import re
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent


class Room(NamedTuple):
    folder: str
    prefix: str  # what its headers are included by; empty: by nobody
    uses: str  # the rooms below that it may use, and through them theirs
    qt: bool = False


ROOMS = {
    # ground
    "sdk": Room("sdk/ek", "ek", ""),
    "platform": Room("platform", "platform", ""),
    "xml": Room("xml", "xml", "platform"),
    # suite
    "debugmanager": Room("suite/debugmanager", "debugmanager", "platform"),
    "servicefuncs": Room("suite/servicefuncs", "servicefuncs", "sdk"),
    "ekdatapr": Room("suite/ekdatapr", "ekdatapr", "sdk platform servicefuncs"),
    "effectmanager": Room("suite/effectmanager", "effectmanager", "sdk xml servicefuncs debugmanager"),
    "skinmanager": Room("suite/skinmanager", "skinmanager", "sdk platform xml"),
    # framework
    "framework": Room("framework", "framework", "sdk platform servicefuncs"),
    # editor
    "background": Room("editor/background", "background", "platform debugmanager"),
    "dsp": Room("editor/dsp", "dsp", "sdk servicefuncs"),
    "resources": Room("editor/resources", "resources", "sdk"),
    "storage": Room("editor/storage", "storage", "background framework ekdatapr servicefuncs debugmanager"),
    "waveedit": Room("editor/waveedit", "waveedit", "storage framework dsp"),
    "waveview": Room("editor/waveview", "waveview", "waveedit effectmanager resources"),
    "app": Room("editor/app", "app", "waveedit resources framework"),
    # screens
    "skincontrols": Room("suite/skincontrols", "skincontrols", "skinmanager", qt=True),
    "ekdatapr/ui": Room("suite/ekdatapr/ui", "ekdatapr/ui", "ekdatapr", qt=True),
    "framework/ui": Room("framework/ui", "framework/ui", "framework skincontrols effectmanager", qt=True),
    "background/ui": Room("editor/background/ui", "background/ui", "background", qt=True),
    "waveedit/ui": Room("editor/waveedit/ui", "waveedit/ui", "waveedit framework/ui", qt=True),
    "waveview/ui": Room("editor/waveview/ui", "waveview/ui", "waveview waveedit/ui framework/ui resources", qt=True),
    "app/ui": Room("editor/app/ui", "app/ui",
                   "app waveview/ui framework/ui background/ui ekdatapr/ui resources", qt=True),
    # programs
    "exports": Room("editor/app/exports", "", "app/ui", qt=True),
    "devices": Room("host/devices", "devices", "sdk platform servicefuncs debugmanager"),
    "host": Room("host", "host", "sdk xml platform debugmanager ekdatapr skinmanager skincontrols devices", qt=True),
    "ekbatch": Room("tools/ekbatch", "", "app waveview devices"),
}
# Tests, benchmarks and fuzzers may look into every room.
OUTSIDE = ("tests/", "bench/", "fuzz/")
# The one header of the contract that is made of a Qt class.
QT_HEADERS = {"ek/Message.h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
QT_INCLUDE = re.compile(r"^(Q[A-Z]\w*|Qt\w+/\w+|Qt\w*|qt\w+)(\.h)?$")
LIBRARY = re.compile(r'^ek_(?:headers|library|qt_library)\(\s*(\w+)\s+([^\s)]+)\s+([^\s)]+)([^)]*)\)', re.MULTILINE)


def reachable(name, seen=None):
    seen = set() if seen is None else seen
    for used in ROOMS[name].uses.split():
        if used not in seen:
            seen.add(used)
            reachable(used, seen)
    return seen


REACHABLE = {name: reachable(name) | {name} for name in ROOMS}


def longest(names, text):
    return max((name for name in names if name and text.startswith(name + "/")), key=len, default=None)


def room_of_file(path):
    folder = longest([room.folder for room in ROOMS.values()], path)
    return next((name for name, room in ROOMS.items() if room.folder == folder), None)


def room_of_include(header):
    prefix = longest([room.prefix for room in ROOMS.values()], header)
    return next((name for name, room in ROOMS.items() if room.prefix == prefix), None) if prefix else None


def tracked(*patterns):
    command = ["git", "-c", "safe.directory=*", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--",
               *patterns]
    names = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    return [name for name in names if name and (ROOT / name).is_file()]


def include_faults(path):
    room = room_of_file(path)
    if room is None:
        return [f"{path}: this folder is no room; give it a line in {Path(__file__).name}"]
    faults = []
    text = (ROOT / path).read_text(encoding="utf-8")
    for match in INCLUDE.finditer(text):
        bracket, header = match.groups()
        line = text.count("\n", 0, match.start(2)) + 1
        is_qt = (bracket == "<" and QT_INCLUDE.match(header)) or header in QT_HEADERS
        if is_qt and not ROOMS[room].qt and path.removeprefix("sdk/") not in QT_HEADERS:
            faults.append(f"{path}:{line}: {header}: {room} knows no Qt")
        if bracket == "<" or "/" not in header:
            continue
        used = room_of_include(header)
        if used is None:
            faults.append(f"{path}:{line}: {header}: no room of that name")
        elif used not in REACHABLE[room]:
            faults.append(f"{path}:{line}: {header}: {room} may not use {used}")
    return faults


def link_faults():
    lists = [ROOT / name for name in ("CMakeLists.txt", "host/CMakeLists.txt", "tools/ekbatch/CMakeLists.txt")]
    text = re.sub(r"#.*", "", "\n".join(path.read_text(encoding="utf-8") for path in lists))
    calls = [(target, folder, rest) for target, folder, _, rest in LIBRARY.findall(text)]
    rooms = {target: room_of_file(folder + "/") for target, folder, _ in calls}
    faults = []
    for target, _, rest in calls:
        for used in re.findall(r"\bek_\w+", rest):
            if rooms[target] is None or rooms.get(used) not in REACHABLE[rooms[target]]:
                faults.append(f"CMakeLists.txt: {target} may not link {used}")
    return faults


def table_faults():
    return [f"{name} has no Qt but uses {used}, which has"
            for name, room in ROOMS.items() if not room.qt
            for used in REACHABLE[name] if ROOMS[used].qt]


def main():
    faults = table_faults() + link_faults()
    sources = [path for path in tracked("*.cpp", "*.h") if not path.startswith(OUTSIDE)]
    for path in sources:
        faults += include_faults(path)
    print("\n".join(faults) if faults else f"floors: {len(sources)} files keep to their rooms")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
