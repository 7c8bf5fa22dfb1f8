"""Python interface to libxun, the engineering-unit library.

Pure ctypes over the library's C interface::

    import numpy as np
    import xun

    xun.load()                                   # $KORVANE_HOME/bin/XUN.xml
    xun.convert(10.0, "UnitFoot", "UnitMeter")   # 3.048
    levels = np.array([1.0, 2.5, -999.0])
    xun.convert_array(levels, "foot", "meter", delete_value=-999.0)   # in place

Units are named by a ``Unit``, by their numeric key (tag), or by a unit string:
an ident ("UnitFoot"), a name as a user types it ("foot", "feet", "ft") or a
composed unit as people and data files write it ("m3 s-1", "kg/(m²·s)",
"ft^3/s"); ``xun.parse_unit`` reads them, ``Unit.text`` writes them. Item
types are named by an ``ItemType``, their numeric key, their ident or their
description; filters by a ``Filter``, their bit, their ident or their
description. What an object answers without an argument is a property, what
needs an argument is a method. Requests the library refuses raise
``XunError`` with the library's own message and code; arguments of the wrong
kind raise ``TypeError`` or ``ValueError``.

Files are checked before they are loaded (``check``): a file that would end
the process inside the library raises ``XunError`` instead.

The library keeps its tables process-wide, for the life of the process: a load
adds to what is there and nothing is ever unloaded. Calls are serialised by a
lock, so threads may share the package.
"""

import sys as _sys

from . import _accessors
from ._arrays import MAX_ARRAY_SIZE
from ._conversion import (
    array_from_user_unit,
    array_to_user_unit,
    convert,
    convert_array,
    from_base,
    from_user_unit,
    to_base,
    to_user_unit,
)
from ._errors import ErrorCode, XunError
from ._filters import Filter, filter, filter_by_bit, filter_by_ident, filters
from ._item_types import (
    ItemType,
    item_type,
    item_type_by_ident,
    item_type_by_key,
    item_types,
    new_item_type,
)
from ._loading import (
    INCLUDE_FILES,
    PATH_LIMIT,
    Problem,
    Severity,
    check,
    check_base_group,
    load,
    load_base_group,
    load_setup,
    load_tables,
    setup_path,
    write_includes,
)
from ._native import LIBRARY_NAME, library, library_path, library_version
from ._units import _dimension_text  # noqa: F401 - formats dimensions in the tests
from ._units import (
    NOTATIONS,
    Unit,
    new_unit,
    parse_unit,
    unit,
    unit_by_ident,
    unit_by_name,
    unit_by_tag,
    units,
)
from ._version import __version__

# The .xun accessors, for pandas and xarray when the program has imported them
# (import xun.pandas or xun.xarray otherwise: neither is imported here, which
# would cost seconds).
if "pandas" in _sys.modules:
    _accessors.register_pandas()
if "xarray" in _sys.modules:
    _accessors.register_xarray()

__all__ = [
    "XunError",
    "ErrorCode",
    "Problem",
    "Severity",
    "Unit",
    "ItemType",
    "Filter",
    "check",
    "check_base_group",
    "load",
    "load_tables",
    "load_setup",
    "load_base_group",
    "setup_path",
    "write_includes",
    "unit",
    "parse_unit",
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
    "NOTATIONS",
    "PATH_LIMIT",
    "INCLUDE_FILES",
    "__version__",
]
