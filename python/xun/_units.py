"""Units: the Unit class, lookups by tag, ident and name, the list of all
units, and units created at run time."""

from __future__ import annotations

import ctypes
from typing import TYPE_CHECKING, Dict, List, Optional, SupportsFloat, Tuple, Union

from ._args import decode, encode, int_arg, text_out
from ._errors import ErrorCode, XunError
from ._loading import ensure_loaded, refuse_fatal_expression
from ._native import ask, failure, last_error, library, lock, walk_ended

if TYPE_CHECKING:  # pragma: no cover
    from ._item_types import ItemTypeLike

# The notations of Unit.text (XUN_NOTATION_... of xun.h).
NOTATIONS: Dict[str, int] = {"cf": 1, "ascii": 2, "unicode": 3}

# The symbols of the seven base dimensions, in the library's order: length,
# mass, time, temperature, electric current, amount of substance, luminous
# intensity.
_DIMENSION_SYMBOLS = ("L", "M", "T", "\u0398", "I", "N", "J")

Dimension = Tuple[float, float, float, float, float, float, float]


class Unit:
    """A registered unit, known by its numeric key (tag). Its texts are read from
    the library on every access, so they follow later loads. Get one through
    xun.unit() and the other lookups: they make sure that the unit exists."""

    __slots__ = ("_tag",)

    def __init__(self, tag: int) -> None:
        self._tag = tag

    @property
    def tag(self) -> int:
        """The numeric key."""
        return self._tag

    @property
    def ident(self) -> str:
        with lock:
            return text_out("xunGetUnitIdent", self._tag)

    @property
    def description(self) -> str:
        """The description (the unit's key text), localised by the language files."""
        with lock:
            return text_out("xunGetUnitKey", self._tag)

    @property
    def abbreviation(self) -> str:
        with lock:
            return text_out("xunGetUnitAbbreviation", self._tag)

    @property
    def expression(self) -> str:
        """The expression the unit was defined by ("" for none)."""
        with lock:
            return text_out("xunGetUnitExpression", self._tag)

    @property
    def aliases(self) -> List[str]:
        """The other names the unit is found by, in the order they were added."""
        result: List[str] = []
        alias = ctypes.c_char_p()
        with lock:
            lib = library()
            while lib.xunGetUnitAlias(self._tag, len(result) + 1, ctypes.byref(alias)) == 1:
                result.append(decode(alias.value))
            # The list ends where the sequence number is out of range.
            if last_error()[0] != ErrorCode.RANGE:
                raise failure("xunGetUnitAlias")
        return result

    def text(self, notation: str = "cf") -> str:
        """A unit string for the unit: "cf" the UDUNITS-2/CF notation for CF units
        attributes ("m3 s-1", "0.3048 m", "K @ 273.15"), "ascii" plain ASCII
        ("m3/s"), "unicode" ("m³/s"). xun.unit() reads each back to a unit of the
        same meaning."""
        if notation not in NOTATIONS:
            raise ValueError(
                f"notation must be one of {', '.join(sorted(NOTATIONS))}, got {notation!r}"
            )
        with lock:
            return text_out("xunGetUnitText", self._tag, NOTATIONS[notation])

    def _parameters(self) -> Tuple[float, float, Dimension, Dimension]:
        factor = ctypes.c_double()
        offset = ctypes.c_double()
        powers = (ctypes.c_double * 7)()
        factors = (ctypes.c_double * 7)()
        with lock:
            ok = library().xunUnitGetParameters(
                self._tag, ctypes.byref(factor), ctypes.byref(offset), powers, factors
            )
            if ok != 1:
                raise failure("xunUnitGetParameters")
        return factor.value, offset.value, _seven(powers), _seven(factors)

    @property
    def factor(self) -> float:
        """Value in the base unit = value * factor + offset."""
        return self._parameters()[0]

    @property
    def offset(self) -> float:
        return self._parameters()[1]

    @property
    def dimension(self) -> Dimension:
        """The seven exponents: length, mass, time, temperature, electric current,
        amount of substance, luminous intensity."""
        return self._parameters()[2]

    @property
    def dimension_factors(self) -> Dimension:
        """The seven per-dimension factors."""
        return self._parameters()[3]

    @property
    def dimension_text(self) -> str:
        """The dimension in symbols, for example "L^3 T^-1" or "dimensionless"."""
        return _dimension_text(self.dimension)

    @property
    def base_unit(self) -> "Unit":
        """The first registered unit of the same dimension."""
        tag = ctypes.c_int()
        key = ctypes.c_char_p()
        with lock:
            ok = library().xunGetBaseUnit(self._tag, ctypes.byref(tag), ctypes.byref(key))
            if ok != 1:
                raise failure("xunGetBaseUnit")
        return Unit(tag.value)

    @property
    def equivalent_units(self) -> List["Unit"]:
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
            walk_ended("xunGetNextEqvUnit")
        return result

    def is_equivalent(self, other: UnitLike) -> bool:
        """True when both units have the same dimension (and can be converted)."""
        target = unit(other)
        with lock:
            return ask("xunUnitsEqv", self._tag, target._tag)

    def convert(self, value: SupportsFloat, to: UnitLike) -> float:
        """value in this unit, converted to the unit to."""
        from ._conversion import convert

        return convert(float(value), self, to)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Unit) and other._tag == self._tag

    def __hash__(self) -> int:
        return hash(("Unit", self._tag))

    def __repr__(self) -> str:
        try:
            return f"Unit({self._tag}, {self.ident!r}, {self.description!r})"
        except XunError:
            return f"Unit({self._tag})"


