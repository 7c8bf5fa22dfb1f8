"""``import xun.xarray`` gives xarray DataArrays the accessor ``.xun``
(``import xun`` does so too when xarray is imported first)::

    q = xarray.DataArray(data, dims="time", attrs={"units": "m3 s-1"})
    q.xun.to("cfs")          # coordinates kept, attrs["units"] "ft3 s-1"
"""

from ._accessors import register_xarray

register_xarray()
