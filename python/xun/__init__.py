"""Python interface to libxun, the engineering-unit library.

Pure ctypes over the library's C interface::

    import numpy as np
    import xun

    xun.load()                                   # $KORVANE_HOME/bin/XUN.xml
    xun.convert(10.0, "UnitFoot", "UnitMeter")   # 3.048
    levels = np.array([1.0, 2.5, -999.0])
    xun.convert_array(levels, "foot", "meter", delete_value=-999.0)   # in place

Units are named by a ``Unit``, by their numeric key (tag), or by a text: an
ident ("UnitFoot") or a name as a user types it ("foot", "feet", "ft"). Item
types are named by an ``ItemType``, their numeric key or their ident; filters by
a ``Filter``, their bit or their ident. Requests the library refuses raise
``XunError``; arguments of the wrong kind raise ``TypeError`` or ``ValueError``.

The library keeps its tables process-wide, for the life of the process: a load
adds to what is there and nothing is ever unloaded. Calls are serialised by a
lock, so threads may share the package.
"""

import ctypes
import math
import os

from ._errors import XunError
from ._native import LIBRARY_NAME, library, library_path, library_version, lock
from ._version import __version__

__all__ = [
    "XunError",
    "Unit",
    "ItemType",
    "Filter",
    "load",
    "load_tables",
    "load_setup",
    "setup_path",
    "write_includes",
    "unit",
    "unit_by_tag",
    "unit_by_ident",
    "unit_by_name",
    "units",
    "new_unit",
    "item_type",
    "item_type_by_key",
    "item_type_by_ident",
    "item_types",
    "new_item_type",
    "filter",
    "filter_by_bit",
    "filter_by_ident",
    "filters",
    "convert",
    "to_base",
    "from_base",
    "to_user_unit",
    "from_user_unit",
    "convert_array",
    "array_to_user_unit",
    "array_from_user_unit",
    "library",
    "library_path",
    "library_version",
    "LIBRARY_NAME",
    "MAX_ARRAY_SIZE",
    "PATH_LIMIT",
]

# Paths are kept by the library in buffers of 260 bytes.
PATH_LIMIT = 259
# Array lengths cross the C interface as int.
MAX_ARRAY_SIZE = 2**31 - 1

# The symbols of the seven base dimensions, in the library's order: length,
# mass, time, temperature, electric current, amount of substance, luminous
# intensity.
_DIMENSION_SYMBOLS = ("L", "M", "T", "\u0398", "I", "N", "J")

# The files that xunWriteItemTypeIncludes writes into the current directory.
INCLUDE_FILES = (
    "xunDefine.c__",
    "xunDefine.f__",
    "xunDefine.p__",
    "xunDefine.cs",
    "xunAllowedUnits.HTML",
)


# ---- texts ------------------------------------------------------------------


def _encode(text, what):
    """A text argument as the bytes the library takes."""
    if isinstance(text, bytes):
        data = text
    elif isinstance(text, str):
        data = text.encode("utf-8", "surrogateescape")
    else:
        raise TypeError(f"{what} must be a text, got {type(text).__name__}")
    if b"\0" in data:
        raise ValueError(f"{what} contains a NUL character: {text!r}")
    return data


def _decode(data):
    if data is None:
        return ""
    return data.decode("utf-8", "surrogateescape")


def _text_out(function, *args):
    """Calls a function whose last argument receives a text; None when it fails."""
    out = ctypes.c_char_p()
    if function(*args, ctypes.byref(out)) != 1:
        return None
    return _decode(out.value)


def _int_arg(value, what):
    if isinstance(value, bool) or not isinstance(value, int):
        raise TypeError(f"{what} must be an int, got {type(value).__name__}")
    if not -(2**31) <= value < 2**31:
        raise ValueError(f"{what} {value} is outside the range of a C int")
    return value


def _float_arg(value, what):
    try:
        return float(value)
    except (TypeError, ValueError):
        raise TypeError(f"{what} must be a number, got {type(value).__name__}") from None


# ---- loading ----------------------------------------------------------------


