"""Arguments on their way into the library and texts on their way out.

The checks here are the package's own: an argument of the wrong kind raises
TypeError or ValueError before the library is called."""

from __future__ import annotations

import ctypes
import os
from typing import Any, Optional, Union

from ._native import failure, library

# What names a text argument, and what names a file or folder.
Text = Union[str, bytes]
PathArg = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def encode(text: object, what: str) -> bytes:
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


def decode(data: Optional[bytes]) -> str:
    """A text of the library as str (bytes that are not UTF-8 survive as
    surrogates, so that encode gives them back)."""
    if data is None:
        return ""
    return data.decode("utf-8", "surrogateescape")


def int_arg(value: object, what: str) -> int:
    """An argument that crosses the C interface as int."""
    if isinstance(value, bool) or not isinstance(value, int):
        raise TypeError(f"{what} must be an int, got {type(value).__name__}")
    if not -(2**31) <= value < 2**31:
        raise ValueError(f"{what} {value} is outside the range of a C int")
    return value


def float_arg(value: object, what: str) -> float:
    """An argument that crosses the C interface as double."""
    try:
        return float(value)  # type: ignore[arg-type]
    except (TypeError, ValueError):
        raise TypeError(f"{what} must be a number, got {type(value).__name__}") from None


def text_out(name: str, *args: Any) -> str:
    """Calls the library's function name, whose last argument receives a text,
    and returns the text; raises the library's error when the call fails.
    The caller holds the lock."""
    out = ctypes.c_char_p()
    if getattr(library(), name)(*args, ctypes.byref(out)) != 1:
        raise failure(name)
    return decode(out.value)
