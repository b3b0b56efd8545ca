"""Checks the includes of the sources against the table of geometry/README.md: layers.py <root of the sources>

The table has a row for each subject: its headers, and the subjects that it may use. A source belongs to the row of its
name. Every row may use the row "Shared by all". Prints one line for each fault.
"""

import pathlib
import re
import sys

LIBRARY = ("geometry", "geometry/internal", "Utility")
USERS = ("benchmarks", "debuggers", "docs", "examples", "extras", "README.md", "CONTRIBUTING.md")
SHARED = "shared by all"
# If fewer includes are found, the search itself is broken.
FEWEST_INCLUDES = 200
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


def read_sources(root):
    """The texts of all files that are checked, by path."""
    paths = [path for folder in LIBRARY for suffix in ("h", "cpp") for path in (root / folder).glob("*." + suffix)]
    for user in USERS:
        start = root / user
        paths += [start] if start.is_file() else [path for path in start.rglob("*") if path.is_file()]
    texts = {}
    for path in sorted(set(paths)):
        try:
            texts[path.relative_to(root).as_posix()] = path.read_text(encoding="utf-8")
        except UnicodeDecodeError:
            pass  # a picture
    return texts


def get_name(path):
    """How the table spells a file: geometry/internal/Lanes.h is internal/Lanes."""
    return path.removeprefix("geometry/").rsplit(".", 1)[0]


def read_table(readme):
    """The rows as {subject: (names of headers, subjects that it may use)}, subjects in lower case."""
    rows = {}
    _, _, table = readme.partition("| Subject | Headers | May use |\n")
    for line in table.split("\n\n")[0].split("\n")[1:]:
        subject, headers, uses = (cell.strip() for cell in line.strip().strip("|").split("|"))
        used = set() if uses.lower() == "nothing" else {use.strip().lower() for use in uses.split(",")}
        rows[subject.lower()] = (set(re.findall(r"`([^`]+)`", headers)), used)
    return rows


def find_cycle(rows):
    """A subject that may use itself through others, or None."""
    for start in rows:
        reached, waiting = set(), [start]
        while waiting:
            for use in rows[waiting.pop()][1] & rows.keys():
                if use == start:
                    return start
                if use not in reached:
                    reached.add(use)
                    waiting.append(use)
    return None


def check_table(rows, sources):
    """Faults of the table, and the subject of each name."""
    faults = []
    subjects = {}
    for subject, (names, uses) in rows.items():
        for name in sorted(names):
            if name in subjects:
                faults.append(f"geometry/README.md: {name} is in two rows")
            subjects[name] = subject
        faults += [f"geometry/README.md: {subject} may use {use}, which is no row" for use in sorted(uses - rows.keys())]
    existing = {get_name(path) for path in sources if is_of_library(path)}
    faults += [f"geometry/README.md: there is no file {name}" for name in sorted(subjects.keys() - existing)]
    faults += [f"geometry/README.md: {name} is in no row" for name in sorted(existing - subjects.keys())]
    cycle = find_cycle(rows)
    if cycle:
        faults.append(f"geometry/README.md: {cycle} may use itself through others")
    return faults, subjects


def is_of_library(path):
    return path.rpartition("/")[0] in LIBRARY


def judge(path, included, is_quoted, rows, subjects):
    """What is wrong with an include, or None."""
    is_internal = included.startswith("geometry/internal/")
    if not is_of_library(path):
        if is_internal:
            return "is internal to the library"
        known = not is_of_library(included) or get_name(included) in subjects
        return None if known else "does not exist"
    if not is_of_library(included):
        return "is not of the library" if is_quoted else None
    user, used = subjects.get(get_name(path)), subjects.get(get_name(included))
    if used is None:
        return "is in no row of geometry/README.md"
    if used in (user, SHARED) or user is None:
        return None
    if used not in rows[user][1]:
        return f"is of {used}, which {user} may not use"
    is_public_header = path.endswith(".h") and not path.startswith("geometry/internal/")
    return f"is internal to {used}" if is_internal and is_public_header else None


def check(sources, readme):
    """All faults, and the number of includes that were checked."""
    rows = read_table(readme)
    faults, subjects = check_table(rows, sources)
    count = 0
    for path, text in sources.items():
        for quote, included in INCLUDE.findall(text):
            fault = judge(path, included, quote == '"' and path.startswith(LIBRARY), rows, subjects)
            count += is_of_library(included)
            if fault:
                faults.append(f"{path}: {included} {fault}")
    return faults, count


def find_missed(sources, readme):
    """Faults that are planted and not found."""
    rows = read_table(readme)
    headers = [(subject, name) for subject in rows for name in sorted(rows[subject][0])]
    public = [(subject, name) for subject, name in headers if "/" not in name]
    internal = [(subject, name) for subject, name in headers if name.startswith("internal/")]
    upward = next((user, used) for user_subject, user in public for used_subject, used in public
                  if used_subject not in rows[user_subject][1] | {user_subject, SHARED})
    foreign = next((user, used) for user_subject, user in public for used_subject, used in internal
                   if used_subject in rows[user_subject][1] - {SHARED})
    planted = [(f"geometry/{user}.h", f'#include "geometry/{used}.h"') for user, used in (upward, foreign)]
    planted += [
        (f"geometry/{upward[0]}.h", '#include "extras/Stream.h"'),
        ("geometry/Unlisted.h", ""),
        ("extras/Hash.h", f'#include "geometry/{internal[0][1]}.h"'),
        ("docs/start.md", f"#include <geometry/{internal[0][1]}.h>"),
    ]
    before = len(check(sources, readme)[0])
    return [f"{path}: {line}" for path, line in planted
            if len(check(sources | {path: f"{sources.get(path, '')}\n{line}\n"}, readme)[0]) == before]


def main():
    root = pathlib.Path(sys.argv[1])
    sources = read_sources(root)
    readme = (root / "geometry/README.md").read_text(encoding="utf-8")
    faults, count = check(sources, readme)
    if not faults:
        faults += [f"planted and not found: {missed}" for missed in find_missed(sources, readme)]
    if count < FEWEST_INCLUDES:
        faults.append(f"only {count} includes are found, of {FEWEST_INCLUDES} or more")
    print("\n".join(faults + [f"{count} includes checked, {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