def _setup_file(path):
    """The setup file that a load with this path reads, checked before the library
    sees it: a missing file would otherwise only be reported on standard error."""
    if path is None or path == "" or path == b"":
        home = os.environ.get("KORVANE_HOME")
        if home is None:
            raise XunError(
                "KORVANE_HOME is not set: set it to an installation directory "
                "(the one that holds bin/XUN.xml) or pass the setup file's path"
            )
        name = home + "/bin/XUN.xml"
    else:
        try:
            name = os.fsdecode(os.fspath(path))
        except TypeError:
            raise TypeError(f"path must be a text or a path, got {type(path).__name__}") from None
    encoded = os.fsencode(name)
    if b"\0" in encoded:
        raise ValueError(f"path contains a NUL character: {name!r}")
    if len(encoded) > PATH_LIMIT:
        raise XunError(
            f"the path of the setup file is {len(encoded)} bytes long, the library takes at "
            f"most {PATH_LIMIT}: '{name}'"
        )
    if os.path.isdir(name):
        raise XunError(f"'{name}' is a directory, not a setup file")
    if not os.path.exists(name):
        raise XunError(f"setup file '{name}' does not exist")
    if not os.access(name, os.R_OK):
        raise XunError(f"setup file '{name}' cannot be read")
    return name, encoded


def _setup_path_bytes():
    out = ctypes.c_char_p()
    library().xunSetupGetPath(ctypes.byref(out))
    return out.value or b""


def _other_spelling(encoded):
    """The same file under another name ("dir/./name"), or None."""
    directory, base = os.path.split(encoded)
    spelling = (directory if directory else b".") + b"/./" + base
    return spelling if len(spelling) <= PATH_LIMIT else None


def load(path=""):
    """Loads a setup file, then the localised texts of the language files
    "xuntype.lan", "xununit.lan" and "xunfilter.lan" in $KORVANE_HOME/bin
    (xunLoadItemTypeTables). An empty path loads $KORVANE_HOME/bin/XUN.xml.

    Returns the name of the loaded file. Raises XunError when KORVANE_HOME is
    needed but unset, when the file does not exist or cannot be read, and when
    the library cannot parse it. A language file that lacks a key of the setup
    file ends the process (the library's own rule): ship them together.

    Loading again adds what is new and refreshes descriptions; nothing is
    removed. When the same file is loaded again it is passed as "dir/./name",
    so that the library's record of the last file loaded tells whether this
    load succeeded (the C entry point has no result).
    """
    name, encoded = _setup_file(path)
    with lock:
        lib = library()
        before = _setup_path_bytes()
        text = encoded
        if before == encoded:
            text = _other_spelling(encoded) or encoded
        lib.xunLoadItemTypeTables(text)
        after = _setup_path_bytes()
    if after != text:
        raise XunError(
            f"cannot load the setup file '{name}': the library could not parse it "
            "(its message is on standard error)"
        )
    return os.fsdecode(text)


load_tables = load


def load_setup(path=""):
    """Loads a setup file without applying the language files (xunSetupLoad):
    descriptions and abbreviations are those of the setup file. An empty path
    loads $KORVANE_HOME/bin/XUN.xml. Returns the name of the loaded file."""
    name, encoded = _setup_file(path)
    with lock:
        ok = library().xunSetupLoad(encoded)
    if ok != 1:
        raise XunError(
            f"cannot load the setup file '{name}': the library could not parse it "
            "(its message is on standard error)"
        )
    return name


def setup_path():
    """The name of the setup file loaded last ("" before the first load)."""
    with lock:
        return os.fsdecode(_setup_path_bytes())


def write_includes(directory="."):
    """Writes the constant definitions for C, Fortran, Pascal and C# and the
    allowed-units report (the files of INCLUDE_FILES) into directory, replacing
    files of those names. Returns their paths.

    The library writes into the current directory: the process's working
    directory is changed for the duration of the call. A file that cannot be
    written would end the process in the library, so the directory and the files
    are checked first and a problem raises XunError instead."""
    directory = os.fsdecode(os.fspath(directory))
    if not os.path.isdir(directory):
        raise XunError(f"'{directory}' is not a directory")
    if not os.access(directory, os.W_OK | os.X_OK):
        raise XunError(f"cannot write into the directory '{directory}'")
    paths = [os.path.join(directory, name) for name in INCLUDE_FILES]
    for path in paths:
        if os.path.isdir(path):
            raise XunError(f"cannot write '{path}': it is a directory")
        if os.path.lexists(path) and not os.access(path, os.W_OK):
            raise XunError(f"cannot write '{path}'")
    with lock:
        lib = library()
        previous = os.getcwd()
        os.chdir(directory)
        try:
            lib.xunWriteItemTypeIncludes()
        finally:
            os.chdir(previous)
    return paths


