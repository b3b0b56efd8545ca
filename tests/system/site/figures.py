"""Compares figures on the pages with what the sources and the programs say: figures.py <source directory> <check> ...

    mutants                          the mutants that verification/mutation lists
    fixes                            the fixes and the tests of reverted_fixes.toml
    variants                         the broken variants of the model of the ring
    fuzzers                          how many fuzzers verification/fuzz holds
    recipes                          how many programs examples/recipes holds
    versions <CMake's> <Eigen's> <compiler> <compiler's>
                                     the versions of the tools with which lum is built, which README.md names
    chains                           the errors after 100,000 products, which pages take from cookbook.md
    choosing                         the times that choosing.md takes from performance.md
    install                          the commands by which programs are built and linked
    cube <program>                   the orders and the numbers of other libraries, as the program prints them
    executions <program> <folder>    the executions that the program's tests recorded in XML files in the folder
    states <log>                     the states in the output of verification/model/run
    coverage <figure>...             lines reached, lines, branches reached, branches

With LUM_UPDATE_FIGURES=1 in the environment, the figures on the pages are replaced.
"""

import decimal
import os
import pathlib
import re
import subprocess
import sys
import tomllib
import xml.etree.ElementTree

ROOT = pathlib.Path(sys.argv[1])
UPDATE = os.environ.get("LUM_UPDATE_FIGURES") == "1"
RELIABILITY = "docs/reliability.md"
# What {} and {w} stand for in a sentence: a number, with its unit if it is a time, and a number in words.
NUMBER = r"(\d(?:[\d,.]*\d)?(?:e-\d+|\s(?:ns|µs|ms)\b)?)"
WORD = r"([A-Za-z]+)"
WORDS = ("no one two three four five six seven eight nine ten eleven twelve thirteen fourteen fifteen sixteen seventeen "
         "eighteen nineteen twenty").split()

faults = []


def read(page):
    return (ROOT / page).read_text(encoding="utf-8")


def run(*command):
    return subprocess.run(command, capture_output=True, check=True, text=True).stdout


def find(page, sentence):
    """Where the sentence occurs on the page, with any values at its {} and {w}, and with any line breaks."""
    pattern = re.sub(r"\\?\s+", r"\\s+", re.escape(sentence)).replace(r"\{w\}", WORD).replace(r"\{\}", NUMBER)
    return list(re.finditer(pattern, read(page)))


def compare(page, sentence, *values):
    """The sentence must occur once on the page, with these values at its {} and {w}."""
    found = find(page, sentence)
    if len(found) != 1:
        right = sentence.replace("{w}", "{}").format(*values)
        faults.append(f"{page} has this {len(found)} times, not once: {right}")
        return
    text = read(page)
    for index in range(len(values), 0, -1):
        shown = " ".join(found[0][index].split())
        if shown == values[index - 1]:
            continue
        if UPDATE:
            text = text[:found[0].start(index)] + values[index - 1] + text[found[0].end(index):]
            (ROOT / page).write_text(text, encoding="utf-8")
            print(f"{page}: {shown} replaced by {values[index - 1]}: {sentence}")
        else:
            faults.append(f"{page} says {shown} where {values[index - 1]} is right: {sentence}")


def check_mutants():
    *mutants, total = run(sys.executable, str(ROOT / "verification/mutation/run"), "--list").splitlines()
    if total != f"{len(mutants)} mutants":
        faults.append(f"verification/mutation/run --list ends with: {total}")
    lowered = sum(": number lowered: " in mutant for mutant in mutants)
    compare(RELIABILITY, "There are {} mutants", f"{len(mutants):,}")
    compare(RELIABILITY, "the {} with a lowered number", f"{lowered:,}")
    return f"{len(mutants)} mutants"


def check_fixes():
    fixes = tomllib.loads(read("verification/mutation/reverted_fixes.toml"))
    tests = {(program, test) for fix in fixes.values() for program, named in fix["tests"].items() for test in named}
    compare(RELIABILITY, "lists {} fixes, most of them of races and leaks, with {} tests", str(len(fixes)), str(len(tests)))
    return f"{len(fixes)} fixes and {len(tests)} tests"


def check_variants():
    variants = set(re.findall(r"^violates .* -D([A-Z_]+)$", read("verification/model/run"), re.MULTILINE))
    compare(RELIABILITY, "each of {w} broken variants", WORDS[len(variants)])
    return f"{len(variants)} broken variants"


