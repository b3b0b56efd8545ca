"""lldb summaries and children for lum. Load them by `command script import lum_lldb.py`, from the source tree or an
installation.
"""

import struct

import lldb

import lum_values  # in the same folder, which lldb adds to the search path


def _checked(value):
    """The value. Raises Unreadable if lldb could not read it."""
    if not value.IsValid() or value.GetError().Fail():
        raise lum_values.Unreadable("unreadable")
    return value


class Value:
    """An lldb.SBValue with the methods that lum_values requires."""

    def __init__(self, value):
        self.lldb_value = value.GetNonSyntheticValue()

    def type_name(self):
        sb_type = self.lldb_value.GetType().GetCanonicalType()
        if sb_type.IsReferenceType():
            sb_type = sb_type.GetDereferencedType().GetCanonicalType()
        return sb_type.GetUnqualifiedType().GetName() or ""

    def member(self, name):
        return Value(_checked(self.lldb_value.GetChildMemberWithName(name)))

    def first_member(self):
        return Value(_checked(self.lldb_value.GetChildAtIndex(0)))

    def elements(self):
        count = self.lldb_value.GetNumChildren()
        return [Value(_checked(self.lldb_value.GetChildAtIndex(index))) for index in range(count)]

    def number(self):
        error = lldb.SBError()
        value = _checked(self.lldb_value)
        sb_type = value.GetType().GetCanonicalType()
        flags = sb_type.GetTypeFlags()
        if flags & lldb.eTypeIsFloat:
            data = value.GetData()
            get = {4: data.GetFloat, 8: data.GetDouble}.get(sb_type.GetByteSize(), data.GetLongDouble)
            number = get(error, 0)
        else:
            number = (value.GetValueAsSigned if flags & lldb.eTypeIsSigned else value.GetValueAsUnsigned)(error)
        if error.Fail():
            raise lum_values.Unreadable("unreadable")
        return number

    def read(self, address, size):
        error = lldb.SBError()
        data = self.lldb_value.GetProcess().ReadMemory(address, size, error)
        if error.Fail() or data is None or len(data) != size:
            raise lum_values.Unreadable("unreadable")
        return data

    def identity_lazy(self, symbol):
        target = self.lldb_value.GetTarget()
        for context in target.FindSymbols(symbol):
            address = context.GetSymbol().GetStartAddress().GetLoadAddress(target)
            if address != lldb.LLDB_INVALID_ADDRESS:
                return struct.unpack("P", self.read(address, struct.calcsize("P")))[0]
        return None


def _make_array(parent, name, numbers):
    """Numbers as an lldb array, which lldb prints in the user's format."""
    basic = {"float": lldb.eBasicTypeFloat, "double": lldb.eBasicTypeDouble}[numbers.element_type]
    target = parent.GetTarget()
    array_type = target.GetBasicType(basic).GetArrayType(len(numbers.values))
    bytes_of = struct.pack(f"{len(numbers.values)}{numbers.element_type[0]}", *numbers.values)
    data = lldb.SBData()
    data.SetData(lldb.SBError(), bytes_of, target.GetByteOrder(), target.GetAddressByteSize())
    return parent.CreateValueFromData(name, data, array_type)


class Children:
    """The children of a value. Most kinds have none, because lldb would also show them for references."""

    def __init__(self, value, _internal):
        self._value = value
        self._children = []

    def update(self):
        """Called whenever the process stops. Reads the children again, because their values may have changed."""
        self._children = lum_values.describe(Value(self._value)).children
        return False

    def has_children(self):
        return bool(self._children)

    def num_children(self):
        return len(self._children)

    def get_child_index(self, name):
        names = [child.name for child in self._children]
        return names.index(name) if name in names else -1

    def get_child_at_index(self, index):
        if not 0 <= index < len(self._children):
            return None
        name, content = self._children[index]
        if isinstance(content, lum_values.Numbers):
            return _make_array(self._value, name, content)
        return content.lldb_value.Clone(name)


def show(value, _internal):
    """The summary of a value; empty if the children suffice."""
    return lum_values.describe(Value(value)).summary or ""


def __lldb_init_module(debugger, _internal):
    """Called by lldb when it imports this file."""
    category = debugger.CreateCategory("lum")
    options = lldb.eTypeOptionCascade | lldb.eTypeOptionSkipPointers
    for kind in lum_values.KINDS:
        name = lldb.SBTypeNameSpecifier(f"^{kind.pattern}$", True)
        summary = lldb.SBTypeSummary.CreateWithFunctionName(f"{__name__}.show")
        summary.SetOptions(options | lldb.eTypeOptionHideValue)
        category.AddTypeSummary(name, summary)
        children = lldb.SBTypeSynthetic.CreateWithClassName(f"{__name__}.Children")
        children.SetOptions(options)
        category.AddTypeSynthetic(name, children)
    category.SetEnabled(True)
