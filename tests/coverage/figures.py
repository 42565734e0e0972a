"""What the tests have reached of the library, without what is named in a list.

   figures.py check LIST              fails where an entry of the list fits no line, or several
   figures.py measure LIST REPORT     also subtracts the entries from a JSON report of gcovr, names
                                      what is left, and fails below 100 % of the lines, 98 % of the
                                      branches, or where an entry covers more or less than is there

A list says "[file: ]text of the line: [line] [N branches]", and the reason for one or several
entries in the indented lines after them. Without its file, a line is looked for in all sources of
the library. Paths are relative to the current folder, the root of the tree.
"""

import json
import re
import sys
from pathlib import Path

LEAST_BRANCHES = 98.0
ENTRY = re.compile(r"(?:(\S+\.(?:cpp|h)): )?(.*): (?:(line)(?:, |$))?(?:(\d+) branch(?:es)?)?$")


class Entry:
    def __init__(self, match):
        self.file, self.text = match[1], match[2]
        self.line = match[3] is not None
        self.branches = int(match[4] or 0)
        self.number = 0

    def __str__(self):
        return f"{self.file}: {self.text}" if self.file else self.text


def read_list(path):
    entries, faults, unexplained = [], [], []
    with open(path, encoding="utf-8") as lines:
        for line in lines:
            match = ENTRY.match(line.rstrip("\n"))
            if line.startswith("#") or not line.strip():
                continue
            if line[0] == " ":
                unexplained = []
            elif match:
                entries.append(Entry(match))
                unexplained.append(entries[-1])
            else:
                faults.append(f"not understood: {line.rstrip()}")
    return entries, faults + [f"no reason: {entry}" for entry in unexplained]


def library_sources():
    rooms = Path("cmake/rooms.txt").read_text(encoding="utf-8").split() + ["include"]
    return [path for room in rooms for path in Path(room).rglob("*.[ch]*")]


def locate(entries):
    """Finds the only line that is an entry's text, and says of which entries there is none."""
    places = {}
    for path in library_sources():
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            places.setdefault(line.strip(), []).append((str(path), number))
    for entry in entries:
        fits = [place for place in places.get(entry.text, []) if entry.file in (None, place[0])]
        if len(fits) == 1:
            entry.file, entry.number = fits[0]
        else:
            yield f"fits {len(fits)} lines, not one: {entry}"


def count_missed(line):
    missed = sum(1 for branch in line["branches"] if branch["count"] == 0)
    return line["count"] == 0, missed


def describe(place, is_missed, branches):
    parts = ["line"] if is_missed else []
    if branches:
        parts.append(f"{branches} branches")
    return f"{place}: {', '.join(parts)}"


class Sum:
    def __init__(self):
        self.total = self.missed = self.excepted = 0

    def add(self, total, missed, excepted):
        self.total += total
        self.missed += missed
        self.excepted += excepted

    def percent(self):
        reachable = self.total - self.excepted
        return 100.0 * (reachable - self.missed) / reachable

    def figure(self, what):
        reachable = self.total - self.excepted
        return (f"{reachable - self.missed:,} of {reachable:,} {what} "
                f"({self.percent():.2f} %, {self.excepted} excepted)")


def measure(entries, report):
    lines, branches, faults, left = Sum(), Sum(), [], []
    known = {(entry.file, entry.number): entry for entry in entries}
    for file in report["files"]:
        for line in file["lines"]:
            if line["gcovr/noncode"]:
                continue
            is_missed, missed = count_missed(line)
            entry = known.pop((file["file"], line["line_number"]), None)
            fits = entry and (entry.line, entry.branches) == (is_missed, missed)
            if entry and not fits:
                faults.append(describe(f"excepted otherwise: {entry}", is_missed, missed))
            if not fits and (is_missed or missed):
                left.append(describe(f"{file['file']}:{line['line_number']}", is_missed, missed))
            lines.add(1, is_missed and not fits, is_missed and bool(fits))
            branches.add(len(line["branches"]), 0 if fits else missed, missed if fits else 0)
    faults += [f"excepted, but no code: {entry}" for entry in known.values()]
    return lines, branches, faults, left


def main(verb, path, report=None):
    entries, faults = read_list(path)
    faults += locate(entries)
    if verb == "measure" and not faults:
        with open(report, encoding="utf-8") as file:
            lines, branches, faults, left = measure(entries, json.load(file))
        for place in left:
            print(f"not reached: {place}")
        print(f"figure: {lines.figure('lines')}, {branches.figure('branches')}")
        if lines.missed or branches.percent() < LEAST_BRANCHES:
            faults.append("too little is reached")
    elif not faults:
        print(f"figure: {len(entries)} exceptions, each with its line and its reason")
    for fault in faults:
        print(f"{path}: {fault}", file=sys.stderr)
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
