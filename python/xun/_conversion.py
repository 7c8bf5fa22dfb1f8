"""Conversion of single values and arrays (convert; in place, one library call
per array: convert_array): unit to unit, to and from the base unit, and to and from the user
unit of an item type."""

from __future__ import annotations

import ctypes
import math
from typing import TYPE_CHECKING, Any, Optional, SupportsFloat, Tuple, TypeVar, overload

from ._args import float_arg
from ._arrays import MAX_ARRAY_SIZE, ConversionUnits, convert_any
from ._item_types import ItemTypeLike, item_type
from ._native import failure, library, lock
from ._units import UnitLike, unit

if TYPE_CHECKING:
    import numpy


Array = TypeVar("Array", bound="numpy.ndarray[Any, Any]")


def _python_number(value: object) -> bool:
    """True for a number of Python's own (not a NumPy scalar or array)."""
    return type(value) in (int, float)


def _missing_value(missing: object) -> float:
    """The delete value the library is given for missing: +inf for None and NaN
    (no finite value is missing; NaN elements stay NaN in any case), else the
    number."""
    if missing is None:
        return math.inf
    number = float_arg(missing, "missing")
    return math.inf if math.isnan(number) else number


def _convert_value(function: str, handles: Tuple[int, ...], x: float) -> float:
    """x converted by the library function, which takes the handles (units,
    item type), the result's address and x; its failure raised."""
    result = ctypes.c_double()
    with lock:
        if getattr(library(), function)(*handles, ctypes.byref(result), x) != 1:
            raise failure(function)
    return result.value


def _convert_array(
    function: str, double: bool, handles: Tuple[int, ...], pointer: Any, count: int, delete: float
) -> None:
    """An array converted in place, in one call of the library function's D
    (float64) or F (float32) form; its failure raised."""
    name = function + ("D" if double else "F")
    with lock:
        if getattr(library(), name)(*handles, pointer, count, delete) != 1:
            raise failure(name)


@overload
def convert(
    value: float,
    from_unit: UnitLike,
    to_unit: UnitLike,
    *,
    missing: Optional[SupportsFloat] = None,
    out: None = None,
    dtype: None = None,
) -> float: ...


@overload
def convert(
    value: Any,
    from_unit: UnitLike,
    to_unit: UnitLike,
    *,
    missing: Optional[SupportsFloat] = None,
    out: Any = None,
    dtype: Any = None,
) -> Any: ...


def convert(
    value: Any,
    from_unit: UnitLike,
    to_unit: UnitLike,
    *,
    missing: Optional[SupportsFloat] = None,
    out: Any = None,
    dtype: Any = None,
) -> Any:
    """value in from_unit, converted to to_unit, as a NumPy ufunc would.

    A Python int or float gives a float. Anything else that NumPy reads as an
    array of numbers - a NumPy array of any numeric type, byte order and
    layout (slices and read-only arrays too), a NumPy scalar, a list - gives a
    new array: float32 when the input is float32, else float64 (or dtype,
    float32 or float64, when given); the input is never changed. A masked
    array gives a masked array with the same mask. A pandas Series or
    DataFrame, an xarray DataArray and a Dask array give the same kind of
    object, with their index, coordinates and chunks (a Dask array is
    converted lazily, block by block, inside Dask's workers).

    out: a float64 or float32 array of the input's shape to convert into (in
    place when out is value); returned. missing: elements equal to it stay as
    they are (not converted); with NaN (math.nan, numpy.nan), NaN elements
    stay NaN and every other element converts. NaN elements stay NaN in any
    case.

    The library converts each contiguous block in one call
    (xunConvertItemArrayD or ...F); float32 elements are converted in double
    precision and rounded. A refused conversion raises XunError and leaves
    out as it was."""
    source, target = unit(from_unit), unit(to_unit)
    if out is None and dtype is None and _python_number(value):
        x = float(value)
        if missing is not None and x == float_arg(missing, "missing"):
            return x
        return _convert_value("xunConvertUnit", (source.tag, target.tag), x)
    units = ConversionUnits(source, target, from_unit, to_unit)
    return convert_any(value, units, _missing_value(missing), out, dtype)


def to_base(value: SupportsFloat, in_unit: UnitLike) -> float:
    """value in the unit, converted to the base unit of its dimension."""
    x = float_arg(value, "value")
    return _convert_value("xunConvertUnitToBase", (unit(in_unit).tag,), x)


def from_base(value: SupportsFloat, to_unit: UnitLike) -> float:
    """value in the base unit of the unit's dimension, converted to the unit."""
    x = float_arg(value, "value")
    return _convert_value("xunConvertUnitFromBase", (unit(to_unit).tag,), x)


def to_user_unit(value: SupportsFloat, item: ItemTypeLike, from_unit: UnitLike) -> float:
    """value in from_unit, converted to the item type's user unit."""
    x = float_arg(value, "value")
    it, source = item_type(item), unit(from_unit)
    return _convert_value("xunConvertToUserUnit", (it.key, source.tag), x)


def from_user_unit(value: SupportsFloat, item: ItemTypeLike, to_unit: UnitLike) -> float:
    """value in the item type's user unit, converted to to_unit."""
    x = float_arg(value, "value")
    it, target = item_type(item), unit(to_unit)
    return _convert_value("xunConvertFromUserUnit", (it.key, target.tag), x)


def _array_arguments(array: object) -> Tuple[Any, int, bool]:
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


def convert_array(
    array: Array, from_unit: UnitLike, to_unit: UnitLike, delete_value: SupportsFloat = math.inf
) -> Array:
    """Converts a float64 or float32 NumPy array in place from from_unit to
    to_unit, in one call of the library; returns the array. Elements equal to
    delete_value (the marker of a missing value) stay as they are, and so do NaN
    elements. The default, +inf, marks no finite value; +inf itself stays +inf.
    float32 elements are converted in double precision and rounded back; the
    comparison with delete_value is made in float32. A refused conversion
    leaves the array as it was."""
    pointer, count, double = _array_arguments(array)
    delete = float_arg(delete_value, "delete_value")
    source, target = unit(from_unit), unit(to_unit)
    _convert_array("xunConvertItemArray", double, (source.tag, target.tag), pointer, count, delete)
    return array


def array_to_user_unit(
    array: Array, item: ItemTypeLike, from_unit: UnitLike, delete_value: SupportsFloat = math.inf
) -> Array:
    """As convert_array, to the item type's user unit."""
    pointer, count, double = _array_arguments(array)
    delete = float_arg(delete_value, "delete_value")
    it, source = item_type(item), unit(from_unit)
    _convert_array(
        "xunConvertItemArrayToUserUnit", double, (it.key, source.tag), pointer, count, delete
    )
    return array


def array_from_user_unit(
    array: Array, item: ItemTypeLike, to_unit: UnitLike, delete_value: SupportsFloat = math.inf
) -> Array:
    """As convert_array, from the item type's user unit."""
    pointer, count, double = _array_arguments(array)
    delete = float_arg(delete_value, "delete_value")
    it, target = item_type(item), unit(to_unit)
    _convert_array(
        "xunConvertItemArrayFromUserUnit", double, (it.key, target.tag), pointer, count, delete
    )
    return array
