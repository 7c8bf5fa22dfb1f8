"""Finding libxun.so.1 and declaring the C functions that the package calls.

The library is looked for, in this order:

1. the file named by the environment variable ``XUN_LIBRARY``;
2. ``libxun.so.1`` in this package's directory;
3. ``libxun.so.1`` through the system's dynamic loader (``LD_LIBRARY_PATH``,
   the loader cache, the standard directories).

It is loaded on first use, so that ``import xun`` works without it.
"""

import ctypes
import os
import threading

from ._errors import XunError

LIBRARY_NAME = "libxun.so.1"

_c_int = ctypes.c_int
_c_long = ctypes.c_long
_c_double = ctypes.c_double
_c_float = ctypes.c_float
_c_char_p = ctypes.c_char_p
_p_int = ctypes.POINTER(ctypes.c_int)
_p_double = ctypes.POINTER(ctypes.c_double)
_p_float = ctypes.POINTER(ctypes.c_float)
_p_char_p = ctypes.POINTER(ctypes.c_char_p)

# name: (result type, argument types)
_PROTOTYPES = {
    # units
    "xunUnitNew": (_c_int, [_c_char_p, _c_char_p, _c_char_p, _c_char_p]),
    "xunGetUnitKey": (_c_int, [_c_int, _p_char_p]),
    "xunGetUnitIdent": (_c_int, [_c_int, _p_char_p]),
    "xunGetUnitAbbreviation": (_c_int, [_c_int, _p_char_p]),
    "xunGetUnitTag": (_c_int, [_c_char_p, _p_int]),
    "xunGetUnitTagFromIdent": (_c_int, [_c_char_p, _p_int]),
    "xunGetItemUnitTag": (_c_int, [_c_int, _c_char_p, _p_int]),
    "xunUnitsEqv": (_c_int, [_c_int, _c_int]),
    "xunGetBaseUnit": (_c_int, [_c_int, _p_int, _p_char_p]),
    "xunGetNextEqvUnit": (_c_int, [_c_int, _c_int, _p_int, _p_char_p]),
    "xunGetNextUnit": (_c_int, [_c_int, _p_int, _p_char_p]),
    "xunUnitGetParameters": (_c_int, [_c_int, _p_double, _p_double, _p_double, _p_double]),
    # conversion
    "xunConvertUnit": (_c_int, [_c_int, _c_int, _p_double, _c_double]),
    "xunConvertItemArrayD": (_c_int, [_c_int, _c_int, _p_double, _c_int, _c_double]),
    "xunConvertItemArrayF": (_c_int, [_c_int, _c_int, _p_float, _c_int, _c_float]),
    "xunConvertUnitToBase": (_c_int, [_c_int, _p_double, _c_double]),
    "xunConvertUnitFromBase": (_c_int, [_c_int, _p_double, _c_double]),
    "xunConvertToUserUnit": (_c_int, [_c_int, _c_int, _p_double, _c_double]),
    "xunConvertFromUserUnit": (_c_int, [_c_int, _c_int, _p_double, _c_double]),
    "xunConvertItemArrayToUserUnitD": (_c_int, [_c_int, _c_int, _p_double, _c_int, _c_double]),
    "xunConvertItemArrayToUserUnitF": (_c_int, [_c_int, _c_int, _p_float, _c_int, _c_float]),
    "xunConvertItemArrayFromUserUnitD": (_c_int, [_c_int, _c_int, _p_double, _c_int, _c_double]),
    "xunConvertItemArrayFromUserUnitF": (_c_int, [_c_int, _c_int, _p_float, _c_int, _c_float]),
    # item types
    "xunItemTypeNew": (_c_int, [_c_char_p, _c_char_p, _c_long, _c_char_p]),
    "xunGetItemTypeCount": (_c_int, []),
    "xunGetItemTypeSeq": (_c_int, [_c_int, _p_int, _p_char_p]),
    "xunGetItemTypeIdent": (_c_int, [_c_int, _p_char_p]),
    "xunGetItemTypeKey": (_c_int, [_c_int, _p_char_p]),
    "xunGetItemTypeKeyFromIdent": (_c_int, [_c_char_p, _p_int]),
    "xunGetItemTypeParams": (_c_int, [_c_int, _p_int, _p_double]),
    "xunGetItemUnitCount": (_c_int, [_c_int]),
    "xunGetItemUnitSeq": (_c_int, [_c_int, _c_int, _p_int, _p_char_p]),
    "xunSetItemUserUnit": (_c_int, [_c_int, _c_int]),
    "xunItemUnitEqv": (_c_int, [_c_int, _c_int]),
    "xunGetItemUserUnit": (_c_int, [_c_int, _p_int]),
    # filters
    "xunGetFilterCount": (_c_int, []),
    "xunGetFilterSeq": (_c_int, [_c_int, _p_int, _p_char_p]),
    "xunGetFilterKey": (_c_int, [_c_int, _p_char_p]),
    "xunGetFilterIdent": (_c_int, [_c_int, _p_char_p]),
    "xunGetFilterKeyFromIdent": (_c_int, [_c_char_p, _p_int]),
    "xunGetFilteredItemTypeCount": (_c_int, [_c_int]),
    "xunGetFilteredItemTypeSeq": (_c_int, [_c_int, _c_int, _p_int, _p_char_p]),
    "xunItemFilterEqv": (_c_int, [_c_int, _c_int]),
    # include files and loading
    "xunWriteItemTypeIncludes": (None, []),
    "xunLoadItemTypeTables": (None, [_c_char_p]),
    "xunSetupLoad": (_c_int, [_c_char_p]),
    "xunSetupGetPath": (None, [_p_char_p]),
}

# The library keeps process-wide state without locks, and ctypes releases the
# interpreter lock during a foreign call: every call goes through this lock.
lock = threading.RLock()

_library = None
_library_path = None


def _candidates():
    """The places to try, in order, as (description, path or name)."""
    explicit = os.environ.get("XUN_LIBRARY")
    if explicit:
        # An explicit choice is final: no silent fallback to another library.
        return [("XUN_LIBRARY", explicit)]
    here = os.path.join(os.path.dirname(os.path.abspath(__file__)), LIBRARY_NAME)
    result = []
    if os.path.exists(here):
        result.append(("the package directory", here))
    result.append(("the system loader", LIBRARY_NAME))
    return result


def _declare(library):
    for name, (restype, argtypes) in _PROTOTYPES.items():
        function = getattr(library, name)
        function.restype = restype
        function.argtypes = argtypes


def library():
    """The loaded library (loaded on the first call)."""
    global _library, _library_path
    with lock:
        if _library is not None:
            return _library
        failures = []
        for where, path in _candidates():
            try:
                loaded = ctypes.CDLL(path)
            except OSError as error:
                failures.append(f"{where} ({path}): {error}")
                continue
            try:
                _declare(loaded)
            except AttributeError as error:
                failures.append(f"{where} ({path}) is not libxun: {error}")
                continue
            _library = loaded
            _library_path = path
            return _library
        raise XunError(
            f"cannot load {LIBRARY_NAME}: "
            + "; ".join(failures)
            + ". Set XUN_LIBRARY to the library's path, or install it where the system loader finds it"
        )


def library_path():
    """The path or name through which the library was loaded."""
    library()
    return _library_path
