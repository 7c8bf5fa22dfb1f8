"""Names as users write them: units through xunParseUnit, item types and
filters by ident, description or key (the names `xun show` takes), and the
one rule for properties and methods."""

import inspect

import pytest

import xun

pytestmark = pytest.mark.usefixtures("loaded")


@pytest.mark.parametrize(
    "text, ident",
    [
        ("m\u00b3/s", "UnitCubicMeterPerSecond"),
        ("\u00b0C", "UnitDegreeCelsius"),
        ("ft^3/s", "UnitCubicFootPerSecond"),
        ("m3 s-1", "UnitCubicMeterPerSecond"),
        ("cfs", "UnitCubicFootPerSecond"),
    ],
)
def test_units_as_written(text, ident):
    assert xun.unit(text) == xun.unit_by_ident(ident)


def test_item_types_by_ident_description_or_key():
    discharge = xun.item_type_by_ident("ItemDischarge")
    assert xun.item_type("Discharge") == discharge
    assert xun.item_type(discharge.description) == discharge
    assert xun.item_type(str(discharge.key)) == discharge
    assert xun.item_type(discharge.key) == discharge
    with pytest.raises(xun.XunError) as error:
        xun.item_type("discharge")  # a description is matched exactly
    assert str(error.value) == "xunGetItemTypeKeyFromIdent: no item type has the ident 'discharge'"
    assert error.value.code == xun.ErrorCode.UNKNOWN_ITEM_TYPE
    with pytest.raises(xun.XunError) as error:
        xun.item_type("123456")
    assert str(error.value) == "xunGetItemTypeKeyFromIdent: no item type has the ident '123456'"


def test_filters_by_ident_description_or_bit():
    hydraulics = xun.filter_by_ident("FilterHydraulics")
    assert hydraulics.bit == 2
    for name in ("Hydraulics", "2", "0x2", "0x0002"):
        assert xun.filter(name) == hydraulics
    assert xun.item_type("ItemDischarge").in_filter("Hydraulics")
    with pytest.raises(xun.XunError) as error:
        xun.filter("0x40000000")
    assert str(error.value) == "xunGetFilterKeyFromIdent: no filter has the ident '0x40000000'"


def test_properties_take_no_arguments_and_methods_take_some():
    # The rule of the package: what an object answers without an argument is
    # a property; what needs an argument is a method.
    for cls in (xun.Unit, xun.ItemType, xun.Filter):
        for name, member in vars(cls).items():
            if name.startswith("_"):
                continue
            if isinstance(member, property):
                continue
            parameters = list(inspect.signature(member).parameters.values())[1:]
            assert parameters, f"{cls.__name__}.{name} takes no argument: make it a property"
    assert isinstance(xun.unit("m").equivalent_units, list)
    assert isinstance(xun.filter("Hydraulics").item_types, list)
