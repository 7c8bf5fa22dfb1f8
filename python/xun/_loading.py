"""Loading setup and language files, and writing the generated include
files."""

from __future__ import annotations

import ctypes
import os
from typing import List, Optional, Tuple

from ._args import PathArg
from ._errors import ErrorCode, XunError
from ._native import clear_last_error, failure, last_error, library, lock

# Paths are kept by the library in buffers of 260 bytes.
PATH_LIMIT = 259

# The files that xunWriteItemTypeIncludes writes into the current directory.
INCLUDE_FILES = (
    "xunDefine.c__",
    "xunDefine.f__",
    "xunDefine.p__",
    "xunDefine.cs",
    "xunAllowedUnits.HTML",
)


# ---- paths ----------------------------------------------------------------------


def _path_bytes(path: object, what: str) -> bytes:
    try:
        encoded = os.fsencode(os.fspath(path))  # type: ignore[call-overload]
    except TypeError:
        raise TypeError(f"{what} must be a text or a path, got {type(path).__name__}") from None
    if b"\0" in encoded:
        raise ValueError(f"{what} contains a NUL character: {os.fsdecode(encoded)!r}")
    return encoded


def _setup_file(path: object) -> Tuple[str, bytes]:
    """The setup file that a load with this path reads, checked before the
    library sees it, which tells only that it cannot read the file."""
    if path is None or path == "" or path == b"":
        home = os.environ.get("KORVANE_HOME")
        if home is None:
            raise XunError(
                "KORVANE_HOME is not set: set it to an installation directory "
                "(the one that holds bin/XUN.xml) or pass the setup file's path"
            )
        encoded = _path_bytes(home + "/bin/XUN.xml", "path")
    else:
        encoded = _path_bytes(path, "path")
    name = os.fsdecode(encoded)
    if len(encoded) > PATH_LIMIT:
        raise XunError(
            f"the path of the setup file is {len(encoded)} bytes long, the library takes at "
            f"most {PATH_LIMIT}: '{name}'"
        )
    if os.path.isdir(encoded):
        raise XunError(f"'{name}' is a directory, not a setup file")
    if not os.path.exists(encoded):
        raise XunError(f"setup file '{name}' does not exist")
    if not os.access(encoded, os.R_OK):
        raise XunError(f"setup file '{name}' cannot be read")
    return name, encoded


def _setup_path_bytes() -> bytes:
    out = ctypes.c_char_p()
    library().xunSetupGetPath(ctypes.byref(out))
    return out.value or b""


# ---- loading --------------------------------------------------------------------


def load(path: Optional[PathArg] = "") -> str:
    """Loads a setup file, then the localised texts of the language files
    "xuntype.lan", "xununit.lan" and "xunfilter.lan" in $KORVANE_HOME/bin
    (xunLoadItemTypeTables). An empty path loads $KORVANE_HOME/bin/XUN.xml.
    Returns the name of the loaded file.

    Raises XunError when KORVANE_HOME is needed but unset, when the file does
    not exist or cannot be read, and when the library cannot parse it. A
    language file that lacks a key of the setup file ends the process (the
    library's own rule): ship them together.

    Loading again adds what is new and refreshes descriptions; nothing is
    removed."""
    name, encoded = _setup_file(path)
    with lock:
        lib = library()
        # xunLoadItemTypeTables returns nothing: a failure shows in the record.
        clear_last_error()
        lib.xunLoadItemTypeTables(encoded)
        code, message = last_error()
    if code != ErrorCode.OK:
        raise XunError(message, code=code)
    return name


load_tables = load


def load_setup(path: Optional[PathArg] = "") -> str:
    """Loads a setup file without applying the language files (xunSetupLoad):
    descriptions and abbreviations are those of the setup file. An empty path
    loads $KORVANE_HOME/bin/XUN.xml. Returns the name of the loaded file."""
    name, encoded = _setup_file(path)
    with lock:
        if library().xunSetupLoad(encoded) != 1:
            raise failure("xunSetupLoad")
    return name


def setup_path() -> str:
    """The name of the setup file loaded last ("" before the first load)."""
    with lock:
        return os.fsdecode(_setup_path_bytes())


def write_includes(directory: PathArg = ".") -> List[str]:
    """Writes the constant definitions for C, Fortran, Pascal and C# and the
    allowed-units report (the files of INCLUDE_FILES) into directory, replacing
    files of those names. Returns their paths.

    The library writes into the current directory: the process's working
    directory is changed for the duration of the call. A file that cannot be
    written would end the process in the library, so the directory and the files
    are checked first and a problem raises XunError instead."""
    folder = os.fsdecode(_path_bytes(directory, "directory"))
    if not os.path.isdir(folder):
        raise XunError(f"'{folder}' is not a directory")
    if not os.access(folder, os.W_OK | os.X_OK):
        raise XunError(f"cannot write into the directory '{folder}'")
    paths = [os.path.join(folder, name) for name in INCLUDE_FILES]
    for path in paths:
        if os.path.isdir(path):
            raise XunError(f"cannot write '{path}': it is a directory")
        if os.path.lexists(path) and not os.access(path, os.W_OK):
            raise XunError(f"cannot write '{path}'")
    with lock:
        lib = library()
        previous = os.getcwd()
        os.chdir(folder)
        try:
            clear_last_error()
            lib.xunWriteItemTypeIncludes()
            code, message = last_error()
        finally:
            os.chdir(previous)
    if code != ErrorCode.OK:
        raise XunError(message, code=code)
    return paths
