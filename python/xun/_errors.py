"""The package's exception and the library's error codes."""

from __future__ import annotations

import enum
from typing import TYPE_CHECKING, Iterable, Optional, Tuple

if TYPE_CHECKING:
    from ._loading import Problem


class ErrorCode(enum.IntEnum):
    """The codes of the library's last-error record (XUN_ERR_... of xun.h)."""

    OK = 0
    NULL_ARGUMENT = 1
    UNKNOWN_UNIT = 2
    UNKNOWN_ITEM_TYPE = 3
    UNKNOWN_FILTER = 4
    NO_REAL_UNIT = 5
    DIMENSION = 6
    NOT_FOUND = 7
    RANGE = 8
    END = 9
    TAKEN = 10
    EXPRESSION = 11
    FILE = 12
    NO_MEMORY = 13
    LIMIT = 14
    INTERNAL = 15


class XunError(Exception):
    """A request the library refused (an unknown unit, item type or filter,
    units that cannot be converted into each other, a setup that cannot be
    loaded), or a file that would end the process if it were loaded.

    ``code`` is the library's error code (an ErrorCode when the library
    recorded one, None when the package refused the request before asking the
    library), ``problems`` the problems a check of the files found (empty for
    other errors)."""

    def __init__(
        self,
        message: str,
        code: Optional[int] = None,
        problems: Iterable["Problem"] = (),
    ) -> None:
        super().__init__(message)
        self.message = message
        self.code: Optional[int] = _as_code(code)
        self.problems: Tuple["Problem", ...] = tuple(problems)


def _as_code(code: Optional[int]) -> Optional[int]:
    if code is None:
        return None
    try:
        return ErrorCode(code)
    except ValueError:
        return code
