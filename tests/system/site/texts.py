"""Compares the texts in docs/ with those in the sources: texts.py <source directory>

docs/edge-cases.md must quote every text in the sources of the library and of extras/, except those that streams and
formatters print. The sources must contain every text that the page quotes. The atlas in docs/cube.md must list the
constants with their values.
"""

import pathlib
import re
import sys

LITERAL = r'"((?:[^"\\\n]|\\.)*)"'
# Texts that streams and formatters print, and names of attributes.
NO_ERRORS = re.compile(r".* with value: |nullopt|[][(),; ]+|default|hidden")


def find_texts(source):
    """The string literals of C++ code, adjacent ones joined. Among preprocessor lines, #error has a literal, and an
    #include of a name with blanks, which is no file, is a text as well."""
    source = re.sub(r"//[^\n]*", "", source)
    source = re.sub(r"^\s*#\s*include <([^>]* [^>]*)>", r'"\1"', source, flags=re.MULTILINE)
    source = re.sub(r"^\s*#\s*include[^\n]*", "", source, flags=re.MULTILINE)
    joined = re.sub(r'"\s*\n\s*"', "", source)
    return {text for text in re.findall(LITERAL, joined) if text and not NO_ERRORS.fullmatch(text)}


def main():
    root = pathlib.Path(sys.argv[1])
    sources = [path for folder in ("geometry", "geometry/internal", "Utility", "extras") for path in sorted((root / folder).glob("*.*"))]
    texts = set().union(*(find_texts(path.read_text()) for path in sources))
    for path in sorted((root / "cmake").glob("*.cmake")):
        for arguments in re.findall(r"message\(\s*FATAL_ERROR([^)]*)\)", path.read_text()):
            texts.update(re.findall(LITERAL, arguments))
    # From static_asserts on the library's own types: no caller can make them fail.
    own_types = {"three numbers and nothing else", "no gaps"}
    page = (root / "docs/edge-cases.md").read_text()
    quoted = set(re.findall(r'`"([^`]*)"`', page))

    identifiers = (root / "geometry/CubeElementIds.h").read_text()
    constants = set(re.findall(r"inline constexpr \w+ (\w+)\{(\d+)\};", identifiers))
    rows = re.findall(r"^\| (\d+) \| `([01']+)` \| `(\w+)` \|", (root / "docs/cube.md").read_text(), re.MULTILINE)
    atlas = {(name, value): bits for value, bits, name in rows}

    faults = [f"not in docs/edge-cases.md: {text}" for text in sorted(texts - own_types - quoted)]
    faults += [f"in docs/edge-cases.md, but not in the sources: {text}" for text in sorted(quoted - texts)]
    faults += [f"not in the atlas of docs/cube.md: {name} {value}" for name, value in sorted(constants - set(atlas))]
    faults += [f"in the atlas, but not a constant: {name} {value}" for name, value in sorted(set(atlas) - constants)]
    faults += [
        f"the bits of {name} in the atlas are {bits}"
        for (name, value), bits in atlas.items()
        if bits.replace("'", "") != f"{int(value):06b}"
    ]
    if len(texts) < 20 or len(constants) != 27:
        faults.append(f"found only {len(texts)} texts and {len(constants)} constants in the sources")
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(quoted)} texts and {len(atlas)} elements agree" if not faults else f"{len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
