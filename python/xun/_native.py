"""Finding and loading libxun.so.1, the ctypes prototypes of its C interface,
the lock that serialises every call, and the library's last-error record.

The library is looked for, in this order:

1. the file named by the environment variable ``XUN_LIBRARY``;
2. ``libxun.so.1`` in this package's directory (where a wheel has it);
3. the library that ``cmake --install`` installed with the package (named by
   the generated module ``_installed``, relative to the package);
4. ``libxun.so.1`` through the system's dynamic loader (``LD_LIBRARY_PATH``,
   the loader cache, the standard directories).

It is loaded on first use, so that ``import xun`` works without it. Every
function that include/xun.h declares with C linkage is declared here with its
exact C types (python/tests/test_prototypes.py compares the two), so that a
library lacking one of them is refused as a whole instead of failing later.
"""

from __future__ import annotations

import ctypes
import importlib
import os
import threading
from typing import Any, Dict, List, Optional, Tuple

from ._errors import ErrorCode, XunError

LIBRARY_NAME = "libxun.so.1"
PACKAGE_DIR = os.path.dirname(os.path.abspath(__file__))

# The C types of xun.h, spelled as ctypes types.
c_int = ctypes.c_int
c_long = ctypes.c_long
c_double = ctypes.c_double
c_float = ctypes.c_float
c_void_p = ctypes.c_void_p
# "const char*" and "char*" arguments: texts handed to the library.
c_char_p = ctypes.c_char_p
p_int = ctypes.POINTER(ctypes.c_int)
p_double = ctypes.POINTER(ctypes.c_double)
p_float = ctypes.POINTER(ctypes.c_float)
# "const char**": receives a text that stays in the library's storage.
p_char_p = ctypes.POINTER(ctypes.c_char_p)
# "char**": receives a newly allocated text that the caller releases with
# free(); kept as a raw pointer so that it can be released.
p_owned_text = ctypes.POINTER(ctypes.POINTER(ctypes.c_char))

# typedef void (*xunCheckReport)(void* user, const char* file, int line,
#                                int severity, const char* message);
CHECK_REPORT = ctypes.CFUNCTYPE(None, c_void_p, c_char_p, c_int, c_int, c_char_p)