# ---- units ------------------------------------------------------------------


class Unit:
    """A registered unit, known by its numeric key (tag). Its texts are read from
    the library on every access, so they follow later loads."""

    __slots__ = ("_tag",)

    def __init__(self, tag):
        self._tag = tag

    @property
    def tag(self):
        """The numeric key."""
        return self._tag

    @property
    def ident(self):
        with lock:
            return _text_out(library().xunGetUnitIdent, self._tag)

    @property
    def description(self):
        """The description (the unit's key text), localised by the language files."""
        with lock:
            return _text_out(library().xunGetUnitKey, self._tag)

    @property
    def abbreviation(self):
        with lock:
            return _text_out(library().xunGetUnitAbbreviation, self._tag)

    def _parameters(self):
        factor = ctypes.c_double()
        offset = ctypes.c_double()
        powers = (ctypes.c_double * 7)()
        factors = (ctypes.c_double * 7)()
        with lock:
            ok = library().xunUnitGetParameters(
                self._tag, ctypes.byref(factor), ctypes.byref(offset), powers, factors
            )
        if ok != 1:
            raise XunError(f"unknown unit tag {self._tag}")
        return factor.value, offset.value, tuple(powers), tuple(factors)

    @property
    def factor(self):
        """Value in the base unit = value * factor + offset."""
        return self._parameters()[0]

    @property
    def offset(self):
        return self._parameters()[1]

    @property
    def dimension(self):
        """The seven exponents: length, mass, time, temperature, electric current,
        amount of substance, luminous intensity."""
        return self._parameters()[2]

    @property
    def dimension_factors(self):
        """The seven per-dimension factors."""
        return self._parameters()[3]

    @property
    def dimension_text(self):
        """The dimension in symbols, for example "L^3 T^-1" or "dimensionless"."""
        return _dimension_text(self.dimension)

    @property
    def base_unit(self):
        """The first registered unit of the same dimension."""
        tag = ctypes.c_int()
        key = ctypes.c_char_p()
        with lock:
            ok = library().xunGetBaseUnit(self._tag, ctypes.byref(tag), ctypes.byref(key))
        if ok != 1:
            raise XunError(f"unit {self._describe()} has no base unit")
        return Unit(tag.value)

    def equivalent_units(self):
        """Every registered unit of the same dimension (this one included), in
        registration order."""
        result = []
        previous = 0
        tag = ctypes.c_int()
        key = ctypes.c_char_p()
        with lock:
            lib = library()
            while lib.xunGetNextEqvUnit(self._tag, previous, ctypes.byref(tag), ctypes.byref(key)):
                result.append(Unit(tag.value))
                previous = tag.value
        return result

    def is_equivalent(self, other):
        """True when both units have the same dimension (and can be converted)."""
        other = unit(other)
        with lock:
            return library().xunUnitsEqv(self._tag, other._tag) == 1

    def convert(self, value, to):
        """value in this unit, converted to the unit to."""
        return convert(value, self, to)

    def _describe(self):
        description = self.description
        return f"'{description}'" if description is not None else str(self._tag)

    def __eq__(self, other):
        return isinstance(other, Unit) and other._tag == self._tag

    def __hash__(self):
        return hash(("Unit", self._tag))

    def __repr__(self):
        return f"Unit({self._tag}, {self.ident!r}, {self.description!r})"


def _dimension_text(powers):
    parts = []
    for symbol, power in zip(_DIMENSION_SYMBOLS, powers):
        if power == 0:
            continue
        if power == 1:
            parts.append(symbol)
        elif float(power).is_integer():
            parts.append(f"{symbol}^{int(power)}")
        else:
            parts.append(f"{symbol}^{power:g}")
    return " ".join(parts) if parts else "dimensionless"


def _unit_exists(tag):
    with lock:
        return _text_out(library().xunGetUnitIdent, tag) is not None


def unit_by_tag(tag):
    """The unit with this numeric key."""
    tag = _int_arg(tag, "unit tag")
    if not _unit_exists(tag):
        raise XunError(f"unknown unit tag {tag}")
    return Unit(tag)


def unit_by_ident(ident):
    """The unit with this ident (exact, case-sensitive)."""
    data = _encode(ident, "unit ident")
    tag = ctypes.c_int()
    with lock:
        ok = library().xunGetUnitTagFromIdent(data, ctypes.byref(tag))
    if ok != 1:
        raise XunError(f"unknown unit ident '{_decode(data)}'")
    return Unit(tag.value)


