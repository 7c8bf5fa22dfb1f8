"""The tour of tour.c in Python: the same lines, through the xun package
(NumPy arrays converted in place) and, for derived units, which the package
does not wrap, its ctypes prototypes of the C functions."""

import ctypes

import numpy as np

import xun
from xun import _native


def derived(function, *units):
    """(match, eqv, factor) of xunUnitMultiply, xunUnitDivide or xunUnitPower."""
    match, eqv, factor = ctypes.c_int(), ctypes.c_int(), ctypes.c_double()
    outputs = [ctypes.byref(match), ctypes.byref(eqv), ctypes.byref(factor)]
    with _native.lock:
        call = getattr(_native.library(), function)
        if function == "xunUnitPower":
            ok = call(units[0], *outputs, units[1])
        else:
            ok = call(*units, *outputs)
    if ok != 1:
        raise SystemExit(f"{function} failed")
    return match.value, eqv.value, factor.value


def ident(tag):
    return xun.unit(tag).ident if tag else "none"


xun.load()
item = xun.item_type("ItemWaterLevel")
units = item.units
print(f"item ItemWaterLevel: {len(units)} units")
for allowed in units:
    print(f"  {allowed.tag} {allowed.ident}")

hydrology = xun.filter("FilterHydrology")
members = hydrology.item_types
print(
    f"filter FilterHydrology: {len(members)} item types, the first {members[0].ident}, "
    f"ItemWaterLevel {'in it' if item.in_filter(hydrology) else 'not in it'}"
)

meter, second, foot = xun.unit("UnitMeter"), xun.unit("UnitSecond"), xun.unit("UnitFoot")
item.user_unit = foot
x = xun.to_user_unit(1.0, item, meter)
print(f"user unit of ItemWaterLevel: {item.user_unit.ident}; 1 m = {round(x * 1e6)} millionths")

before = np.array([1.0, -999.0, 2.5, 10.0])
values = xun.array_to_user_unit(before.copy(), item, meter, delete_value=-999.0)
same = all(
    v == -999.0 if b == -999.0 else v == xun.to_user_unit(b, item, meter)
    for b, v in zip(before, values)
)
converted = sum(1 for b, v in zip(before, values) if b != -999.0 and v != b)
print(
    f"array: {converted} of {len(values)} converted, -999 kept and each as converted alone: "
    f"{'yes' if same else 'no'}"
)

m2 = derived("xunUnitMultiply", meter.tag, meter.tag)
speed = derived("xunUnitDivide", meter.tag, second.tag)
ft2 = derived("xunUnitPower", foot.tag, 2.0)
print(
    f"derived: m*m = {ident(m2[0])}, m/s = {ident(speed[0])}, ft^2 = {ident(ft2[0])} "
    f"({ident(ft2[1])} times {round(ft2[2] * 1e9)} billionths)"
)
