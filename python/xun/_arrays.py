"""Converting arrays as a NumPy ufunc would: any array-like in, a new array
(or out=) back; pandas and xarray objects keep their index and coordinates;
Dask arrays are converted block by block inside Dask's workers.

Every conversion ends in _convert_in_place, which hands each contiguous block
of a native float64 or float32 array to the library in one call."""

from __future__ import annotations

import ctypes
import importlib
from typing import Any, NamedTuple, Optional, Tuple, Union

from ._native import failure, library, lock
from ._units import Unit, UnitLike, unit

# Array lengths cross the C interface as int: a longer block is converted in
# calls of at most this many elements.
MAX_ARRAY_SIZE = 2**31 - 1

# What a unit is named by where the library's tables are those of another
# process (a Dask worker): a text or a key.
PortableUnit = Union[str, int]


def _numpy() -> Any:
    import numpy

    return numpy


def _library_function(array: Any) -> Tuple[str, Any]:
    np = _numpy()
    if array.dtype == np.float64:
        return "xunConvertItemArrayD", ctypes.POINTER(ctypes.c_double)
    return "xunConvertItemArrayF", ctypes.POINTER(ctypes.c_float)


def convert_in_place(array: Any, source: Unit, target: Unit, delete: float) -> None:
    """Converts a contiguous, aligned, writable native float64 or float32 array
    in place: one library call per block of at most MAX_ARRAY_SIZE elements.
    The caller has checked the array."""
    name, pointer_type = _library_function(array)
    flat = array.reshape(-1, order="A")
    with lock:
        function = getattr(library(), name)
        for start in range(0, max(flat.size, 1), MAX_ARRAY_SIZE):
            block = flat[start : start + MAX_ARRAY_SIZE]
            if block.size == 0:
                break
            pointer = block.ctypes.data_as(pointer_type)
            if function(source.tag, target.tag, pointer, int(block.size), delete) != 1:
                raise failure(name)


def _probe(source: Unit, target: Unit, dtype: Any) -> None:
    """Raises the library's error for a conversion it refuses, before out= is
    written: one call on a one-element scratch array."""
    np = _numpy()
    convert_in_place(np.zeros(1, dtype=dtype), source, target, 0.0)


def _float_dtype(dtype: Any, what: str) -> Any:
    np = _numpy()
    try:
        chosen = np.dtype(dtype)
    except TypeError:
        raise TypeError(f"{what} must be float64 or float32, got {dtype!r}") from None
    if chosen not in (np.dtype(np.float64), np.dtype(np.float32)):
        raise TypeError(f"{what} must be float64 or float32, got {chosen}")
    return chosen


def _as_numbers(value: Any) -> Any:
    """value as a NumPy array of numbers (ints, floats or booleans)."""
    np = _numpy()
    try:
        x = np.asarray(value)
    except (TypeError, ValueError) as error:
        raise TypeError(f"value must be a number or an array of numbers: {error}") from None
    if x.dtype.kind not in "biuf":
        raise TypeError(
            f"value must be a number or an array of numbers, got {type(value).__name__}"
            + (f" of {x.dtype}" if isinstance(value, np.ndarray) or x.ndim > 0 else "")
        )
    return x


def _usable_in_place(array: Any) -> bool:
    np = _numpy()
    flags = array.flags
    return bool(
        (flags.c_contiguous or flags.f_contiguous)
        and flags.aligned
        and flags.writeable
        and array.dtype.isnative
        and array.dtype in (np.dtype(np.float64), np.dtype(np.float32))
    )


def convert_numpy(
    value: Any, source: Unit, target: Unit, delete: float, out: Any, dtype: Any
) -> Any:
    """convert() for NumPy arrays, NumPy scalars, masked arrays and anything
    numpy.asarray reads."""
    np = _numpy()
    mask = None
    data = value
    if isinstance(value, np.ma.MaskedArray):
        mask = np.ma.getmaskarray(value).copy()
        data = value.data
    if out is not None:
        if not isinstance(out, np.ndarray):
            raise TypeError(f"out must be a NumPy array, got {type(out).__name__}")
        if not out.dtype.isnative or out.dtype not in (np.float64, np.float32):
            raise TypeError(
                f"out must hold float64 or float32 in native byte order, not {out.dtype.str}"
            )
        if not out.flags.writeable:
            raise ValueError("out is read-only")
        if dtype is not None and _float_dtype(dtype, "dtype") != out.dtype:
            raise TypeError(f"dtype {np.dtype(dtype)} differs from out's {out.dtype}")
        if out is value:
            if _usable_in_place(out):
                convert_in_place(out, source, target, delete)
                return out
            x = out
        else:
            x = _as_numbers(data)
        try:
            x = np.broadcast_to(x, out.shape)
        except ValueError:
            raise ValueError(
                f"out has the shape {out.shape}, which the value's {np.shape(x)} does not "
                "broadcast to"
            ) from None
        if _usable_in_place(out):
            _probe(source, target, out.dtype)
            np.copyto(out, x, casting="unsafe")
            convert_in_place(out, source, target, delete)
        else:
            # No contiguous block to hand over: convert a contiguous copy in
            # one call and write it back.
            scratch = np.array(x, dtype=out.dtype, order="C")
            convert_in_place(scratch, source, target, delete)
            np.copyto(out, scratch)
        return out
    x = _as_numbers(data)
    if dtype is not None:
        chosen = _float_dtype(dtype, "dtype")
    elif x.dtype.kind == "f" and x.dtype.itemsize == 4:
        chosen = np.dtype(np.float32)
    else:
        chosen = np.dtype(np.float64)
    result = np.array(x, dtype=chosen, order="K", copy=True)
    if not (result.flags.c_contiguous or result.flags.f_contiguous):
        result = np.ascontiguousarray(result)
    convert_in_place(result, source, target, delete)
    if mask is not None:
        return np.ma.MaskedArray(result, mask=mask)
    if result.ndim == 0:
        # As a ufunc does: a scalar (or a 0-d array) gives a NumPy scalar.
        return result[()]
    return result


