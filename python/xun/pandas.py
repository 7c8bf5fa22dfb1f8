"""``import xun.pandas`` gives pandas Series the accessor ``.xun``
(``import xun`` does so too when pandas is imported first)::

    s = pandas.Series([1.0, 2.0]); s.attrs["units"] = "ft3/s"
    s.xun.to("m3/s")         # a Series in m3/s, the same index, attrs["units"] "m3 s-1"
"""

from ._accessors import register_pandas

register_pandas()