def check_fuzzers():
    count = len(list((ROOT / "verification/fuzz").glob("*Fuzz.cpp")))
    compare(RELIABILITY, "`verification/fuzz/` holds {w} fuzzers", WORDS[count])
    return f"{count} fuzzers"


def check_recipes():
    count = len(list((ROOT / "examples/recipes").glob("*.cpp")))
    compare("README.md", "| [cookbook](docs/cookbook.md) | {w} short programs for common tasks |", WORDS[count])
    compare("docs/start.md", "| [Cookbook](cookbook.md) | {w} common tasks,", WORDS[count])
    compare("docs/cookbook.md", "{w} programs for common tasks", WORDS[count].capitalize())
    compare("CHANGELOG.md", "- `docs/cookbook.md`: {w} programs for common tasks", WORDS[count])
    shown = read("docs/cookbook.md").count("\n## ")
    if shown != count:
        faults.append(f"docs/cookbook.md has {shown} sections for {count} programs")
    return f"{count} recipes"


def check_versions():
    cmake, eigen, compiler, compiler_version = sys.argv[3:7]
    # The page has the versions of both compilers; a build compares that of its own.
    sentence = {"GNU": "tested on Debian 12 for x86-64: with g++ {}", "Clang": "and clang {},"}[compiler]
    compare("README.md", sentence, ".".join(compiler_version.split(".")[:2]))
    compare("README.md", ", CMake {} and Eigen {}.", ".".join(cmake.split(".")[:2]), eigen)
    return "the versions of the tools"


def check_chains():
    # The test of the recipe compares these rows with what the program prints.
    rows = re.findall(r"^(float|double) +100000 +(\S+) +\S+ +(\S+)$", read("docs/cookbook.md"), re.MULTILINE)
    errors = [float(error) for _, stored, rebuilt in rows for error in (stored, rebuilt)]
    texts = [f"{error:.2g}" if error >= 0.01 else f"{error:.1e}".replace("e-0", "e-") for error in errors]
    compare("README.md", "in `float` it is off by {}, and by {} after `RebuildInverse`; in `double` by {}, and by {} after it", *texts)
    compare("docs/choosing.md", "is off by {}, and by {} once the inverse is rebuilt; in `double` by {} and {}.", *texts)
    compare("docs/concepts.md", "it is off by {} with the stored inverse, and by {} with an inverse", *texts[:2])
    compare("docs/concepts.md", "In `double`, it is off by {} and {}.", *texts[2:])
    return f"{len(errors)} errors of long chains"


# Sentences of choosing.md, with the row and the contestant in performance.md of each of their times.
CHOOSING = (
    ("| a product, and its inverse | {}, both products | {}, the inverse computed |",
     ("product, float", "lum"), ("product, float", "Eigen values")),
    ("| the inverse | {}, a copy | {}, computed; {} if it is a general 4x4 matrix |",
     ("GetInverse, float", "lum"), ("GetInverse, float", "Eigen values, affine"), ("GetInverse, float", "Eigen values")),
    ("| the inverse, in place | {} | {}, computed |", ("Invert, float", "lum"), ("Invert, float", "Eigen values, affine")),
    ("| the matrix of normals | {}, with its inverse | {}, 3x3 |",
     ("GetNormalTransform, float", "lum"), ("GetNormalTransform, float", "Eigen values, affine")),
    ("| one plane | {}, by the stored inverse | {}, the inverse computed |",
     ("times plane, float", "lum"), ("times plane, float", "Eigen values, affine")),
    ("| one point | {}, behind a call | {}, inlined |", ("one point, float", "lum"), ("one point, float", "Eigen inlined")),
    ("| 4,096 points | {} | {} by the best of three forms |", ("4096 points, float", "lum"), ("4096 points, float", "Eigen")),
    ("| one vector by a quaternion | {}, behind a call | {}, inlined |",
     ("one vector rotated", "lum"), ("one vector rotated", "Eigen")),
    ("| 4,096 vectors by a quaternion | {} | {}, one by one |", ("4096 vectors rotated", "lum"), ("4096 vectors rotated", "Eigen")),
    ("a product of quaternions takes {} instead of {}, and a blend of two takes {} instead of {};",
     ("quaternion product", "lum"), ("quaternion product", "Eigen"), ("Slerp", "lum"), ("Slerp", "Eigen")),
    ("an object takes {} on two threads, and {} with `std::make_shared`;",
     ("one object, two threads", "lum"), ("one object, two threads", "make_shared")),
    ("replaced at random: {} each, and {} with `std::make_shared`;",
     ("one of 10000000 live objects replaced", "lum"), ("one of 10000000 live objects replaced", "make_shared")),
)
NANOSECONDS = {"ns": 1, "µs": 1000, "ms": 1000000, "s": 1000000000}