def _top_module(value: Any) -> str:
    return type(value).__module__.split(".", 1)[0]


def portable_unit(given: UnitLike, resolved: Unit) -> PortableUnit:
    """How a unit is named in another process that loaded the same setup: the
    text the caller gave, else the unit's ident (for a unit read from a unit
    string, the text it was read from)."""
    if isinstance(given, str):
        return given
    if isinstance(given, bytes):
        return given.decode("utf-8", "surrogateescape")
    ident = resolved.ident
    return ident[4:] if ident.startswith("xun:") else ident


def _units_attribute(attrs: Any, target: Unit) -> None:
    if "units" in attrs:
        attrs["units"] = target.text("cf")


class ConversionUnits(NamedTuple):
    """The two units of a conversion: resolved, and as the caller named them
    (the names a Dask worker reads them from again)."""

    source: Unit
    target: Unit
    from_unit: UnitLike
    to_unit: UnitLike


def convert_any(value: Any, units: ConversionUnits, delete: float, out: Any, dtype: Any) -> Any:
    """convert() for everything but a Python number."""
    source, target = units.source, units.target
    module = _top_module(value)
    if module == "dask" and hasattr(value, "map_blocks"):
        if out is not None:
            raise TypeError("out= is not taken for a Dask array: the result is a new Dask array")
        return convert_dask(value, units, delete, dtype)
    if module == "xarray":
        if out is not None:
            raise TypeError("out= is not taken for an xarray object")
        if type(value).__name__ == "Dataset":
            raise TypeError("convert a Dataset's variables one by one: dataset['name']")
        converted = convert_any(value.data, units, delete, None, dtype)
        result = value.copy(data=converted)
        _units_attribute(result.attrs, target)
        return result
    if module == "pandas":
        return _convert_pandas(value, source, target, delete, out, dtype)
    return convert_numpy(value, source, target, delete, out, dtype)


def _pandas_numbers(value: Any, dtype: Any) -> Any:
    """The numbers of a Series or DataFrame; missing values (pd.NA, NaN) as NaN."""
    np = _numpy()
    dtypes = [value.dtype] if hasattr(value, "dtype") else list(value.dtypes)
    if all(isinstance(d, np.dtype) for d in dtypes):
        return value.to_numpy()
    return value.to_numpy(dtype=dtype or np.float64, na_value=np.nan)


def _convert_pandas(
    value: Any, source: Unit, target: Unit, delete: float, out: Any, dtype: Any
) -> Any:
    pd = importlib.import_module("pandas")
    if out is not None:
        raise TypeError("out= is not taken for a pandas object")
    if not isinstance(value, (pd.Series, pd.DataFrame)):
        return convert_numpy(value, source, target, delete, None, dtype)
    data = convert_numpy(_pandas_numbers(value, dtype), source, target, delete, None, dtype)
    if isinstance(value, pd.Series):
        result = pd.Series(data, index=value.index, name=value.name)
    else:
        result = pd.DataFrame(data, index=value.index, columns=value.columns)
    result.attrs = dict(value.attrs)
    _units_attribute(result.attrs, target)
    return result


def convert_dask(value: Any, units: ConversionUnits, delete: float, dtype: Any) -> Any:
    """A Dask array converted lazily: each block is converted where Dask runs
    it, by convert_block, which names the units by text so that a worker
    process reads them from its own tables."""
    from ._loading import setup_path

    np = _numpy()
    if dtype is not None:
        chosen = _float_dtype(dtype, "dtype")
    elif value.dtype == np.float32:
        chosen = np.dtype(np.float32)
    else:
        chosen = np.dtype(np.float64)
    # The conversion is refused here, not in the workers, when the library
    # refuses it.
    _probe(units.source, units.target, chosen)
    return value.map_blocks(
        convert_block,
        portable_unit(units.from_unit, units.source),
        portable_unit(units.to_unit, units.target),
        delete,
        chosen.str,
        setup_path(),
        dtype=chosen,
    )


def convert_block(
    block: Any,
    from_unit: PortableUnit,
    to_unit: PortableUnit,
    delete: float,
    dtype: str,
    setup: Optional[str] = None,
) -> Any:
    """One block of a Dask array, converted in the process that holds it. A
    process that has loaded nothing loads setup (the setup file of the process
    that asked) or, for "", the default installation, once."""
    from ._loading import load_once

    load_once(setup or "")
    return convert_numpy(block, unit(from_unit), unit(to_unit), delete, None, dtype)
