"""A copy of the sources with builds of its own, in which one worker tests its mutants."""

import filecmp
import os
import shutil
import sys

from process import run
from programs import FILTERS, SOURCE_DIR, STANDALONE, TESTS, UNDER_THREAD_SANITIZER
from standalone import BuildError

COPIED = ["geometry", "Utility", "extras", "tests", "cmake", "CMakeLists.txt"]


class Tree:
    def __init__(self, root, standalone):
        self.root = root
        self.standalone = standalone
        for top in COPIED:
            source = os.path.join(SOURCE_DIR, top)
            if os.path.isfile(source):
                self.copy(top)
            for folder, _, files in os.walk(source):
                for file in files:
                    self.copy(os.path.relpath(os.path.join(folder, file), SOURCE_DIR))

    def copy(self, file):
        """Copies the file if it differs: an interrupted run leaves a mutant. Its new time makes ninja rebuild."""
        source, target = os.path.join(SOURCE_DIR, file), os.path.join(self.root, file)
        if not (os.path.isfile(target) and filecmp.cmp(source, target, shallow=False)):
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copyfile(source, target)

    def build_dir(self, file):
        return os.path.join(self.root, "build-tsan" if file in UNDER_THREAD_SANITIZER else "build")

    def configure(self, file):
        flags = "-w -D_GLIBCXX_ASSERTIONS" + (" -fsanitize=thread -g" if file in UNDER_THREAD_SANITIZER else "")
        status, output = run(
            ["cmake", "-G", "Ninja", "-S", self.root, "-B", self.build_dir(file), "-DCMAKE_BUILD_TYPE=Debug",
             "-DCMAKE_CXX_FLAGS_DEBUG=-O1", f"-DCMAKE_CXX_FLAGS={flags}", "-DLUM_BUILD_TESTS=ON",
             "-DLUM_INSTALL=OFF"], self.root, 300)
        if status != 0:
            sys.exit(output)

    def build(self, file, test, content=None):
        """Builds the test program, with this content of the file if any is given, and returns its path."""
        if test in STANDALONE:
            if content is None:
                return self.standalone.control(test)
            return self.standalone.changed(test, file, content, os.path.join(self.root, "changed"))
        status, output = run(["ninja", "-C", self.build_dir(file), "-j1", test], self.root, 600)
        if status != 0:
            raise BuildError(output)
        folder = "tests/unit/Utility" if file.startswith("Utility") else "tests/unit/geometry"
        return os.path.join(self.build_dir(file), folder, test)

    def test(self, path):
        program_filter = FILTERS.get(os.path.basename(path), "*")
        return run([path, "--gtest_brief=1", "--gtest_fail_fast", "--gtest_filter=" + program_filter], self.root, 240)

    def check_unchanged(self, file):
        """Requires the tests to pass without a mutant; otherwise every mutant would count as found."""
        for test in TESTS[file]:
            try:
                status, output = self.test(self.build(file, test))
            except BuildError as error:
                sys.exit(f"{test} cannot be built without a mutant:\n{error}")
            if status != 0:
                sys.exit(f"{test} fails without a mutant:\n{output}")

    def judge(self, mutant):
        """Whether a mutant is found, and by what; survives; times out in some tests and passes the others; or is no
        mutant, because it does not compile."""
        path = os.path.join(self.root, mutant.file)
        with open(path, encoding="utf-8") as stream:
            original = stream.read()
        lines = original.split("\n")
        lines[mutant.line] = mutant.after
        content = "\n".join(lines)
        try:
            with open(path, "w", encoding="utf-8") as stream:
                stream.write(content)
            timed_out = []
            for test in TESTS[mutant.file]:
                try:
                    program = self.build(mutant.file, test, content)
                except BuildError as error:
                    output = str(error)
                    if "static assertion failed" in output or "non-constant condition for static" in output:
                        return "found", "static_assert in " + test
                    if " error: " not in output:
                        sys.exit(f"{test} could not be built:\n{output}")
                    return "no mutant", output
                status, _ = self.test(program)
                if status is None:
                    timed_out.append(test)
                elif status != 0:
                    return "found", test + (f" (ended by signal {-status})" if status < 0 else "")
            return ("timed out", ", ".join(timed_out)) if timed_out else ("survived", "")
        finally:
            with open(path, "w", encoding="utf-8") as stream:
                stream.write(original)
