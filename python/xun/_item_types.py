"""Item types: the ItemType class with its allowed and user units, lookups by
key and ident, the list of all item types, and item types created at run
time."""

from __future__ import annotations

import ctypes
from typing import TYPE_CHECKING, Callable, List, Optional, Tuple, Union

from ._args import encode, int_arg, text_out
from ._errors import ErrorCode, XunError
from ._loading import ensure_loaded
from ._native import ask, clear_last_error, failure, last_error, library, lock
from ._units import Unit, UnitLike, unit

if TYPE_CHECKING:
    from ._filters import FilterLike


class ItemType:
    """A registered item type (a quantity such as a water level), known by its
    numeric key. Get one through xun.item_type() and the other lookups: they
    make sure that the item type exists."""

    __slots__ = ("_key",)

    def __init__(self, key: int) -> None:
        self._key = key

    @property
    def key(self) -> int:
        return self._key

    @property
    def ident(self) -> str:
        with lock:
            return text_out("xunGetItemTypeIdent", self._key)

    @property
    def description(self) -> str:
        """The description (the item type's key text), localised by the language files."""
        with lock:
            return text_out("xunGetItemTypeKey", self._key)

    def parse_unit(self, text: Union[str, bytes]) -> Unit:
        """The allowed unit a unit string means (for a field of this item type:
        "cfs", "m3/s", "l/s" or "liters per second" for a discharge); no unit is
        made. XunError when the text names no allowed unit."""
        from ._units import parse_unit

        return parse_unit(text, self)

    def _params(self) -> Tuple[int, float]:
        decimals = ctypes.c_int()
        default = ctypes.c_double()
        with lock:
            ok = library().xunGetItemTypeParams(
                self._key, ctypes.byref(decimals), ctypes.byref(default)
            )
            if ok != 1:
                raise failure("xunGetItemTypeParams")
        return decimals.value, default.value

    @property
    def decimals(self) -> int:
        return self._params()[0]

    @property
    def default_value(self) -> float:
        return self._params()[1]

    @property
    def units(self) -> List[Unit]:
        """The allowed units, the default unit first (every unit for the
        any-unit item type 999)."""
        result = []
        tag = ctypes.c_int()
        key = ctypes.c_char_p()
        with lock:
            lib = library()
            # The count is the result itself: 0 is a failure only when recorded.
            clear_last_error()
            count = int(lib.xunGetItemUnitCount(self._key))
            if count == 0 and last_error()[0] != ErrorCode.OK:
                raise failure("xunGetItemUnitCount")
            for seq in range(1, count + 1):
                if lib.xunGetItemUnitSeq(self._key, seq, ctypes.byref(tag), ctypes.byref(key)) != 1:
                    raise failure("xunGetItemUnitSeq")
                result.append(Unit(tag.value))
        return result

    @property
    def default_unit(self) -> Optional[Unit]:
        """The first allowed unit, or None."""
        allowed = self.units
        return allowed[0] if allowed else None

    @property
    def user_unit(self) -> Optional[Unit]:
        """The unit values of this item type are shown in: the one set, else the
        default unit; None when there is neither. Any unit of the item type's
        dimension can be set, allowed or not."""
        tag = ctypes.c_int()
        with lock:
            if library().xunGetItemUserUnit(self._key, ctypes.byref(tag)) != 1:
                raise failure("xunGetItemUserUnit")
        return Unit(tag.value) if tag.value != -1 else None

    @user_unit.setter
    def user_unit(self, which: UnitLike) -> None:
        target = unit(which)
        with lock:
            if library().xunSetItemUserUnit(self._key, target.tag) != 1:
                raise failure("xunSetItemUserUnit")

    def find_unit(self, name: Union[str, bytes]) -> Unit:
        """The allowed unit whose description matches name (singular or plural)."""
        data = encode(name, "unit name")
        tag = ctypes.c_int()
        with lock:
            if library().xunGetItemUnitTag(self._key, data, ctypes.byref(tag)) != 1:
                raise failure("xunGetItemUnitTag")
        return Unit(tag.value)

    def is_compatible(self, which: UnitLike) -> bool:
        """True when the unit has this item type's dimension."""
        target = unit(which)
        with lock:
            return ask("xunItemUnitEqv", self._key, target.tag)

    def in_filter(self, which: FilterLike) -> bool:
        """True when this item type belongs to the filter."""
        from ._filters import filter

        bits = filter(which).bit
        with lock:
            return ask("xunItemFilterEqv", self._key, bits)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, ItemType) and other._key == self._key

    def __hash__(self) -> int:
        return hash(("ItemType", self._key))

    def __repr__(self) -> str:
        try:
            return f"ItemType({self._key}, {self.ident!r}, {self.description!r})"
        except XunError:
            return f"ItemType({self._key})"