def read_performance():
    """Texts such as "22.8 ns" by row and contestant. "Eigen" is the fastest contestant whose name begins so."""
    times = {}
    # The rows with other allocators have the names of those with glibc's.
    for row, own, others in re.findall(r"^\| (.+?) \| ([\d.]+ [nµm]?s|) \| (.*?) ?\|$",
                                       read("docs/performance.md").split("\n## Transforms, with ")[0], re.MULTILINE):
        times[row] = {who: time for who, time in re.findall(r"(?:^|, )(\S.*?) ([\d.]+ [nµm]?s)(?=, |$)", others)}
        times[row]["lum"] = own
        eigen = [time for who, time in times[row].items() if who.startswith("Eigen")]
        if eigen:
            times[row]["Eigen"] = min(eigen, key=lambda time: float(time.split()[0]) * NANOSECONDS[time.split()[1]])
    return times


def to_two_digits(time):
    """22.8 ns -> 23 ns, 0.996 ns -> 1.0 ns; three digits before the point stay."""
    number, unit = time.split()
    context = decimal.Context(prec=2, rounding=decimal.ROUND_HALF_UP)
    rounded = context.plus(decimal.Decimal(number))
    return f"{number if float(number) >= 100 else f'{rounded:f}' if len(rounded.as_tuple().digits) > 1 else f'{rounded:.1f}'} {unit}"


def check_choosing():
    page = "docs/choosing.md"
    times = read_performance()
    count = 0
    for sentence, *entries in CHOOSING:
        values = [times.get(row, {}).get(who) for row, who in entries]
        if None not in values:
            compare(page, sentence, *map(to_two_digits, values))
            count += len(entries)
        elif find(page, sentence):
            faults.append(f"docs/performance.md has no times of {entries}, from which {page} says: {sentence}")
    shown = len(re.findall(r"\d (?:ns|µs|ms)\b", read(page)))
    if shown != count:
        faults.append(f"{page} shows {shown} times, and {count} are compared")
    size = re.search(r"each takes ([\d.]+) bytes besides its handle", read("docs/performance.md"))[1]
    compare(page, "objects of {} bytes each in `float`", to_two_digits(size + " bytes").split()[0])
    return f"{count} times of performance.md"


def find_commands(text):
    """The lines of code blocks and the code in sentences that install lum, or build or link a program with it."""
    blocks = re.findall(r"^( *)```(?:sh|cmake)\n(.*?)^\1```$", text, re.MULTILINE | re.DOTALL)
    lines = [line.strip() for _, block in blocks for line in block.splitlines()]
    lines += [" ".join(code.split()) for code in re.findall(r"(?<!`)`([^`]+)`(?!`)", text)]
    command = re.compile(r"apt-get install|cmake (?:-S|--build|--install) |pkg-config --|find_package\(lum|lum::lum\)|FetchContent_")
    return [line for line in lines if command.search(line)]


