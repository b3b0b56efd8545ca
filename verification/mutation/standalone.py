"""Builds test programs by the compiler alone, from the sources with one file changed.

The changed file is in a directory that the compiler searches before the sources. The control is the program built from
the unchanged sources. Objects that do not depend on the changed file are taken from the control, which is built again
only when a source changes.
"""

import fcntl
import functools
import hashlib
import os
import subprocess

from process import run
from programs import SOURCE_DIR, sources_of

FLAGS = ["-std=c++20", "-O1", "-w", "-pthread", "-D_GLIBCXX_ASSERTIONS"]
LIBRARIES = ["-lgtest_main", "-lgtest"]
TIMEOUT = 300


class BuildError(Exception):
    """The compiler's or the linker's output."""


class Standalone:
    def __init__(self, compiler, eigen, work_dir):
        self.compile = [compiler, *FLAGS, *eigen]
        self.control_dir = os.path.join(work_dir, "control")
        os.makedirs(self.control_dir, exist_ok=True)

    @functools.cached_property
    def key(self):
        """A hash of everything that the objects of the control are made from."""
        version = subprocess.run([self.compile[0], "--version"], capture_output=True, check=True).stdout
        digest = hashlib.sha256(repr(self.compile).encode() + version)
        for top in ("Utility", "geometry", "tests"):
            for folder, _, files in sorted(os.walk(os.path.join(SOURCE_DIR, top))):
                for file in sorted(files):
                    path = os.path.join(folder, file)
                    with open(path, "rb") as stream:
                        digest.update(path.encode() + b"\0" + stream.read() + b"\0")
        return digest.hexdigest()

    def control(self, program):
        """Builds the program from the sources as they are."""
        path = os.path.join(self.control_dir, program)
        with open(path + ".lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            if read(path + ".key") != self.key:
                self.link([self.control_object(source) for source in sources_of(program)], path)
                write(path + ".key", self.key)
        return path

    def changed(self, program, file, content, directory):
        """Builds the program from the sources with this content of one file, in a directory of the caller's own."""
        write(os.path.join(directory, file), content)
        try:
            objects = []
            for source in sources_of(program):
                control = self.control_object(source)
                if file not in dependencies(control):
                    objects.append(control)
                    continue
                changed = os.path.join(directory, source.replace("/", "_") + ".o")
                path = os.path.join(directory, file) if source == file else source
                self.object(path, changed, ["-I", directory, "-I."])
                objects.append(changed)
            path = os.path.join(directory, program)
            self.link(objects, path)
            return path
        finally:
            os.remove(os.path.join(directory, file))

    def control_object(self, source):
        path = os.path.join(self.control_dir, source.replace("/", "_") + ".o")
        with open(path + ".lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            if read(path + ".key") != self.key:
                self.object(source, path, ["-I."])
                write(path + ".key", self.key)
        return path

    def object(self, source, path, includes):
        self.demand([*self.compile, *includes, "-c", source, "-o", path, "-MMD"])

    def link(self, objects, path):
        self.demand([self.compile[0], "-pthread", *objects, "-o", path, *LIBRARIES])

    @staticmethod
    def demand(command):
        status, output = run(command, SOURCE_DIR, TIMEOUT)
        if status != 0:
            raise BuildError(" ".join(command) + "\n" + output)


def dependencies(path):
    """The files that an object was made from, as the compiler listed them."""
    words = read(os.path.splitext(path)[0] + ".d").replace("\\\n", " ").split()
    return {os.path.normpath(word) for word in words[1:]}


def read(path):
    if not os.path.exists(path):
        return ""
    with open(path, encoding="utf-8") as stream:
        return stream.read()


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as stream:
        stream.write(text)
