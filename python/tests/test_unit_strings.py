"""Unit strings as people and data files write them: xun.unit(), xun.convert()
and xun.parse_unit() read them with xunParseUnit, Unit.text() writes them.

Texts whose meaning no registered unit has make a unit of their own, so the
tests that read such texts run in a fresh interpreter."""

import pytest

import xun


def test_composed_units_convert(loaded):
    assert xun.convert(1, "m3.s-1", "l/s") == pytest.approx(1000.0, rel=1e-15)
    assert xun.convert(1, "ft^3/s", "m^3/s") == pytest.approx(0.028316846592, rel=1e-15)
    assert xun.convert(20, "kg m-2 s-1", "g/(m\u00b2\u00b7d)") == pytest.approx(1.728e9, rel=1e-15)
    assert xun.convert(0, "K @ 273.15", "K") == pytest.approx(273.15, rel=1e-15)
    assert xun.convert(1, "cubic feet per second", "l s-1") == pytest.approx(28.316846592)


def test_the_library_s_own_symbols_are_names(loaded):
    assert xun.unit("m\u00b3/s") == xun.unit("UnitCubicMeterPerSecond")
    assert xun.unit("\u00b0C") == xun.unit("UnitDegreeCelsius")
    # The Greek mu is the micro sign.
    assert xun.unit("\u03bcg/l") == xun.unit("\u00b5g/l") == xun.unit("UnitMicrogramPerLiter")
    # Case, where one unit has the name.
    assert xun.unit("CFS") == xun.unit("cfs")
    assert xun.unit(b"kg m-2 s-1").ident == "UnitKilogramPerSquareMeterPerSecond"


def test_near_names_in_the_error(loaded):
    with pytest.raises(xun.XunError) as error:
        xun.unit("CFSS")
    assert str(error.value) == (
        "xunParseUnit: 'CFSS' stops making sense at byte 1: no unit is named 'CFSS'; "
        "near names: 'cfs'"
    )
    assert error.value.code == xun.ErrorCode.NOT_FOUND
    with pytest.raises(xun.XunError) as error:
        xun.convert(1, "metre per sekond", "m/s")
    assert "near names: 'second'" in str(error.value)
    with pytest.raises(xun.XunError) as error:
        xun.unit("kg/(m2*s")
    assert str(error.value) == (
        "xunParseUnit: 'kg/(m2*s' stops making sense at byte 9: ')' is missing at the end"
    )
    assert error.value.code == xun.ErrorCode.EXPRESSION


def test_allowed_units_of_an_item_type(loaded):
    discharge = xun.item_type("ItemDischarge")
    for text in ("cfs", "m3/s", "l/s", "liters per second", "m3 s-1"):
        assert discharge.parse_unit(text) in discharge.units, text
    assert xun.parse_unit("l/s", item="ItemDischarge").ident == "UnitLiterPerSecond"
    with pytest.raises(xun.XunError) as error:
        discharge.parse_unit("m")
    assert error.value.code == xun.ErrorCode.DIMENSION


def test_texts_in_three_notations(loaded):
    unit = xun.unit("UnitCubicMeterPerSecond")
    assert unit.text() == "m3 s-1"
    assert unit.text("cf") == "m3 s-1"
    assert unit.text("ascii") == "m3/s"
    assert unit.text("unicode") == "m\u00b3/s"
    assert xun.unit("UnitUSSurveyFoot").text("cf") == "0.304800609601219 m"
    for notation in xun.NOTATIONS:
        assert xun.unit(unit.text(notation)) == unit
    with pytest.raises(ValueError):
        unit.text("latex")


def test_a_meaning_of_its_own_makes_a_unit(run_python):
    result = run_python(
        """
        import xun
        xun.load()
        before = len(xun.units())
        first = xun.unit("km/s")
        again = xun.unit("kilometers per second")
        print(first.ident, first.tag >= 100000, first == again, len(xun.units()) - before)
        print(first.description, "|", first.text("cf"), "|", first.text("unicode"))
        print(xun.convert(1, "km/s", "km/h"))
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == [
        "xun:km/s True True 1",
        "km/s (parsed) | km s-1 | km/s",
        "3600.0",
    ]
