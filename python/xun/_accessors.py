"""The ``.xun`` accessors of pandas Series and xarray DataArrays: the unit of
the data is the text of ``attrs["units"]`` (read with xunParseUnit, so CF
texts such as "m3 s-1" work), the item type the ident, description or key in
``attrs["xun_item"]``; a conversion writes the CF text of the new unit
(xunGetUnitText) back into ``attrs["units"]``."""

from __future__ import annotations

import importlib
from typing import Any, Optional

from ._conversion import convert
from ._errors import XunError
from ._item_types import ItemType, item_type
from ._units import Unit, UnitLike, parse_unit, unit

# The attribute names: CF's units, and the package's own for the item type.
UNITS = "units"
ITEM = "xun_item"


class UnitsAccessor:
    """What ``obj.xun`` gives for a pandas Series or an xarray DataArray."""

    def __init__(self, obj: Any) -> None:
        self._obj = obj

    @property
    def unit(self) -> Unit:
        """The unit that attrs["units"] names."""
        text = self._obj.attrs.get(UNITS)
        if text is None:
            raise XunError(
                f'the {type(self._obj).__name__} has no attrs["{UNITS}"]: set it to the '
                "unit of its data, for example \"m3 s-1\""
            )
        if not isinstance(text, (str, bytes)):
            raise TypeError(f'attrs["{UNITS}"] must be a text, got {type(text).__name__}')
        return parse_unit(text)

    @property
    def item_type(self) -> Optional[ItemType]:
        """The item type that attrs["xun_item"] names, or None without one."""
        which = self._obj.attrs.get(ITEM)
        return None if which is None else item_type(which)

    def to(self, to_unit: UnitLike, *, missing: Any = None) -> Any:
        """The data converted to to_unit, with index or coordinates and the
        other attributes kept, and attrs["units"] the CF text of to_unit."""
        target = unit(to_unit)
        result = convert(self._obj, self.unit, to_unit, missing=missing)
        result.attrs[UNITS] = target.text("cf")
        return result

    def to_user_unit(self, *, missing: Any = None) -> Any:
        """The data converted to the user unit of its item type
        (attrs["xun_item"])."""
        item = self.item_type
        if item is None:
            raise XunError(
                f'the {type(self._obj).__name__} has no attrs["{ITEM}"]: set it to the '
                "ident, description or key of its item type"
            )
        target = item.user_unit
        if target is None:
            raise XunError(f"item type {item.ident} has no user unit")
        return self.to(target, missing=missing)


_registered = set()


def register_pandas() -> None:
    """Gives pandas Series the accessor ``.xun`` (once)."""
    if "pandas" in _registered:
        return
    pandas = importlib.import_module("pandas")
    pandas.api.extensions.register_series_accessor("xun")(UnitsAccessor)
    _registered.add("pandas")


def register_xarray() -> None:
    """Gives xarray DataArrays the accessor ``.xun`` (once)."""
    if "xarray" in _registered:
        return
    xarray = importlib.import_module("xarray")
    xarray.register_dataarray_accessor("xun")(UnitsAccessor)
    _registered.add("xarray")
