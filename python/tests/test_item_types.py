"""Item types and filters: lookups, iteration, allowed and user units."""

import pytest

import xun

pytestmark = pytest.mark.usefixtures("loaded")


def test_item_types_lists_every_item_type_in_file_order(setup_rows, type_texts):
    listed = xun.item_types()
    assert [it.ident for it in listed] == [row["Ident"] for row in setup_rows["Items"]]
    for it, row in zip(listed, setup_rows["Items"]):
        assert it.key == int(row["KvId"])
        assert it.description == type_texts[it.key][0]
        assert it.decimals == int(row["Decimals"])
        assert it.default_value == float(row["DefaultValue"])


def test_allowed_units_start_with_the_default(setup_rows):
    for row in setup_rows["Items"]:
        it = xun.item_type(row["Ident"])
        if it.key == 999:
            continue
        allowed = [row["DefaultUnit"]] + [
            ident for ident in row.get("AllowedUnits", "").split(";") if ident
        ]
        assert [u.ident for u in it.units] == allowed
        assert it.default_unit.ident == row["DefaultUnit"]


def test_the_any_unit_item_type_allows_every_unit():
    assert xun.item_type(999).units == xun.units()


def test_lookups():
    level = xun.item_type_by_ident("ItemWaterLevel")
    assert level == xun.item_type_by_key(level.key) == xun.item_type(level.key)
    assert xun.item_type("ItemWaterLevel") is not level
    assert xun.item_type(level) is level
    assert repr(level) == f"ItemType({level.key}, 'ItemWaterLevel', 'Water level')"
    with pytest.raises(xun.XunError) as error:
        xun.item_type("ItemNothing")
    assert str(error.value) == (
        "xunGetItemTypeKeyFromIdent: no item type has the ident 'ItemNothing'"
    )
    with pytest.raises(xun.XunError) as error:
        xun.item_type(123456)
    assert str(error.value) == "xunGetItemTypeIdent: no item type has the key 123456"
    with pytest.raises(TypeError):
        xun.item_type(None)


def test_user_unit_set_and_restored():
    level = xun.item_type("ItemWaterLevel")
    meter, foot = xun.unit("UnitMeter"), xun.unit("UnitFoot")
    assert level.user_unit == meter
    try:
        level.user_unit = "feet"
        assert level.user_unit == foot
        assert xun.to_user_unit(0.3048, level, meter) == 0.3048 / 0.3048
        assert xun.from_user_unit(1.0, level, meter) == 0.3048
        # Any unit of the dimension is accepted, allowed or not.
        level.user_unit = "UnitMile"
        assert level.user_unit == xun.unit("UnitMile")
    finally:
        level.user_unit = meter
    assert level.user_unit == meter


def test_a_user_unit_of_another_dimension_is_refused():
    level = xun.item_type("ItemWaterLevel")
    with pytest.raises(xun.XunError) as error:
        level.user_unit = "UnitSecond"
    assert str(error.value) == (
        "xunSetItemUserUnit: unit 1600 'UnitSecond' (dimension T) cannot be the user unit of "
        "item type 300 (dimension L)"
    )
    assert error.value.code == xun.ErrorCode.DIMENSION
    assert level.user_unit == xun.unit("UnitMeter")


def test_find_unit_among_the_allowed_units():
    level = xun.item_type("ItemWaterLevel")
    assert level.find_unit("foot") == xun.unit("UnitFoot")
    assert level.find_unit("centimeters") == xun.unit("UnitCentimeter")
    with pytest.raises(xun.XunError) as error:
        level.find_unit("mile")  # a length, but not an allowed unit
    assert str(error.value) == (
        "xunGetItemUnitTag: no unit of item type 300 is described as 'mile'"
    )


def test_compatibility_and_filters():
    level = xun.item_type("ItemWaterLevel")
    assert level.is_compatible("UnitMile")
    assert not level.is_compatible("UnitSecond")
    assert level.in_filter("FilterHydraulics")
    assert not level.in_filter("FilterMeteorology")


def test_filters_and_their_item_types(setup_rows):
    listed = xun.filters()
    assert [(f.ident, f.bit) for f in listed] == [
        (row["Ident"], int(row["KvId"], 0)) for row in setup_rows["Filters"]
    ]
    order = [row["Ident"] for row in setup_rows["Items"]]
    for f, row in zip(listed, setup_rows["Filters"]):
        members = set(row["Items"].split(";"))
        assert [it.ident for it in f.item_types] == [i for i in order if i in members]
    hydrology = xun.filter("FilterHydrology")
    assert hydrology == xun.filter(1) == xun.filter_by_bit(1) == xun.filter_by_ident("FilterHydrology")
    assert repr(hydrology) == "Filter(0x1, 'FilterHydrology', 'Hydrology')"
    with pytest.raises(xun.XunError) as error:
        xun.filter(0x40000000)
    assert str(error.value) == "xunGetFilterIdent: no filter has the bit 0x40000000"
    with pytest.raises(xun.XunError) as error:
        xun.filter("FilterNothing")
    assert str(error.value) == (
        "xunGetFilterKeyFromIdent: no filter has the ident 'FilterNothing'"
    )


def test_objects_of_unknown_keys_raise_the_library_error():
    ghost = xun.ItemType(5)
    assert repr(ghost) == "ItemType(5)"
    for read in (lambda: ghost.units, lambda: ghost.user_unit, lambda: ghost.decimals):
        with pytest.raises(xun.XunError) as error:
            read()
        assert error.value.code == xun.ErrorCode.UNKNOWN_ITEM_TYPE
        assert str(error.value).endswith(": no item type has the key 5")
    with pytest.raises(xun.XunError) as error:
        ghost.in_filter("FilterHydrology")
    assert str(error.value) == "xunItemFilterEqv: no item type has the key 5"
    assert repr(xun.Filter(0x40000000)) == "Filter(0x40000000)"
    with pytest.raises(xun.XunError) as error:
        xun.Filter(0x40000000).description
    assert str(error.value) == "xunGetFilterKey: no filter has the bit 0x40000000"