# name: (result type, argument types), in the order of xun.h.
PROTOTYPES: Dict[str, Tuple[Any, List[Any]]] = {
    # errors and version
    "xunGetLastError": (c_int, [p_char_p]),
    "xunClearLastError": (None, []),
    "xunVersion": (c_char_p, []),
    # units: registry and queries
    "xunUnitGetAll": (c_int, [p_owned_text]),
    "xunUnitNew": (c_int, [c_char_p, c_char_p, c_char_p, c_char_p]),
    "xunGetUnitKey": (c_int, [c_int, p_char_p]),
    "xunGetUnitIdent": (c_int, [c_int, p_char_p]),
    "xunGetUnitAbbreviation": (c_int, [c_int, p_char_p]),
    "xunGetUnitExpression": (c_int, [c_int, p_char_p]),
    "xunGetUnitAlias": (c_int, [c_int, c_int, p_char_p]),
    "xunGetUnitTag": (c_int, [c_char_p, p_int]),
    "xunGetUnitTagFromIdent": (c_int, [c_char_p, p_int]),
    "xunGetItemUnitTag": (c_int, [c_int, c_char_p, p_int]),
    "xunGetItemFirstEqvUnit": (c_int, [c_int, p_int, p_char_p]),
    "xunUnitsEqv": (c_int, [c_int, c_int]),
    "xunGetBaseUnit": (c_int, [c_int, p_int, p_char_p]),
    "xunGetNextEqvUnit": (c_int, [c_int, c_int, p_int, p_char_p]),
    "xunGetNextUnit": (c_int, [c_int, p_int, p_char_p]),
    "xunUnitGetParameters": (c_int, [c_int, p_double, p_double, p_double, p_double]),
    # unit strings
    "xunParseUnit": (c_int, [c_char_p, p_int]),
    "xunParseItemUnit": (c_int, [c_int, c_char_p, p_int]),
    "xunGetUnitText": (c_int, [c_int, c_int, p_char_p]),
    # derived units
    "xunUnitPower": (c_int, [c_int, p_int, p_int, p_double, c_double]),
    "xunUnitMultiply": (c_int, [c_int, c_int, p_int, p_int, p_double]),
    "xunUnitDivide": (c_int, [c_int, c_int, p_int, p_int, p_double]),
    "xunUnitGetIntegrationFactor": (c_int, [c_int, c_int, p_int, p_int, p_double]),
    "xunUnitGetDerivationFactor": (c_int, [c_int, c_int, p_int, p_int, p_double]),
    # value conversion
    "xunConvertUnit": (c_int, [c_int, c_int, p_double, c_double]),
    "xunConvertItemArrayD": (c_int, [c_int, c_int, p_double, c_int, c_double]),
    "xunConvertItemArrayF": (c_int, [c_int, c_int, p_float, c_int, c_float]),
    "xunConvertUnitToBase": (c_int, [c_int, p_double, c_double]),
    "xunConvertUnitFromBase": (c_int, [c_int, p_double, c_double]),
    "xunConvertToUserUnit": (c_int, [c_int, c_int, p_double, c_double]),
    "xunConvertFromUserUnit": (c_int, [c_int, c_int, p_double, c_double]),
    "xunConvertItemArrayToUserUnitD": (c_int, [c_int, c_int, p_double, c_int, c_double]),
    "xunConvertItemArrayToUserUnitF": (c_int, [c_int, c_int, p_float, c_int, c_float]),
    "xunConvertItemArrayFromUserUnitD": (c_int, [c_int, c_int, p_double, c_int, c_double]),
    "xunConvertItemArrayFromUserUnitF": (c_int, [c_int, c_int, p_float, c_int, c_float]),
    # item types
    "xunItemTypeGetAll": (c_int, [p_owned_text]),
    "xunItemTypeNew": (c_int, [c_char_p, c_char_p, c_long, c_char_p]),
    "xunGetItemTypeCount": (c_int, []),
    "xunGetItemTypeSeq": (c_int, [c_int, p_int, p_char_p]),
    "xunGetItemTypeIdent": (c_int, [c_int, p_char_p]),
    "xunGetItemTypeKey": (c_int, [c_int, p_char_p]),
    "xunGetItemTypeKeyFromIdent": (c_int, [c_char_p, p_int]),
    "xunGetItemTypeParams": (c_int, [c_int, p_int, p_double]),
    "xunGetItemUnitCount": (c_int, [c_int]),
    "xunGetItemUnitSeq": (c_int, [c_int, c_int, p_int, p_char_p]),
    "xunSetItemUserUnit": (c_int, [c_int, c_int]),
    "xunItemUnitEqv": (c_int, [c_int, c_int]),
    "xunGetItemUserUnit": (c_int, [c_int, p_int]),
    "xunAddItemUnit": (c_int, [c_int, c_int]),
    "xunAddItemFilter": (c_int, [c_int, c_int]),
    # filters
    "xunFilterGetAll": (c_int, [p_owned_text]),
    "xunFilterNew": (c_int, [c_char_p, c_char_p]),
    "xunGetFilterCount": (c_int, []),
    "xunGetFilterSeq": (c_int, [c_int, p_int, p_char_p]),
    "xunGetFilterKey": (c_int, [c_int, p_char_p]),
    "xunGetFilterIdent": (c_int, [c_int, p_char_p]),
    "xunGetFilterKeyFromIdent": (c_int, [c_char_p, p_int]),
    "xunGetFilteredItemTypeCount": (c_int, [c_int]),
    "xunGetFilteredItemTypeSeq": (c_int, [c_int, c_int, p_int, p_char_p]),
    "xunItemFilterEqv": (c_int, [c_int, c_int]),
    "xunSetProductFilter": (c_long, [c_int]),
    "xunGetProductFilter": (c_long, []),
    "xunGetFlybyFilter": (c_int, []),
    # include files
    "xunWriteItemTypeIncludes": (None, []),
    # loading
    "xunLoadItemTypeTables": (None, [c_char_p]),
    "xunSetupLoad": (c_int, [c_char_p]),
    "xunSetupLoadLinux": (c_int, [c_char_p]),
    "xunSetupUnload": (None, []),
    "xunSetupWrite": (c_int, []),
    "xunSetupGetPath": (None, [p_char_p]),
    "LoadUnitBaseGroupFile": (None, [c_char_p]),
    # checking files before loading them
    "xunSetupCheck": (c_int, [c_char_p, c_char_p, CHECK_REPORT, c_void_p]),
    "xunBaseGroupCheck": (c_int, [c_char_p, CHECK_REPORT, c_void_p]),
}

