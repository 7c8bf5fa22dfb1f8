"""Filters: named groups of item types, known by their bit; lookups by bit and
ident, and the list of all filters."""

from __future__ import annotations

import ctypes
from typing import List, Optional, Union

from ._args import encode, int_arg, text_out
from ._errors import XunError
from ._item_types import ItemType, key_by_name
from ._loading import ensure_loaded
from ._native import failure, library, lock


class Filter:
    """A registered filter: a named group of item types, known by its bit. Get
    one through xun.filter() and the other lookups: they make sure that the
    filter exists."""

    __slots__ = ("_bit",)

    def __init__(self, bit: int) -> None:
        self._bit = bit

    @property
    def bit(self) -> int:
        return self._bit

    @property
    def ident(self) -> str:
        with lock:
            return text_out("xunGetFilterIdent", self._bit)

    @property
    def description(self) -> str:
        with lock:
            return text_out("xunGetFilterKey", self._bit)

    @property
    def item_types(self) -> List[ItemType]:
        """The item types of the filter (file items only, except for the flyby
        filter), in registration order."""
        result = []
        key = ctypes.c_int()
        text = ctypes.c_char_p()
        with lock:
            lib = library()
            for seq in range(1, int(lib.xunGetFilteredItemTypeCount(self._bit)) + 1):
                ok = lib.xunGetFilteredItemTypeSeq(
                    self._bit, seq, ctypes.byref(key), ctypes.byref(text)
                )
                if ok != 1:
                    raise failure("xunGetFilteredItemTypeSeq")
                result.append(ItemType(key.value))
        return result

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Filter) and other._bit == self._bit

    def __hash__(self) -> int:
        return hash(("Filter", self._bit))

    def __repr__(self) -> str:
        try:
            return f"Filter({self._bit:#x}, {self.ident!r}, {self.description!r})"
        except XunError:
            return f"Filter({self._bit:#x})"


# What names a filter: a Filter, its bit or its ident.
FilterLike = Union[Filter, int, str, bytes]


def filter_by_bit(bit: int) -> Filter:
    """The filter with this bit value."""
    ensure_loaded()
    bit = int_arg(bit, "filter bit")
    with lock:
        text_out("xunGetFilterIdent", bit)
    return Filter(bit)


def filter_by_ident(ident: Union[str, bytes]) -> Filter:
    """The filter with this ident."""
    ensure_loaded()
    data = encode(ident, "filter ident")
    bit = ctypes.c_int()
    with lock:
        if library().xunGetFilterKeyFromIdent(data, ctypes.byref(bit)) != 1:
            raise failure("xunGetFilterKeyFromIdent")
    return Filter(bit.value)


def filter(which: FilterLike) -> Filter:  # noqa: A001 - the package's own namespace
    """A filter named by a Filter, its bit, or a text: its ident, its
    description (exact) or its bit in decimal or hexadecimal ("0x2") - the
    names that `xun show` takes."""
    if isinstance(which, Filter):
        return which
    if isinstance(which, int) and not isinstance(which, bool):
        return filter_by_bit(which)
    if isinstance(which, (str, bytes)):
        return Filter(key_by_name("Filter", encode(which, "filter name"), _bit))
    raise TypeError(f"a filter is named by a Filter, an int or a text, got {type(which).__name__}")


def _bit(data: bytes) -> Optional[int]:
    """A bit value written as an unsigned number, decimal or with 0x, as the
    C int that carries it (values up to 0xFFFFFFFF)."""
    text = data.decode("ascii", "replace")
    if not text[:1].isdigit():
        return None
    try:
        number = int(text, 0)
    except ValueError:
        return None
    if number > 0xFFFFFFFF:
        return None
    return number - 2**32 if number >= 2**31 else number


def filters() -> List[Filter]:
    """Every registered filter, in registration order."""
    ensure_loaded()
    result = []
    bit = ctypes.c_int()
    text = ctypes.c_char_p()
    with lock:
        lib = library()
        for seq in range(1, int(lib.xunGetFilterCount()) + 1):
            if lib.xunGetFilterSeq(seq, ctypes.byref(bit), ctypes.byref(text)) != 1:
                raise failure("xunGetFilterSeq")
            result.append(Filter(bit.value))
    return result
