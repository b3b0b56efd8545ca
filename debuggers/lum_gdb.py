"""gdb pretty printers for lum. Load them by `source lum_gdb.py`, from the source tree or an installation.

gdb loads them automatically if the shared library is installed with the prefix /usr: see liblum-gdb.py.
"""

import contextlib
import os
import struct
import sys

import gdb
import gdb.printing
import gdb.types

_HERE = os.path.dirname(os.path.abspath(__file__))
if _HERE not in sys.path:
    sys.path.insert(0, _HERE)

import lum_values  # noqa: E402, found through the line above


@contextlib.contextmanager
def _readable(value):
    """Turns gdb's errors into lum_values.Unreadable."""
    try:
        yield
    except gdb.error:
        raise lum_values.Unreadable("optimized out" if value.is_optimized_out else "unreadable") from None


def _type_name(gdb_type):
    """The name without const, reference and typedefs; empty for a type that has none."""
    return gdb.types.get_basic_type(gdb_type).name or ""


class Value:
    """A gdb.Value with the methods that lum_values requires."""

    def __init__(self, value):
        self.gdb_value = value

    def type_name(self):
        return _type_name(self.gdb_value.type)

    def member(self, name):
        with _readable(self.gdb_value):
            return Value(self.gdb_value[name])

    def first_member(self):
        with _readable(self.gdb_value):
            return Value(self.gdb_value[self.gdb_value.type.strip_typedefs().fields()[0]])

    def elements(self):
        with _readable(self.gdb_value):
            first, last = self.gdb_value.type.strip_typedefs().range()
            return [Value(self.gdb_value[index]) for index in range(first, last + 1)]

    def number(self):
        with _readable(self.gdb_value):
            is_float = self.gdb_value.type.strip_typedefs().code == gdb.TYPE_CODE_FLT
            return float(self.gdb_value) if is_float else int(self.gdb_value)

    def read(self, address, size):
        with _readable(self.gdb_value):
            return bytes(gdb.selected_inferior().read_memory(address, size))

    def identity_lazy(self, symbol):
        """gdb gives the address of the referenced object, or, without debug information, of the pointer to it."""
        try:
            address = gdb.parse_and_eval(f"&{symbol}")
        except gdb.error:
            return None
        if address.type.target().strip_typedefs().code == gdb.TYPE_CODE_STRUCT:
            return int(address)
        return struct.unpack("P", self.read(int(address), struct.calcsize("P")))[0]


def _array(numbers):
    """Numbers as a gdb array, which gdb prints in the user's format."""
    element_type = gdb.lookup_type(numbers.element_type)
    data = struct.pack(f"{len(numbers.values)}{element_type.name[0]}", *numbers.values)
    return gdb.Value(data, element_type.array(len(numbers.values) - 1))


class _Printer:
    """Prints a value as one line."""

    def __init__(self, description):
        self._description = description

    def to_string(self):
        return self._description.summary


class _PrinterWithChildren(_Printer):
    """Adds the children. A class of its own, because front ends of gdb omit the line of a printer with this method."""

    def children(self):
        for name, content in self._description.children:
            yield name, _array(content) if isinstance(content, lum_values.Numbers) else content.gdb_value


class Printers(gdb.printing.PrettyPrinter):
    """All printers. `info pretty-printer` lists them, and each can be disabled."""

    def __init__(self):
        super().__init__("lum", [gdb.printing.SubPrettyPrinter(kind.name) for kind in lum_values.KINDS])
        self._by_name = {printer.name: printer for printer in self.subprinters}

    def __call__(self, value):
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            return None  # gdb prints the address and calls this again with the referenced value
        kind = lum_values.find_kind(_type_name(value.type))
        if kind is None or not self._by_name[kind.name].enabled:
            return None
        description = lum_values.describe(Value(value))
        return (_PrinterWithChildren if description.children else _Printer)(description)


def register(objfile=None):
    """Registers the printers with an object file, or for all, and replaces those registered before."""
    gdb.printing.register_pretty_printer(objfile, Printers(), replace=True)


if __name__ == "__main__":
    register(gdb.current_objfile())