def unit_by_name(name):
    """The first unit whose description matches name (also as singular or plural
    with a final "s") or which has name as an alias."""
    data = _encode(name, "unit name")
    tag = ctypes.c_int()
    with lock:
        ok = library().xunGetUnitTag(data, ctypes.byref(tag))
    if ok != 1:
        raise XunError(f"unknown unit '{_decode(data)}'")
    return Unit(tag.value)


def unit(which):
    """A unit named by a Unit, its numeric key, its ident or its name."""
    if isinstance(which, Unit):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return unit_by_tag(which)
    if isinstance(which, (str, bytes)):
        try:
            return unit_by_ident(which)
        except XunError:
            pass
        try:
            return unit_by_name(which)
        except XunError:
            raise XunError(f"unknown unit '{_decode(_encode(which, 'unit'))}'") from None
    raise TypeError(f"a unit is named by a Unit, an int or a text, got {type(which).__name__}")


def units():
    """Every registered unit, in registration order."""
    result = []
    previous = 0
    tag = ctypes.c_int()
    key = ctypes.c_char_p()
    with lock:
        lib = library()
        while lib.xunGetNextUnit(previous, ctypes.byref(tag), ctypes.byref(key)):
            result.append(Unit(tag.value))
            previous = tag.value
    return result


def new_unit(ident, description, abbreviation, expression):
    """Creates a unit from an expression over registered units (keys from 100000
    up), for example new_unit("UnitFurlong", "furlong", "fur", "UnitFoot*660")."""
    arguments = [
        _encode(ident, "ident"),
        _encode(description, "description"),
        _encode(abbreviation, "abbreviation"),
        _encode(expression, "expression"),
    ]
    with lock:
        lib = library()
        existing = ctypes.c_int()
        if lib.xunGetUnitTagFromIdent(arguments[0], ctypes.byref(existing)) == 1:
            raise XunError(f"a unit with the ident '{_decode(arguments[0])}' already exists")
        ok = lib.xunUnitNew(*arguments)
    if ok != 1:
        raise XunError(
            f"cannot create the unit '{_decode(arguments[0])}': the expression "
            f"'{_decode(arguments[3])}' does not evaluate to a unit"
        )
    return unit_by_ident(arguments[0])


# ---- item types ---------------------------------------------------------------


class ItemType:
    """A registered item type (a quantity such as a water level), known by its
    numeric key."""

    __slots__ = ("_key",)

    def __init__(self, key):
        self._key = key

    @property
    def key(self):
        return self._key

    @property
    def ident(self):
        with lock:
            return _text_out(library().xunGetItemTypeIdent, self._key)

    @property
    def description(self):
        """The description (the item type's key text), localised by the language files."""
        with lock:
            return _text_out(library().xunGetItemTypeKey, self._key)

    def _params(self):
        decimals = ctypes.c_int()
        default = ctypes.c_double()
        with lock:
            ok = library().xunGetItemTypeParams(
                self._key, ctypes.byref(decimals), ctypes.byref(default)
            )
        if ok != 1:
            raise XunError(f"unknown item type key {self._key}")
        return decimals.value, default.value

    @property
    def decimals(self):
        return self._params()[0]

    @property
    def default_value(self):
        return self._params()[1]

    @property
    def units(self):
        """The allowed units, the default unit first (every unit for the
        any-unit item type 999)."""
        result = []
        tag = ctypes.c_int()
        key = ctypes.c_char_p()
        with lock:
            lib = library()
            count = lib.xunGetItemUnitCount(self._key)
            for seq in range(1, count + 1):
                if lib.xunGetItemUnitSeq(self._key, seq, ctypes.byref(tag), ctypes.byref(key)):
                    result.append(Unit(tag.value))
        return result

    @property
    def default_unit(self):
        """The first allowed unit, or None."""
        allowed = self.units
        return allowed[0] if allowed else None

    @property
    def user_unit(self):
        """The unit values of this item type are shown in: the one set, else the
        default unit; None when there is neither."""
        tag = self._user_unit_tag()
        return Unit(tag) if tag != -1 else None

    @user_unit.setter
    def user_unit(self, which):
        target = unit(which)
        with lock:
            ok = library().xunSetItemUserUnit(self._key, target.tag)
        if ok != 1:
            raise XunError(
                f"unit {target._describe()} ({target.dimension_text}) cannot be the user "
                f"unit of item type {self._describe()} ({self._dimension_text()})"
            )

    def _user_unit_tag(self):
        tag = ctypes.c_int()
        with lock:
            ok = library().xunGetItemUserUnit(self._key, ctypes.byref(tag))
        if ok != 1:
            raise XunError(f"unknown item type key {self._key}")
        return tag.value

    def find_unit(self, name):
        """The allowed unit whose description matches name (singular or plural)."""
        data = _encode(name, "unit name")
        tag = ctypes.c_int()
        with lock:
            ok = library().xunGetItemUnitTag(self._key, data, ctypes.byref(tag))
        if ok != 1:
            raise XunError(
                f"item type {self._describe()} allows no unit named '{_decode(data)}'"
            )
        return Unit(tag.value)

    def is_compatible(self, which):
        """True when the unit has this item type's dimension."""
        target = unit(which)
        with lock:
            return library().xunItemUnitEqv(self._key, target.tag) == 1

    def in_filter(self, which):
        """True when this item type belongs to the filter."""
        bits = filter(which).bit
        with lock:
            return library().xunItemFilterEqv(self._key, bits) == 1

    def _dimension_text(self):
        allowed = self.units
        return allowed[0].dimension_text if allowed else "no dimension"

    def _describe(self):
        description = self.description
        return f"'{description}'" if description is not None else str(self._key)

    def __eq__(self, other):
        return isinstance(other, ItemType) and other._key == self._key

    def __hash__(self):
        return hash(("ItemType", self._key))

    def __repr__(self):
        return f"ItemType({self._key}, {self.ident!r}, {self.description!r})"