# What names a unit: a Unit, its numeric key (tag), its ident or its name.
UnitLike = Union[Unit, int, str, bytes]


def _seven(values: "ctypes.Array[ctypes.c_double]") -> Dimension:
    return (values[0], values[1], values[2], values[3], values[4], values[5], values[6])


def _dimension_text(powers: Tuple[float, ...]) -> str:
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


def unit_by_tag(tag: int) -> Unit:
    """The unit with this numeric key."""
    ensure_loaded()
    tag = int_arg(tag, "unit tag")
    with lock:
        text_out("xunGetUnitIdent", tag)
    return Unit(tag)


def unit_by_ident(ident: Union[str, bytes]) -> Unit:
    """The unit with this ident (exact, case-sensitive)."""
    ensure_loaded()
    data = encode(ident, "unit ident")
    tag = ctypes.c_int()
    with lock:
        if library().xunGetUnitTagFromIdent(data, ctypes.byref(tag)) != 1:
            raise failure("xunGetUnitTagFromIdent")
    return Unit(tag.value)


def unit_by_name(name: Union[str, bytes]) -> Unit:
    """The first unit whose description matches name (also as singular or plural
    with a final "s") or which has name as an alias."""
    ensure_loaded()
    data = encode(name, "unit name")
    tag = ctypes.c_int()
    with lock:
        if library().xunGetUnitTag(data, ctypes.byref(tag)) != 1:
            raise failure("xunGetUnitTag")
    return Unit(tag.value)


def parse_unit(text: Union[str, bytes], item: Optional["ItemTypeLike"] = None) -> Unit:
    """The unit a unit string means, as people and data files write it: a name
    (ident, description, alias, abbreviation) or a composed unit ("kg m-2 s-1",
    "m³/s", "ft^3/s", "cubic feet per second", "K @ 273.15"). A text of a
    meaning that no registered unit has gets a unit of its own (ident "xun:...").
    With item, the answer is one of the item type's allowed units, and no unit
    is made. XunError says where a text stops making sense and names near names
    of an unknown name."""
    ensure_loaded()
    data = encode(text, "unit text")
    tag = ctypes.c_int()
    if item is None:
        with lock:
            if library().xunParseUnit(data, ctypes.byref(tag)) != 1:
                raise failure("xunParseUnit")
        return Unit(tag.value)
    from ._item_types import item_type

    key = item_type(item).key
    with lock:
        if library().xunParseItemUnit(key, data, ctypes.byref(tag)) != 1:
            raise failure("xunParseItemUnit")
    return Unit(tag.value)


def unit(which: UnitLike) -> Unit:
    """A unit named by a Unit, its numeric key, or a unit string (parse_unit: an
    ident, a name or a composed unit)."""
    if isinstance(which, Unit):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return unit_by_tag(which)
    if isinstance(which, (str, bytes)):
        return parse_unit(which)
    raise TypeError(f"a unit is named by a Unit, an int or a text, got {type(which).__name__}")


def units() -> List[Unit]:
    """Every registered unit, in registration order."""
    ensure_loaded()
    result = []
    previous = 0
    tag = ctypes.c_int()
    key = ctypes.c_char_p()
    with lock:
        lib = library()
        while lib.xunGetNextUnit(previous, ctypes.byref(tag), ctypes.byref(key)):
            result.append(Unit(tag.value))
            previous = tag.value
        walk_ended("xunGetNextUnit")
    return result


def new_unit(
    ident: Union[str, bytes],
    description: Union[str, bytes],
    abbreviation: Union[str, bytes],
    expression: Union[str, bytes],
) -> Unit:
    """Creates a unit from an expression over registered units (keys from 100000
    up), for example new_unit("UnitFurlong", "furlong", "fur", "UnitFoot*660").

    An expression that would end the process in the library (one whose factor
    is 0, such as "UnitMeter*0") raises XunError instead."""
    ensure_loaded()
    arguments = [
        encode(ident, "ident"),
        encode(description, "description"),
        encode(abbreviation, "abbreviation"),
        encode(expression, "expression"),
    ]
    with lock:
        refuse_fatal_expression(arguments[0], arguments[3])
        if library().xunUnitNew(*arguments) != 1:
            raise failure("xunUnitNew")
        return unit_by_ident(arguments[0])
