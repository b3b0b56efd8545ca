"""The rules that make mutants of a file."""

import collections
import os
import re

from programs import SOURCE_DIR

NUMBER = r"(?<![\w.>])\d+(?=(?:\.0)?[UL]*F?(?:\.\d)?\b)(?!\.5)"
# A replacement is a text, or a function of the matched text that returns None if there is no mutant.
RULES = [
    ("comparison", r"(?<= )<(?= )", "<="),
    ("comparison", r"(?<= )<=(?= )", "<"),
    ("comparison", r"(?<= )>(?= )", ">="),
    ("comparison", r"(?<= )>=(?= )", ">"),
    ("comparison", r"(?<= )==(?= )", "!="),
    ("comparison", r"(?<= )!=(?= )", "=="),
    ("sign", r"(?<= )\+(?= )", "-"),
    ("sign", r"(?<= )-(?= )", "+"),
    ("sign", r"(?<=[(,={ ])-(?=[a-z(0-9])(?!\w+ )", ""),
    ("sign", r"(?<= )\+=(?= )", "-="),
    ("sign", r"(?<= )-=(?= )", "+="),
    ("operator", r"(?<=[\w)\]] )\*(?= [\w(])", "/"),
    ("operator", r"(?<=[\w)\]] )/(?= [\w(])", "*"),
    ("operator", r"(?<= )%(?= )", "/"),
    ("logic", r"(?<= )&&(?= )", "||"),
    ("logic", r"(?<= )\|\|(?= )", "&&"),
    ("logic", r"(?<=[( ])!(?=[a-z(])", ""),
    ("logic", r"\btrue\b", "false"),
    ("logic", r"\bfalse\b", "true"),
    ("bits", r"(?<= )\^(?= )", "|"),
    ("bits", r"(?<= )\|(?= )", "^"),
    ("bits", r"(?<= )&(?= )", "|"),
    ("bits", r"~(?=[a-z0-9])", ""),
    ("bits", r"(?<= )<<(?= )", ">>"),
    ("bits", r"(?<= )>>(?= )", "<<"),
    ("number raised", NUMBER, lambda text: str(int(text) + 1)),
    ("number lowered", NUMBER, lambda text: str(int(text) - 1) if int(text) > 0 else None),
    ("function", r"std::sin\b", "std::cos"),
    ("function", r"std::cos\b", "std::sin"),
    ("function", r"std::abs\b", ""),
    ("function", r"std::min\b", "std::max"),
    ("order", r"std::memory_order_(?:acquire|release)", "std::memory_order_relaxed"),
    ("order", r"(?<=\.load\()(?=\))", "std::memory_order_relaxed"),
    ("order", r"(?<=>load\()(?=\))", "std::memory_order_relaxed"),
    ("order", r"(?<=fetch_add\(i_value)(?=\))|(?<=fetch_sub\(i_value)(?=\))|(?<=fetch_or\(kSuperseded)(?=\))",
     ", std::memory_order_relaxed"),
    ("order", r"(?<=compare_exchange_strong\(last, 0)(?=\))", ", std::memory_order_relaxed"),
]
STEP = re.compile(r"^ +(?:\w[\w.:>-]*\(.*\)|[\w.>-]+(?:\[[^]]*\])? [-+*/]?= .*|if \(.*\) .*);$")
IS_DECLARATION = re.compile(r"^ +(?:auto|bool|int|double|float|T|Slot|Values|Coefficients|char|unsigned|std::\w+|using"
                            r"|typename|static|constexpr|explicit|virtual|friend|return|throw|template|delete)\b.*")
STRING = re.compile(r'"(?:[^"\\]|\\.)*"')
SKIPPED = re.compile(r"^\s*(?:#|//|static_assert|assert\b|template\b|requires\b|using\b|namespace\b|extern\b)")

# The kinds that are very frequent in files of arithmetic.
ARITHMETIC = ("number raised", "number lowered", "sign", "operator")

Mutant = collections.namedtuple("Mutant", "file line kind before after")


def strip_comment(line):
    at = line.find("//")
    return line if at < 0 else line[:at]


def mutants_of(file):
    """Every mutant of a file, as the line before and after."""
    with open(os.path.join(SOURCE_DIR, file), encoding="utf-8") as stream:
        lines = stream.read().split("\n")
    strings = [s for line in lines if not SKIPPED.match(line) for s in STRING.findall(strip_comment(line))]
    found = []

    def add(number, kind, after):
        found.append(Mutant(file, number, kind, lines[number], after))

    for number, line in enumerate(lines):
        code = strip_comment(line)
        if SKIPPED.match(code) or "<=>" in code or " = default" in code or " = delete" in code:
            continue
        spans = [m.span() for m in STRING.finditer(code)]
        for kind, pattern, replacement in RULES:
            if kind == "bits" and ("io_stream" in code or "operator<<" in code):
                continue
            for match in re.finditer(pattern, code):
                if any(a < match.start() < b for a, b in spans):
                    continue
                text = replacement(match.group()) if callable(replacement) else replacement
                if text is not None:
                    add(number, kind, line[: match.start()] + text + line[match.end():])
        for text, (start, end) in zip(STRING.findall(code), spans):
            others = [s for s in strings if s != text]
            add(number, "message", line[:start] + (others[0] if others else '""') + line[end:])
        if STEP.match(code) and not IS_DECLARATION.match(code) and code.count("(") == code.count(")"):
            add(number, "dropped step", "")
    return found


def spread(mutants, limit):
    """At most `limit` mutants of each kind of arithmetic, evenly spread over the file."""
    kept = [m for m in mutants if m.kind not in ARITHMETIC]
    for kind in ARITHMETIC:
        of_kind = [m for m in mutants if m.kind == kind]
        count = min(limit, len(of_kind))
        kept += [of_kind[i * len(of_kind) // count] for i in range(count)]
    return sorted(kept)