def item_type_by_key(key):
    """The item type with this numeric key."""
    key = _int_arg(key, "item type key")
    with lock:
        found = _text_out(library().xunGetItemTypeIdent, key) is not None
    if not found:
        raise XunError(f"unknown item type key {key}")
    return ItemType(key)


def item_type_by_ident(ident):
    """The item type with this ident."""
    data = _encode(ident, "item type ident")
    key = ctypes.c_int()
    with lock:
        ok = library().xunGetItemTypeKeyFromIdent(data, ctypes.byref(key))
    if ok != 1:
        raise XunError(f"unknown item type ident '{_decode(data)}'")
    return ItemType(key.value)


def item_type(which):
    """An item type named by an ItemType, its numeric key or its ident."""
    if isinstance(which, ItemType):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return item_type_by_key(which)
    if isinstance(which, (str, bytes)):
        return item_type_by_ident(which)
    raise TypeError(
        f"an item type is named by an ItemType, an int or a text, got {type(which).__name__}"
    )


def item_types():
    """Every registered item type, in registration order."""
    result = []
    key = ctypes.c_int()
    text = ctypes.c_char_p()
    with lock:
        lib = library()
        for seq in range(1, lib.xunGetItemTypeCount() + 1):
            if lib.xunGetItemTypeSeq(seq, ctypes.byref(key), ctypes.byref(text)):
                result.append(ItemType(key.value))
    return result


def new_item_type(ident, description, default_unit):
    """Creates an item type (keys from 110000 up) whose dimension, default and
    only allowed unit is the given unit."""
    data_ident = _encode(ident, "ident")
    data_description = _encode(description, "description")
    target = unit(default_unit)
    data_unit = _encode(target.ident, "unit ident")
    with lock:
        lib = library()
        existing = ctypes.c_int()
        if lib.xunGetItemTypeKeyFromIdent(data_ident, ctypes.byref(existing)) == 1:
            raise XunError(f"an item type with the ident '{_decode(data_ident)}' already exists")
        ok = lib.xunItemTypeNew(data_ident, data_description, 0, data_unit)
    if ok != 1:
        raise XunError(f"cannot create the item type '{_decode(data_ident)}'")
    return item_type_by_ident(data_ident)


# ---- filters ------------------------------------------------------------------


