"""Read by gdb when it loads the shared library, beside whose name this file stands below share/gdb/auto-load."""

import os
import sys

import gdb

# Relative to this file, since the prefix is chosen when installing.
_INSTALLED = os.path.join(__file__.split("/gdb/auto-load/")[0], "lum")
if _INSTALLED not in sys.path:
    sys.path.insert(0, _INSTALLED)

# No compiled copies beside the scripts, which a removal of the package would leave behind.
_WRITES_NOTHING, sys.dont_write_bytecode = sys.dont_write_bytecode, True
import lum_gdb  # noqa: E402, found through the lines above

sys.dont_write_bytecode = _WRITES_NOTHING
lum_gdb.register(gdb.current_objfile())
