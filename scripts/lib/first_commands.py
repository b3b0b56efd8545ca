"""Prints a compilation database with one command for each file, the first: first_commands.py <compile_commands.json>

clang-tidy checks a file once for each command that compiles it, and some files are compiled several times.
"""

import json
import pathlib
import sys

commands = json.loads(pathlib.Path(sys.argv[1]).read_text())
first = {command["file"]: command for command in reversed(commands)}
json.dump(list(first.values()), sys.stdout)
