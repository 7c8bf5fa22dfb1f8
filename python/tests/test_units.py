"""Units: lookups by tag, ident and name, iteration, parameters and dimensions."""

import pytest

import xun

pytestmark = pytest.mark.usefixtures("loaded")


def test_units_lists_every_unit_of_the_setup_in_file_order(setup_rows):
    listed = xun.units()
    assert [u.ident for u in listed] == [row["Ident"] for row in setup_rows["Units"]]
    assert [u.tag for u in listed] == [int(row["KvId"]) for row in setup_rows["Units"]]


def test_texts_come_from_the_language_file(unit_texts):
    for u in xun.units():
        assert [u.description, u.abbreviation] == unit_texts[u.tag]


def test_lookup_by_tag_ident_and_name():
    foot = xun.unit_by_ident("UnitFoot")
    assert foot.tag == 1208
    assert xun.unit_by_tag(1208) == foot
    assert xun.unit(1208) == foot
    assert xun.unit("UnitFoot") == foot
    assert xun.unit(foot) is foot
    # Description, its plural, and aliases.
    assert xun.unit_by_name("foot") == foot
    assert xun.unit_by_name("feet") == foot
    assert xun.unit("ft") == foot
    assert xun.unit("meters") == xun.unit("UnitMeter")
    assert xun.unit("metre") == xun.unit("UnitMeter")
    assert xun.unit(b"UnitFoot") == foot


def test_unknown_units_raise():
    with pytest.raises(xun.XunError) as error:
        xun.unit("furlongs")
    assert str(error.value) == (
        "xunParseUnit: 'furlongs' stops making sense at byte 1: no unit is named 'furlongs'"
    )
    assert error.value.code == xun.ErrorCode.NOT_FOUND
    with pytest.raises(xun.XunError) as error:
        xun.unit(424242)
    assert str(error.value) == "xunGetUnitIdent: no unit has the tag 424242"
    assert error.value.code == xun.ErrorCode.UNKNOWN_UNIT
    with pytest.raises(xun.XunError) as error:
        xun.unit_by_ident("foot")
    assert str(error.value) == "xunGetUnitTagFromIdent: no unit has the ident 'foot'"
    with pytest.raises(xun.XunError) as error:
        xun.unit_by_name("UnitFoot")
    assert str(error.value) == "xunGetUnitTag: no unit is described or aliased as 'UnitFoot'"


def test_bad_arguments_raise_type_and_value_errors():
    with pytest.raises(TypeError) as error:
        xun.unit(1.5)
    assert str(error.value) == "a unit is named by a Unit, an int or a text, got float"
    with pytest.raises(TypeError):
        xun.unit(True)
    with pytest.raises(ValueError) as error:
        xun.unit("Unit\0Foot")
    assert str(error.value) == "unit text contains a NUL character: 'Unit\\x00Foot'"
    with pytest.raises(ValueError) as error:
        xun.unit(2**31)
    assert str(error.value) == "unit tag 2147483648 is outside the range of a C int"


def test_parameters():
    foot = xun.unit("UnitFoot")
    assert foot.factor == 0.3048
    assert foot.offset == 0.0
    assert foot.dimension == (1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)
    celsius = xun.unit("UnitDegreeCelsius")
    assert (celsius.factor, celsius.offset) == (1.0, 273.15)
    assert celsius.dimension == (0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0)
    assert len(foot.dimension_factors) == 7


def test_dimension_text():
    assert xun.unit("UnitMeter").dimension_text == "L"
    assert xun.unit("UnitCubicMeterPerSecond").dimension_text == "L^3 T^-1"
    assert xun.unit("UnitKelvin").dimension_text == "\u0398"
    assert xun.unit("UnitPercent").dimension_text == "dimensionless"
    assert xun._dimension_text((0.5, 0, -1, 0, 0, 0, 0)) == "L^0.5 T^-1"
    assert xun._dimension_text((0, 1, 0, 0, 2, -1, 1)) == "M I^2 N^-1 J"


def test_equivalent_and_base_units():
    meter = xun.unit("UnitMeter")
    same = meter.equivalent_units
    assert same[0] == meter
    assert xun.unit("UnitFoot") in same
    assert xun.unit("UnitSquareMeter") not in same
    assert same == [u for u in xun.units() if u.dimension == meter.dimension]
    assert xun.unit("UnitMile").base_unit == meter
    assert xun.unit("UnitDegreeFahrenheit").base_unit == xun.unit("UnitKelvin")
    assert meter.is_equivalent("UnitInch")
    assert not meter.is_equivalent("UnitSecond")


def test_units_compare_by_tag_and_show_their_names():
    assert xun.unit("ft") == xun.unit("UnitFoot")
    assert xun.unit("ft") != xun.unit("UnitMeter")
    assert len({xun.unit("ft"), xun.unit("feet"), xun.unit(1208)}) == 1
    assert repr(xun.unit("ft")) == "Unit(1208, 'UnitFoot', 'foot')"


def test_expressions_and_aliases_come_from_the_setup_file(setup_rows):
    for row in setup_rows["Units"]:
        u = xun.unit(row["Ident"])
        assert u.expression == row["Expr"]
        assert u.aliases == [alias for alias in row.get("Alias", "").split(";") if alias]
    assert xun.unit("UnitFoot").aliases == ["feet", "international foot", "ft"]


def test_a_unit_object_of_an_unknown_tag_raises_the_library_error():
    ghost = xun.Unit(424242)
    assert repr(ghost) == "Unit(424242)"
    for read in (
        lambda: ghost.ident,
        lambda: ghost.aliases,
        lambda: ghost.factor,
        lambda: ghost.base_unit,
        lambda: ghost.equivalent_units,
        lambda: ghost.is_equivalent("UnitMeter"),
    ):
        with pytest.raises(xun.XunError) as error:
            read()
        assert error.value.code == xun.ErrorCode.UNKNOWN_UNIT
        assert str(error.value).endswith(": no unit has the tag 424242")
