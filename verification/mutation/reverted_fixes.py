"""Reverts a fix and expects the tests listed for it to fail, each by an assertion of its own.

The same tests must pass before the fix is reverted. A timeout, an unexpected signal, an error of the compiler or the
failure of another test is an error.
"""

import os
import re
import signal
import tomllib

from process import run
from programs import PROCESS, SOURCE_DIR
from standalone import BuildError

LIST = os.path.join(SOURCE_DIR, "verification", "mutation", "reverted_fixes.toml")
TIMEOUT = 60
RAN_ALONE = "[==========] 1 test from 1 test suite ran."


class NotFound(Exception):
    """Why the reverted fix does not count as found by its tests."""


def read_fixes():
    with open(LIST, "rb") as stream:
        return tomllib.load(stream)


def check(name, fix, standalone, work_dir):
    """Raises NotFound unless each of the tests passes with the fix and fails without it."""
    with open(os.path.join(SOURCE_DIR, fix["file"]), encoding="utf-8") as stream:
        source = stream.read()
    if source.count(fix["text"]) != 1:
        raise NotFound(f"{fix['file']} contains this text {source.count(fix['text'])} times, not once:\n{fix['text']}")
    reverted = source.replace(fix["text"], fix["replacement"])
    for program, tests in fix["tests"].items():
        try:
            control = standalone.control(program)
            changed = standalone.changed(program, fix["file"], reverted, os.path.join(work_dir, name))
        except BuildError as error:
            raise NotFound(f"{program} cannot be built: {error}") from error
        for test in tests:
            status, output = run(command(control, program, test), SOURCE_DIR, TIMEOUT)
            if not passes(program, test, status, output):
                raise NotFound(f"with the fix, {program} does not pass ({describe(status)}): {test}\n{output}")
            status, output = run(command(changed, program, test), SOURCE_DIR, TIMEOUT)
            if not fails(program, test, fix.get("signal"), status, output):
                raise NotFound(f"without the fix, {program} does not fail as listed ({describe(status)}): {test}\n{output}")
            print(f"found: {name} by {program}: {test}", flush=True)


def command(path, program, test):
    return [path] if program in PROCESS else [path, "--gtest_color=no", f"--gtest_filter={test}"]


def describe(status):
    if status is None:
        return "timed out"
    return f"ended by {signal.Signals(-status).name}" if status < 0 else f"exit status {status}"


def passes(program, test, status, output):
    if program in PROCESS:
        return status == 0 and not output
    return status == 0 and RAN_ALONE in output and f"[       OK ] {test} (" in output


def fails(program, test, expected_signal, status, output):
    """Whether the test fails by an assertion of its own, or by the signal that is expected."""
    if expected_signal:
        return status == -signal.Signals[expected_signal] and output.startswith(test + "\n")
    if program in PROCESS:
        return status == 1 and output == f"failed: {test}\n"
    # An exception that leaves the test is reported as a failure in an unknown file.
    places = re.findall(r"^(.+): Failure$", output, re.MULTILINE)
    return (status == 1 and RAN_ALONE in output and
            re.search(rf"^\[  FAILED  \] {re.escape(test)}(,| \()", output, re.MULTILINE) is not None and
            len(places) > 0 and all(re.fullmatch(r"tests/.+:\d+", place) for place in places))
