"""Loads the default installation and converts a value and a NumPy array.

    python3 convert.py          # the package installed by pip or cmake --install
    KORVANE_HOME=<prefix>/share/xun PYTHONPATH=<repo>/python python3 convert.py

(libxun.so.1 is found through XUN_LIBRARY, the package directory, the
installation the package came with, or the system loader; the installation
through KORVANE_HOME, else the one the package came with.)
"""
import numpy as np

import xun

xun.load()  # $KORVANE_HOME/bin/XUN.xml (else the package's) and the language files

discharge = xun.convert(100.0, "cfs", "UnitCubicMeterPerSecond")
print(f"100 cfs = {discharge:.6f} m3/s")

# Water levels in feet, -999 marking missing values, converted in place.
levels = np.array([1.0, 2.5, -999.0, 10.0])
xun.convert_array(levels, "feet", "meter", delete_value=-999.0)
print("levels in m:", " ".join(f"{x:g}" for x in levels))

try:
    xun.convert(1.0, "meter", "second")
except xun.XunError as error:
    print("refused:", error)