# What names an item type: an ItemType, its numeric key or its ident.
ItemTypeLike = Union[ItemType, int, str, bytes]


def item_type_by_key(key: int) -> ItemType:
    """The item type with this numeric key."""
    ensure_loaded()
    key = int_arg(key, "item type key")
    with lock:
        text_out("xunGetItemTypeIdent", key)
    return ItemType(key)


def item_type_by_ident(ident: Union[str, bytes]) -> ItemType:
    """The item type with this ident."""
    ensure_loaded()
    data = encode(ident, "item type ident")
    key = ctypes.c_int()
    with lock:
        if library().xunGetItemTypeKeyFromIdent(data, ctypes.byref(key)) != 1:
            raise failure("xunGetItemTypeKeyFromIdent")
    return ItemType(key.value)


def item_type(which: ItemTypeLike) -> ItemType:
    """An item type named by an ItemType, its numeric key, or a text: its
    ident, its description (exact, as the language files give it) or its key
    in decimal - the names that `xun show` takes."""
    if isinstance(which, ItemType):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return item_type_by_key(which)
    if isinstance(which, (str, bytes)):
        return ItemType(key_by_name("ItemType", encode(which, "item type name"), _decimal))
    raise TypeError(
        f"an item type is named by an ItemType, an int or a text, got {type(which).__name__}"
    )


def key_by_name(kind: str, data: bytes, number: Callable[[bytes], Optional[int]]) -> int:
    """The key of the item type or filter (kind "ItemType" or "Filter": the
    library's xunGet<kind>... functions) that the text names: its ident, else
    its description (exact), else the key that number() reads from the text.
    When none fits, raises the library's error for the ident."""
    key = ctypes.c_int()
    text = ctypes.c_char_p()
    ensure_loaded()
    with lock:
        lib = library()
        if getattr(lib, f"xunGet{kind}KeyFromIdent")(data, ctypes.byref(key)) == 1:
            return key.value
        # The library's own message, for the ident, if no other name fits.
        error = failure(f"xunGet{kind}KeyFromIdent")
        for seq in range(1, int(getattr(lib, f"xunGet{kind}Count")()) + 1):
            if getattr(lib, f"xunGet{kind}Seq")(seq, ctypes.byref(key), ctypes.byref(text)) != 1:
                raise failure(f"xunGet{kind}Seq")
            if text.value == data:
                return key.value
        written = number(data)
        key_text = getattr(lib, f"xunGet{kind}Key")
        if written is not None and key_text(written, ctypes.byref(text)) == 1:
            return written
    raise error


def _decimal(data: bytes) -> Optional[int]:
    """A key written in decimal ("302", "-5"), if it fits a C int."""
    text = data.decode("ascii", "replace")
    body = text[1:] if text[:1] in "+-" else text
    if not body.isdigit() or not body.isascii():
        return None
    number = int(text)
    return number if -(2**31) <= number < 2**31 else None


def item_types() -> List[ItemType]:
    """Every registered item type, in registration order."""
    ensure_loaded()
    result = []
    key = ctypes.c_int()
    text = ctypes.c_char_p()
    with lock:
        lib = library()
        for seq in range(1, int(lib.xunGetItemTypeCount()) + 1):
            if lib.xunGetItemTypeSeq(seq, ctypes.byref(key), ctypes.byref(text)) != 1:
                raise failure("xunGetItemTypeSeq")
            result.append(ItemType(key.value))
    return result


def new_item_type(
    ident: Union[str, bytes], description: Union[str, bytes], default_unit: UnitLike
) -> ItemType:
    """Creates an item type (keys from 110000 up) whose dimension, default and
    only allowed unit is the given unit."""
    ensure_loaded()
    data_ident = encode(ident, "ident")
    data_description = encode(description, "description")
    target = unit(default_unit)
    data_unit = encode(target.ident, "unit ident")
    with lock:
        if library().xunItemTypeNew(data_ident, data_description, 0, data_unit) != 1:
            raise failure("xunItemTypeNew")
        return item_type_by_ident(data_ident)