def check_install():
    readme = find_commands(read("README.md"))
    if len(readme) < 8:
        faults.append(f"README.md has only these commands: {readme}")
    others = [(path.name, command) for path in sorted((ROOT / "docs").glob("*.md")) for command in find_commands(read(path))]
    if len(others) < 2:
        faults.append(f"the pages in docs/ have only these commands: {others}")
    for page, command in others:
        # A page may name its own source, and {fmt} beside lum.
        general = re.sub(r"\b\w+\.cpp\b", "main.cpp", command).replace("--libs lum fmt)", "--libs lum)")
        if general not in readme:
            faults.append(f"docs/{page} has a command that README.md does not have: {command}")

    major, minor, patch = re.search(r"project\(\s*lum\s+VERSION (\d+)\.(\d+)\.(\d+)", read("CMakeLists.txt")).groups()
    if f"find_package(lum {major}.{minor} REQUIRED)" not in readme:
        faults.append(f"README.md does not ask for version {major}.{minor}")
    for soname in set(re.findall(r"liblum\.so\.[\d.]*\d", read("README.md") + read("docs/debuggers.md"))):
        if not f"liblum.so.{major}.{minor}.{patch}".startswith(soname):
            faults.append(f"a page names {soname}, but the version is {major}.{minor}.{patch}")
    installed = next(command for command in readme if command.startswith("apt-get install g++")).split()
    for package in re.search(r"^build=\((.*)\)$", read("scripts/setup"), re.MULTILINE)[1].split():
        if package not in installed:
            faults.append(f"README.md does not install {package}, but scripts/setup does")
    return f"README.md: {len(others)} commands"


def check_cube():
    page = read("docs/cube.md")
    printed = run(sys.argv[3]).splitlines()
    # Rows of tables are compared as lines, and sentences wherever the page breaks them.
    for line in printed:
        if line not in (page.splitlines() if line.startswith("|") else " ".join(page.split())):
            faults.append(f"docs/cube.md does not show: {line}")
    for title in ("Orders", "In other libraries"):
        section = re.search(rf"^## {title}\n(.*?)(?=^## |\Z)", page, re.MULTILINE | re.DOTALL)[1]
        for row in re.findall(r"^\|.*\d.*$", section, re.MULTILINE):
            if row not in printed:
                faults.append(f"docs/cube.md shows, but the program does not print: {row}")
    return f"{len(printed)} lines that the program prints"


def check_executions():
    program, folder = sys.argv[3:5]
    cases = []
    for line in run(program, "--gtest_list_tests").splitlines():
        name = line.split("#")[0].strip()
        if line.startswith(" "):
            cases.append(suite + name)
        else:
            suite = name
    recorded = {}
    for path in pathlib.Path(folder).rglob("*.xml"):
        for case in xml.etree.ElementTree.parse(path).iter("testcase"):
            figures = {item.get("name"): int(item.get("value")) for item in case.iter("property")}
            if figures:
                recorded[f"{case.get('classname')}.{case.get('name')}"] = figures
    missing = [case for case in cases if case not in recorded]
    if missing or not cases:
        faults.append(f"{folder} has no executions of {missing}")
        return ""
    searched = sum(recorded[case]["executions"] for case in cases)
    walked = sum(recorded[case]["random_executions"] for case in cases)
    compare(RELIABILITY, "preemptions ({} executions), and {} random ones without that bound", f"{searched:,}", f"{walked:,}")
    return f"{searched} executions and {walked} random ones"


def check_states():
    states = [round(float(number)) for number in re.findall(r"^ring .*: holds, ([\d.e+]+) states$", read(sys.argv[3]), re.MULTILINE)]
    sentence = re.search(r"explores every state: [^.]*\.", read(RELIABILITY))
    shown = re.findall(r"\d[\d,]{4,}\d", sentence[0]) if sentence else []
    if not states or len(shown) != len(states):
        faults.append(f"verification/model/run explores {states} states, and {RELIABILITY} says {shown}")
        return ""
    # The page has the states of each run of the model that must hold, in the order of the runs.
    compare(RELIABILITY, re.sub(r"\d[\d,]{4,}\d", "{}", " ".join(sentence[0].split())), *(f"{count:,}" for count in states))
    return f"the states of {len(states)} runs"


def check_coverage():
    compare(RELIABILITY, "{} of {} lines, {} of {} branches", *sys.argv[3:7])
    return "what the tests reach"


CHECKS = {
    "mutants": check_mutants,
    "fixes": check_fixes,
    "variants": check_variants,
    "fuzzers": check_fuzzers,
    "recipes": check_recipes,
    "versions": check_versions,
    "chains": check_chains,
    "choosing": check_choosing,
    "install": check_install,
    "cube": check_cube,
    "executions": check_executions,
    "states": check_states,
    "coverage": check_coverage,
}


def main():
    agreed = CHECKS[sys.argv[2]]()
    if faults:
        print(*faults, "LUM_UPDATE_FIGURES=1 replaces figures on the pages.", sep="\n", file=sys.stderr)
        return 1
    print(f"the pages agree with {agreed}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
