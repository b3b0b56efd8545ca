"""gdb reads this file when it loads the shared library, because its path below share/gdb/auto-load is the library's."""

import os
import sys

import gdb

# Relative to this file, because the prefix is chosen at installation.
_INSTALLED = os.path.join(__file__.split("/gdb/auto-load/")[0], "lum")
if _INSTALLED not in sys.path:
    sys.path.insert(0, _INSTALLED)

# Python must not write compiled copies beside the scripts, because removing the package would leave them behind.
_DONT_WRITE_BYTECODE, sys.dont_write_bytecode = sys.dont_write_bytecode, True
import lum_gdb  # noqa: E402, found through the lines above

sys.dont_write_bytecode = _DONT_WRITE_BYTECODE
lum_gdb.register(gdb.current_objfile())
