#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails on a source without a licence line, over 600 lines or in no target; reports the lengths of functions.

Usage: scripts/check-sources.py [compile_commands.json]
"""

import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LICENCE = "SPDX-License-Identifier: GPL-3.0-or-later"
FILE_LIMIT = 600
FUNCTION_LIMIT = 60
CODE = (".cpp", ".h")
LICENSED = CODE + (".py", ".sh", ".cmake", "CMakeLists.txt", "Makefile", ".ci/run")
# Fuzzers are built by one compiler only, and only when asked for.
OPTIONAL = ("fuzz/",)


def tracked():
    command = ["git", "-c", "safe.directory=*", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    names = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    return [name for name in names if name and (ROOT / name).is_file()]


def file_faults(path, lines):
    faults = []
    if not any(LICENCE in line for line in lines[:2]):
        faults.append(f"{path}:1: no licence line ({LICENCE})")
    if path.endswith(CODE) and len(lines) > FILE_LIMIT:
        faults.append(f"{path}: {len(lines)} lines, the limit is {FILE_LIMIT}")
    return faults


def uncompiled(paths, database):
    commands = json.loads(Path(database).read_text(encoding="utf-8"))
    compiled = {str(Path(entry["directory"], entry["file"]).resolve()) for entry in commands}
    return [f"{path}: in no target" for path in paths
            if path.endswith(".cpp") and not path.startswith(OPTIONAL) and str(ROOT / path) not in compiled]


def functions(path, lines):
    """Bodies by the layout that clang-format gives them: the braces of a function stand alone, equally indented."""
    opened = {}
    for number, line in enumerate(lines, 1):
        if match := re.fullmatch(r"( *)\{", line):
            opened[match.group(1)] = number
        elif (match := re.match(r"( *)\}", line)) and (start := opened.pop(match.group(1), None)) is not None:
            yield number - start - 1, f"{path}:{start}"


def report_functions(found):
    lengths = sorted(length for length, _ in found)
    if not lengths:
        return
    print(f"functions: {len(lengths)} of more than one line, median {lengths[len(lengths) // 2]} lines, "
          f"nine in ten under {lengths[len(lengths) * 9 // 10] + 1}")
    for length, place in sorted(found, reverse=True):
        if length > FUNCTION_LIMIT:
            print(f"  {place}: {length} lines")


def main():
    faults, found, sources = [], [], [path for path in tracked() if path.endswith(LICENSED)]
    for path in sources:
        lines = (ROOT / path).read_text(encoding="utf-8").splitlines()
        faults += file_faults(path, lines)
        if path.endswith(CODE):
            found += functions(path, lines)
    if len(sys.argv) > 1:
        faults += uncompiled(sources, sys.argv[1])
    report_functions(found)
    print("\n".join(faults) if faults else f"sources: {len(sources)} files in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