class Filter:
    """A registered filter: a named group of item types, known by its bit."""

    __slots__ = ("_bit",)

    def __init__(self, bit):
        self._bit = bit

    @property
    def bit(self):
        return self._bit

    @property
    def ident(self):
        with lock:
            return _text_out(library().xunGetFilterIdent, self._bit)

    @property
    def description(self):
        with lock:
            return _text_out(library().xunGetFilterKey, self._bit)

    def item_types(self):
        """The item types of the filter (file items only, except for the flyby
        filter), in registration order."""
        result = []
        key = ctypes.c_int()
        text = ctypes.c_char_p()
        with lock:
            lib = library()
            for seq in range(1, lib.xunGetFilteredItemTypeCount(self._bit) + 1):
                if lib.xunGetFilteredItemTypeSeq(
                    self._bit, seq, ctypes.byref(key), ctypes.byref(text)
                ):
                    result.append(ItemType(key.value))
        return result

    def __eq__(self, other):
        return isinstance(other, Filter) and other._bit == self._bit

    def __hash__(self):
        return hash(("Filter", self._bit))

    def __repr__(self):
        return f"Filter({self._bit:#x}, {self.ident!r}, {self.description!r})"


def filter_by_bit(bit):
    """The filter with this bit value."""
    bit = _int_arg(bit, "filter bit")
    with lock:
        found = _text_out(library().xunGetFilterIdent, bit) is not None
    if not found:
        raise XunError(f"unknown filter bit {bit:#x}")
    return Filter(bit)


def filter_by_ident(ident):
    """The filter with this ident."""
    data = _encode(ident, "filter ident")
    bit = ctypes.c_int()
    with lock:
        ok = library().xunGetFilterKeyFromIdent(data, ctypes.byref(bit))
    if ok != 1:
        raise XunError(f"unknown filter ident '{_decode(data)}'")
    return Filter(bit.value)


def filter(which):  # noqa: A001 - the package's own namespace
    """A filter named by a Filter, its bit or its ident."""
    if isinstance(which, Filter):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return filter_by_bit(which)
    if isinstance(which, (str, bytes)):
        return filter_by_ident(which)
    raise TypeError(f"a filter is named by a Filter, an int or a text, got {type(which).__name__}")


def filters():
    """Every registered filter, in registration order."""
    result = []
    bit = ctypes.c_int()
    text = ctypes.c_char_p()
    with lock:
        lib = library()
        for seq in range(1, lib.xunGetFilterCount() + 1):
            if lib.xunGetFilterSeq(seq, ctypes.byref(bit), ctypes.byref(text)):
                result.append(Filter(bit.value))
    return result


# ---- conversion ---------------------------------------------------------------


def _conversion_error(source, target, context=""):
    """Why the library refused to convert between two registered units."""
    for u in (source, target):
        if u.tag == 0:
            return XunError(f"unit {u._describe()} has the key 0 and takes part in no conversion")
    return XunError(
        f"cannot convert from {source._describe()} ({source.dimension_text}) "
        f"to {target._describe()} ({target.dimension_text}){context}"
    )


def _user_unit_of(item):
    tag = item._user_unit_tag()
    if tag == -1:
        raise XunError(f"item type {item._describe()} has no user unit")
    if not _unit_exists(tag):
        raise XunError(
            f"the user unit {tag} of item type {item._describe()} is not a registered unit"
        )
    return Unit(tag)


def convert(value, from_unit, to_unit):
    """value in from_unit, converted to to_unit (double precision)."""
    x = _float_arg(value, "value")
    source, target = unit(from_unit), unit(to_unit)
    result = ctypes.c_double()
    with lock:
        ok = library().xunConvertUnit(source.tag, target.tag, ctypes.byref(result), x)
    if ok != 1:
        raise _conversion_error(source, target)
    return result.value


def to_base(value, in_unit):
    """value in the unit, converted to the base unit of its dimension."""
    x = _float_arg(value, "value")
    source = unit(in_unit)
    result = ctypes.c_double()
    with lock:
        ok = library().xunConvertUnitToBase(source.tag, ctypes.byref(result), x)
    if ok != 1:
        raise XunError(f"unknown unit tag {source.tag}")
    return result.value


def from_base(value, to_unit):
    """value in the base unit of the unit's dimension, converted to the unit."""
    x = _float_arg(value, "value")
    target = unit(to_unit)
    result = ctypes.c_double()
    with lock:
        ok = library().xunConvertUnitFromBase(target.tag, ctypes.byref(result), x)
    if ok != 1:
        raise XunError(f"unknown unit tag {target.tag}")
    return result.value