# The library keeps process-wide state without locks, and ctypes releases the
# interpreter lock during a foreign call: every call goes through this lock.
lock = threading.RLock()

_library: Optional[ctypes.CDLL] = None
_library_path: Optional[str] = None


def _candidates() -> List[Tuple[str, str]]:
    """The places to try, in order, as (description, path or name)."""
    explicit = os.environ.get("XUN_LIBRARY")
    if explicit:
        # An explicit choice is final: no silent fallback to another library.
        return [("XUN_LIBRARY", explicit)]
    here = os.path.join(PACKAGE_DIR, LIBRARY_NAME)
    result = []
    if os.path.exists(here):
        result.append(("the package directory", here))
    installed = installed_path("LIBRARY")
    if installed is not None and os.path.exists(installed):
        result.append(("the installation", installed))
    result.append(("the system loader", LIBRARY_NAME))
    return result


def installed_path(name: str) -> Optional[str]:
    """A path that cmake --install wrote into the module _installed (LIBRARY,
    HOME), made absolute; None for a package that was not installed so."""
    try:
        installed = importlib.import_module(__package__ + "._installed")
    except ImportError:
        return None
    value = getattr(installed, name, None)
    if not isinstance(value, str):
        return None
    return os.path.normpath(os.path.join(PACKAGE_DIR, value))


def _declare(loaded: ctypes.CDLL) -> None:
    """Gives every function its prototype; AttributeError when one is missing."""
    for name, (restype, argtypes) in PROTOTYPES.items():
        function = getattr(loaded, name)
        function.restype = restype
        function.argtypes = argtypes


def library() -> ctypes.CDLL:
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


def library_path() -> str:
    """The path or name through which the library was loaded."""
    library()
    assert _library_path is not None
    return _library_path


def library_version() -> str:
    """The version of the loaded library (xunVersion)."""
    with lock:
        text = library().xunVersion()
    return os.fsdecode(text) if isinstance(text, bytes) else ""


def last_error() -> Tuple[int, str]:
    """The code and message of the last failed call on this thread."""
    message = ctypes.c_char_p()
    code = int(library().xunGetLastError(ctypes.byref(message)))
    return code, (message.value or b"").decode("utf-8", "surrogateescape")


def clear_last_error() -> None:
    """Resets this thread's record, before a call whose failure shows only there."""
    library().xunClearLastError()


def failure(function: str) -> XunError:
    """The exception for the call of function that failed just now, with the
    library's own code and message. Call it with the lock still held, before
    any other call of the library."""
    code, message = last_error()
    if code == 0:
        # The library promises a record for every failure; say so when it
        # left none rather than make up a reason.
        return XunError(f"{function} failed and recorded no reason", code=0)
    return XunError(message, code=code)


# What a predicate (xunUnitsEqv, xunItemUnitEqv, xunItemFilterEqv) records
# when its answer is just "no": a unit of key 0 or an item type without a
# dimension converts nothing, so it is no match either.
_NO_MATCH = (ErrorCode.OK, ErrorCode.NO_REAL_UNIT, ErrorCode.DIMENSION)


def ask(name: str, *args: Any) -> bool:
    """Calls the predicate name of the library: True for 1, False for 0; raises
    the library's error when an argument names nothing. The caller holds the
    lock."""
    clear_last_error()
    if getattr(library(), name)(*args) == 1:
        return True
    code, _ = last_error()
    if code in _NO_MATCH:
        return False
    raise failure(name)


def walk_ended(name: str) -> None:
    """After a walk's function returned 0: raises the library's error unless
    the walk just reached its end. The caller holds the lock."""
    code, _ = last_error()
    if code != ErrorCode.END:
        raise failure(name)
