"""The texts and children that debuggers show for lum's values, common to gdb and lldb.

A front end wraps a value of its debugger in a class with these methods. Each raises Unreadable if the value cannot be
read, because its memory is not mapped or because it was optimised out:

    type_name()            the name of its type, without const, reference and typedefs
    member(name)           a member, wrapped
    first_member()         its first member, wrapped
    elements()             the elements of an array, wrapped
    number()               an arithmetic value, an enumerator or a pointer as a Python number
    read(address, size)    bytes of the process
    identity_lazy(symbol)  the address of the Lazy to which the reference with this linker name refers, or None

`KINDS` lists the types. `describe` returns the text and the children of a value.
"""

import re
import struct
from typing import Any, Callable, List, NamedTuple, Tuple, Union


class Unreadable(Exception):
    """A part of a value cannot be read. The text says why, in one or two words."""


class Numbers(NamedTuple):
    """Numbers that are not adjacent in the process's memory. The front end makes an array of them."""

    element_type: str
    values: Tuple[float, ...]


class Child(NamedTuple):
    """One line below a value: a name, and numbers or a value of the front end."""

    name: str
    content: Union[Numbers, Any]


class Description(NamedTuple):
    """A line of text, or None if the children suffice, and the children."""

    summary: Union[str, None]
    children: List[Child] = []


class Kind(NamedTuple):
    """Types that are shown in the same way. The pattern is an extended regular expression for the whole type name."""

    name: str
    pattern: str
    describe: Callable[[Any, "re.Match"], Description]


_CODES = {"float": "f", "double": "d"}


def _number_text(number, element_type):
    """The decimal number with the fewest digits, but at least six, that reads back as the same value of its type."""
    if isinstance(number, int):
        return str(number)
    code = _CODES.get(element_type, "d")
    for precision in range(6, 18):  # with fewer digits, 100 would have an exponent
        text = f"{number:.{precision}g}"
        if struct.pack(code, float(text)) == struct.pack(code, number):
            break
    return text  # a NaN with a sign or payload gets here: its text does not read back


def _tuple_text(values, element_type):
    return "(" + ", ".join(_number_text(value, element_type) for value in values) + ")"


def _describe_tuple(components, element_type):
    values = [element.number() for element in components.first_member().elements()]
    return Description(_tuple_text(values, element_type))


def _describe_vector(value, match):
    return _describe_tuple(value.member("m_components"), match[1])


def _describe_point(value, match):
    return _describe_tuple(value.member("m_position").member("m_components"), match[1])


def _describe_plane(value, match):
    a, b, c, d = (value.member(name).number() for name in ("m_a", "m_b", "m_c", "m_d"))
    text = f"{_number_text(a, match[1])} x"
    for factor, axis in ((b, "y"), (c, "z")):
        factor_text = _number_text(factor, match[1])
        sign, digits = ("-", factor_text[1:]) if factor_text.startswith("-") else ("+", factor_text)
        text += f" {sign} {digits} {axis}"
    return Description(f"{text} = {_number_text(d, match[1])}")


def _describe_range(value, match):
    lower, upper = (value.member(name).number() for name in ("m_lower", "m_upper"))
    text = f"[{_number_text(lower, match[1])}, {_number_text(upper, match[1])}]"
    return Description(text + (" empty" if lower > upper else ""))


def _describe_optional(value, _match):
    if not value.member("m_is_engaged").number():
        return Description("nullopt")
    return Description(None, [Child("value", value.member("m_value"))])


class _Handle:
    """The object and the reference count behind a lum::Handle; both 0 when it is empty."""

    def __init__(self, value):
        self._value = value
        self.address = value.member("mp_object").number()

    def count(self):
        """The count: an unsigned long, as for all of the library's own handles."""
        address = self._value.member("mp_reference_count").number()
        return struct.unpack("L", self._value.read(address, struct.calcsize("L")))[0]

    def count_text(self):
        count = self.count()
        return f"{count} reference" + ("" if count == 1 else "s")

    def numbers(self, element_type, count):
        """The object as an array. Eigen's transforms and quaternions consist of their numbers."""
        layout = f"{count}{_CODES[element_type]}"
        return struct.unpack(layout, self._value.read(self.address, struct.calcsize(layout)))


def _describe_handle(value, _match):
    handle = _Handle(value)
    if handle.address == 0:
        return Description("Handle, empty")
    return Description(f"Handle onto {handle.address:#x}, {handle.count_text()}")


# A Lazy begins with the flag that says whether its value exists. The value, a Handle, follows at the next multiple of a
# pointer's size and begins with the pointer to its object.
_POINTER_SIZE = struct.calcsize("P")


def _identity_address(value, symbol):
    """The address of the shared identity object that a class's mgh_identity holds, or None."""
    lazy = value.identity_lazy(symbol)
    if lazy is None or value.read(lazy, 1) == b"\0":
        return None
    return struct.unpack("P", value.read(lazy + _POINTER_SIZE, _POINTER_SIZE))[0]


def _is_known_identity(value, handle, symbol):
    """Also False if the identity cannot be read; then only the words "known identity" are missing."""
    try:
        return handle.address == _identity_address(value, symbol)
    except Unreadable:
        return False


def _rows(name, values, element_type):
    """The rows of a matrix that is stored column by column."""
    return [Child(f"{name} {row}", Numbers(element_type, values[row::4])) for row in range(4)]