def to_user_unit(value, item, from_unit):
    """value in from_unit, converted to the item type's user unit."""
    x = _float_arg(value, "value")
    it, source = item_type(item), unit(from_unit)
    result = ctypes.c_double()
    with lock:
        ok = library().xunConvertToUserUnit(it.key, source.tag, ctypes.byref(result), x)
    if ok != 1:
        target = _user_unit_of(it)
        raise _conversion_error(
            source, target, f", the user unit of item type {it._describe()}"
        )
    return result.value


def from_user_unit(value, item, to_unit):
    """value in the item type's user unit, converted to to_unit."""
    x = _float_arg(value, "value")
    it, target = item_type(item), unit(to_unit)
    result = ctypes.c_double()
    with lock:
        ok = library().xunConvertFromUserUnit(it.key, target.tag, ctypes.byref(result), x)
    if ok != 1:
        source = _user_unit_of(it)
        raise _conversion_error(
            source, target, f" (from the user unit of item type {it._describe()})"
        )
    return result.value


def _array_arguments(array):
    """(pointer, count, is_double) for an array the library may convert in place."""
    import numpy as np

    if not isinstance(array, np.ndarray):
        raise TypeError(f"expected a NumPy array, got {type(array).__name__}")
    if array.dtype == np.float64:
        double = True
    elif array.dtype == np.float32:
        double = False
    else:
        raise TypeError(
            f"the array must hold float64 or float32 in native byte order, not {array.dtype.str}"
        )
    if not (array.flags.c_contiguous or array.flags.f_contiguous):
        raise ValueError(
            "the array is not contiguous: convert numpy.ascontiguousarray(array) and assign "
            "the result back"
        )
    if not array.flags.writeable:
        raise ValueError("the array is read-only: it is converted in place")
    if not array.flags.aligned:
        raise ValueError("the array is not aligned: convert an aligned copy")
    if array.size > MAX_ARRAY_SIZE:
        raise ValueError(
            f"the array has {array.size} elements; one call converts at most {MAX_ARRAY_SIZE}: "
            "convert it in parts"
        )
    pointer_type = ctypes.POINTER(ctypes.c_double if double else ctypes.c_float)
    return array.ctypes.data_as(pointer_type), int(array.size), double


def convert_array(array, from_unit, to_unit, delete_value=math.inf):
    """Converts a float64 or float32 NumPy array in place from from_unit to
    to_unit, in one call of the library; returns the array. Elements equal to
    delete_value (the marker of a missing value) stay as they are, and so do NaN
    elements. The default, +inf, marks no finite value; +inf itself stays +inf.
    float32 elements are converted in double precision and rounded back; the
    comparison with delete_value is made in float32."""
    pointer, count, double = _array_arguments(array)
    delete = _float_arg(delete_value, "delete_value")
    source, target = unit(from_unit), unit(to_unit)
    with lock:
        lib = library()
        function = lib.xunConvertItemArrayD if double else lib.xunConvertItemArrayF
        ok = function(source.tag, target.tag, pointer, count, delete)
    if ok != 1:
        raise _conversion_error(source, target)
    return array


def array_to_user_unit(array, item, from_unit, delete_value=math.inf):
    """As convert_array, to the item type's user unit."""
    pointer, count, double = _array_arguments(array)
    delete = _float_arg(delete_value, "delete_value")
    it, source = item_type(item), unit(from_unit)
    with lock:
        lib = library()
        function = (
            lib.xunConvertItemArrayToUserUnitD if double else lib.xunConvertItemArrayToUserUnitF
        )
        ok = function(it.key, source.tag, pointer, count, delete)
    if ok != 1:
        target = _user_unit_of(it)
        raise _conversion_error(
            source, target, f", the user unit of item type {it._describe()}"
        )
    return array


def array_from_user_unit(array, item, to_unit, delete_value=math.inf):
    """As convert_array, from the item type's user unit."""
    pointer, count, double = _array_arguments(array)
    delete = _float_arg(delete_value, "delete_value")
    it, target = item_type(item), unit(to_unit)
    with lock:
        lib = library()
        function = (
            lib.xunConvertItemArrayFromUserUnitD
            if double
            else lib.xunConvertItemArrayFromUserUnitF
        )
        ok = function(it.key, target.tag, pointer, count, delete)
    if ok != 1:
        source = _user_unit_of(it)
        raise _conversion_error(
            source, target, f" (from the user unit of item type {it._describe()})"
        )
    return array