def _describe_matrix(value, match):
    element_type = match[1]
    name = f"Matrix<{element_type}>"
    objects = value.member("m_objects")
    transform = _Handle(objects.member("first"))
    inverse = _Handle(objects.member("second"))
    if transform.address == 0:
        return Description(f"{name}, moved from")
    symbol = f"_ZN3lum6MatrixI{_CODES[element_type]}E12mgh_identityE"
    parts = [name]
    if _is_known_identity(value, transform, symbol):
        parts.append("known identity")
    parts.append(transform.count_text())
    children = _rows("row", transform.numbers(element_type, 16), element_type)
    if inverse.address == 0:
        parts.append("no inverse")
    elif inverse.address != transform.address:
        parts.append(f"inverse with {inverse.count_text()}")
        children += _rows("inverse row", inverse.numbers(element_type, 16), element_type)
    return Description(", ".join(parts), children)


def _describe_quaternion(value, _match):
    handle = _Handle(value.member("m_handle"))
    if handle.address == 0:
        return Description("Quaternionf, moved from")
    parts = ["Quaternionf " + _tuple_text(handle.numbers("float", 4), "float")]
    if _is_known_identity(value, handle, "_ZN3lum11Quaternionf12mgh_identityE"):
        parts.append("known identity")
    parts.append(handle.count_text())
    return Description(", ".join(parts))


def _axes_text(mask):
    return "".join(axis for bit, axis in enumerate("XYZ") if mask >> bit & 1)


def _vertex_text(vertex):
    return f"({vertex & 1}, {vertex >> 1 & 1}, {vertex >> 2 & 1})"


def _element_text(element):
    """An element of the cube by its free axes and position; None for an invalid number."""
    free, position = element >> 3, element & 7
    dimension = bin(free).count("1")
    if free > 7 or free & position:
        return None
    if dimension == 0:
        return f"Vertex{position} {_vertex_text(position)}"
    if dimension == 1:
        end = position + free
        return f"Edge{position}{end} from {_vertex_text(position)} to {_vertex_text(end)}"
    if dimension == 2:
        normal = _axes_text(7 ^ free)
        vertices = " ".join(str(vertex) for vertex in range(8) if vertex & ~free == position)
        return f"Face{normal}{1 if position else 0} with vertices {vertices}"
    return "WholeCube"


def _space_text(mask):
    """A set of the cube's axes; None for an invalid number and for the empty set."""
    names = {1: "Axis", 2: "Plane", 3: "Volume"}
    return names[bin(mask).count("1")] + _axes_text(mask) if 0 < mask <= 7 else None


def _canonical_text(mask):
    """A canonical element: its kind and the axes along which it extends."""
    names = ("CanonicalVertex", "CanonicalEdge", "CanonicalFace", "CanonicalCube")
    if mask > 7:
        return None
    axes = _axes_text(mask)
    return names[bin(mask).count("1")] + (f" along {axes}" if axes else "")


def _describe_identifier(text_of):
    """For an enumeration: the text if the value is a valid enumerator, otherwise the number."""
    def describe_enumerator(value, match):
        number = value.number()
        text = text_of(number)
        expected = {"Orientation": "Axis", "Cube": "WholeCube"}.get(match[1], match[1])
        return Description(text if text and text.startswith(expected) else str(number))
    return describe_enumerator


def _describe_index(text_of):
    """For a class of elements: the text of the index if it is valid, otherwise the number."""
    def describe_class(value, _match):
        number = value.member("m_index").number()
        return Description(text_of(number) or str(number))
    return describe_class


KINDS = (
    Kind("Matrix", r"lum::Matrix<(float|double)>", _describe_matrix),
    Kind("Quaternionf", r"lum::Quaternionf", _describe_quaternion),
    Kind("Handle", r"lum::Handle<.+, std::atomic<unsigned long>, .+>", _describe_handle),
    Kind("Vector", r"lum::Vector<(float|double), [23][ulUL]*>", _describe_vector),
    Kind("Point", r"lum::Point<(float|double), [23][ulUL]*>", _describe_point),
    Kind("Plane", r"lum::Plane<(float|double)>", _describe_plane),
    Kind("Range", r"lum::Range<([a-z ]+)>", _describe_range),
    Kind("optional", r"lum::optional<.+>", _describe_optional),
    Kind("CubeElementIds", r"lum::CubeElementIds::(Vertex|Edge|Face|Cube)", _describe_identifier(_element_text)),
    Kind("CubeSpaceIds", r"lum::CubeSpaceIds::(Orientation|Plane|Volume)", _describe_identifier(_space_text)),
    Kind("CanonicalCubeElementIds", r"lum::CanonicalCubeElementIds::(Canonical(Vertex|Edge|Face|Cube))",
         _describe_identifier(_canonical_text)),
    Kind("CubeElement", r"lum::CubeElement", _describe_index(_element_text)),
    Kind("CubeSpace", r"lum::CubeSpace", _describe_index(_space_text)),
    Kind("CanonicalCubeElement", r"lum::CanonicalCubeElement", _describe_index(_canonical_text)),
)


def find_kind(type_name):
    """The kind of a type, or None for other libraries' types."""
    return next((kind for kind in KINDS if re.fullmatch(kind.pattern, type_name)), None)


def describe(value):
    """The description of a value of one of the kinds, in any state of the value and the process."""
    type_name = value.type_name()
    kind = find_kind(type_name)
    try:
        return kind.describe(value, re.fullmatch(kind.pattern, type_name))
    except Unreadable as reason:
        return Description(f"{kind.name} <{reason}>")
