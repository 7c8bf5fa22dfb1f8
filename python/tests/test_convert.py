"""Conversion of single values and of NumPy arrays in place."""

import numpy as np
import pytest

import xun

pytestmark = pytest.mark.usefixtures("loaded")


def stepwise(values, source, target):
    """The library's formula, ((x * f1 + o1) - o2) / f2, in double precision."""
    s, t = xun.unit(source), xun.unit(target)
    x = np.asarray(values, dtype=np.float64)
    return ((x * s.factor + s.offset) - t.offset) / t.factor


def test_single_values():
    assert xun.convert(10, "UnitFoot", "UnitMeter") == 10 * 0.3048 / 1.0
    assert xun.convert(0.0, "degree Celsius", "kelvin") == 273.15
    assert xun.convert(273.15, "K", "degC") == 0.0
    assert xun.convert(212.0, "Fahrenheit", "Celsius") == stepwise(212.0, "degF", "degC")
    assert xun.convert(212.0, "Fahrenheit", "Celsius") == pytest.approx(100.0, abs=1e-12)
    assert xun.convert(np.float32(2.0), "mile", "ft") == stepwise(2.0, "mile", "ft")
    assert xun.unit("mile").convert(1, "UnitFoot") == pytest.approx(5280.0, rel=1e-15)
    assert xun.convert(1.0, "cfs", "m3/s") == pytest.approx(0.028316846592, rel=1e-15)


def test_incompatible_units_raise():
    with pytest.raises(xun.XunError) as error:
        xun.convert(1.0, "meter", "second")
    assert str(error.value) == (
        "xunConvertUnit: cannot convert unit 1200 'UnitMeter' (dimension L) to unit 1600 "
        "'UnitSecond' (dimension T): the dimensions differ"
    )
    assert error.value.code == xun.ErrorCode.DIMENSION
    with pytest.raises(xun.XunError) as error:
        xun.convert(1.0, "UnitCubicMeterPerSecond", "UnitKelvin")
    assert str(error.value) == (
        "xunConvertUnit: cannot convert unit 2400 'UnitCubicMeterPerSecond' (dimension L3 T-1) "
        "to unit 1800 'UnitKelvin' (dimension \u0398): the dimensions differ"
    )
    with pytest.raises(xun.XunError) as error:
        xun.convert(1.0, "meter", "furlong")
    assert str(error.value) == (
        "xunParseUnit: 'furlong' stops making sense at byte 1: no unit is named 'furlong'"
    )
    assert error.value.code == xun.ErrorCode.NOT_FOUND
    with pytest.raises(TypeError) as error:
        xun.convert(None, "meter", "foot")
    assert str(error.value) == "value must be a number or an array of numbers, got NoneType"


def test_to_and_from_base():
    assert xun.to_base(0.0, "UnitDegreeCelsius") == 273.15
    assert xun.from_base(273.15, "UnitDegreeCelsius") == 0.0
    assert xun.to_base(2.0, "UnitFoot") == 2 * 0.3048
    x = 123.456
    assert xun.from_base(xun.to_base(x, "degF"), "degF") == pytest.approx(x, rel=1e-14)


def test_user_unit_conversions():
    temperature = xun.item_type("ItemTemperature")
    assert temperature.user_unit == xun.unit("UnitDegreeCelsius")
    assert xun.to_user_unit(273.15, "ItemTemperature", "K") == 0.0
    assert xun.from_user_unit(0.0, temperature, "UnitKelvin") == 273.15
    with pytest.raises(xun.XunError) as error:
        xun.to_user_unit(1.0, temperature, "UnitMeter")
    assert str(error.value) == (
        "xunConvertToUserUnit: cannot convert unit 1200 'UnitMeter' (dimension L) to unit 1801 "
        "'UnitDegreeCelsius' (dimension \u0398): the dimensions differ"
    )
    with pytest.raises(xun.XunError) as error:
        xun.from_user_unit(1.0, temperature, "UnitMeter")
    assert str(error.value) == (
        "xunConvertFromUserUnit: cannot convert unit 1801 'UnitDegreeCelsius' (dimension "
        "\u0398) to unit 1200 'UnitMeter' (dimension L): the dimensions differ"
    )
    with pytest.raises(xun.XunError) as error:
        xun.to_user_unit(1.0, 123456, "UnitMeter")
    assert str(error.value) == "xunGetItemTypeIdent: no item type has the key 123456"
    assert error.value.code == xun.ErrorCode.UNKNOWN_ITEM_TYPE


@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_arrays_convert_in_place_exactly_as_the_library_formula(dtype):
    rng = np.random.default_rng(7)
    values = rng.uniform(-1000.0, 1000.0, 10_000).astype(dtype)
    expected = stepwise(values, "degF", "degC").astype(dtype)
    result = xun.convert_array(values, "UnitDegreeFahrenheit", "UnitDegreeCelsius")
    assert result is values
    assert values.dtype == dtype
    assert np.array_equal(values, expected)


@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_delete_values_and_nan_stay(dtype):
    values = np.array([1.0, -999.0, np.nan, 2.0, -999.0, np.inf], dtype=dtype)
    xun.convert_array(values, "UnitFoot", "UnitMeter", delete_value=-999.0)
    expected = np.array([0.3048, -999.0, np.nan, 0.6096, -999.0, np.inf], dtype=dtype)
    assert np.array_equal(values, expected, equal_nan=True)
    # The default delete value, +inf, leaves every finite value to convert.
    values = np.array([-999.0, 3.0], dtype=dtype)
    xun.convert_array(values, "UnitFoot", "UnitMeter")
    assert np.array_equal(values, stepwise([-999.0, 3.0], "ft", "m").astype(dtype))


def test_float32_delete_value_is_compared_in_single_precision():
    values = np.array([0.1, 1.0], dtype=np.float32)
    xun.convert_array(values, "UnitFoot", "UnitMeter", delete_value=0.1)
    assert values[0] == np.float32(0.1)
    assert values[1] == np.float32(0.3048)


def test_multidimensional_arrays_in_either_order():
    for order in ("C", "F"):
        values = np.array(np.arange(12.0).reshape(3, 4), order=order)
        expected = stepwise(values, "UnitInch", "UnitMeter")
        xun.convert_array(values, "UnitInch", "UnitMeter")
        assert np.array_equal(values, expected)


def test_empty_and_zero_dimensional_arrays():
    empty = np.array([], dtype=np.float64)
    assert xun.convert_array(empty, "ft", "m") is empty
    scalar = np.array(2.0)
    xun.convert_array(scalar, "ft", "m")
    assert scalar == 2 * 0.3048


def test_array_user_unit_conversions():
    # The user unit of ItemTemperature is the degree Celsius.
    values = np.array([0.0, 100.0, -1.0], dtype=np.float32)
    xun.array_from_user_unit(values, "ItemTemperature", "UnitKelvin", delete_value=-1.0)
    assert np.array_equal(values, np.array([273.15, 373.15, -1.0], dtype=np.float32))
    kelvin = values.copy()
    xun.array_to_user_unit(values, "ItemTemperature", "UnitKelvin", delete_value=-1.0)
    expected = stepwise(kelvin, "UnitKelvin", "UnitDegreeCelsius").astype(np.float32)
    expected[2] = -1.0
    assert np.array_equal(values, expected)
    doubles = np.array([0.0, 100.0])
    xun.array_from_user_unit(doubles, "ItemTemperature", "UnitDegreeFahrenheit")
    assert np.array_equal(doubles, stepwise([0.0, 100.0], "degC", "degF"))
    xun.array_to_user_unit(doubles, "ItemTemperature", "UnitDegreeFahrenheit")
    assert doubles == pytest.approx([0.0, 100.0], abs=1e-12)


def test_refused_conversions_leave_the_array_untouched():
    values = np.array([1.0, 2.0])
    with pytest.raises(xun.XunError) as error:
        xun.convert_array(values, "UnitMeter", "UnitSecond")
    assert str(error.value) == (
        "xunConvertItemArrayD: cannot convert unit 1200 'UnitMeter' (dimension L) to unit 1600 "
        "'UnitSecond' (dimension T): the dimensions differ"
    )
    assert values.tolist() == [1.0, 2.0]
    with pytest.raises(xun.XunError) as error:
        xun.array_to_user_unit(values, "ItemTemperature", "UnitMeter")
    assert str(error.value) == (
        "xunConvertItemArrayToUserUnitD: cannot convert unit 1200 'UnitMeter' (dimension L) to "
        "unit 1801 'UnitDegreeCelsius' (dimension \u0398): the dimensions differ"
    )
    with pytest.raises(xun.XunError):
        xun.array_from_user_unit(values, "ItemTemperature", "UnitMeter")
    assert values.tolist() == [1.0, 2.0]


def test_arrays_the_library_cannot_take_are_refused():
    with pytest.raises(TypeError) as error:
        xun.convert_array([1.0, 2.0], "ft", "m")
    assert str(error.value) == "expected a NumPy array, got list"
    with pytest.raises(TypeError) as error:
        xun.convert_array(np.arange(3), "ft", "m")
    assert str(error.value) == (
        "the array must hold float64 or float32 in native byte order, not <i8"
    )
    with pytest.raises(TypeError) as error:
        xun.convert_array(np.ones(3, dtype=">f8"), "ft", "m")
    assert str(error.value) == (
        "the array must hold float64 or float32 in native byte order, not >f8"
    )
    base = np.arange(10.0)
    with pytest.raises(ValueError) as error:
        xun.convert_array(base[::2], "ft", "m")
    assert str(error.value).startswith("the array is not contiguous")
    readonly = np.arange(3.0)
    readonly.flags.writeable = False
    with pytest.raises(ValueError) as error:
        xun.convert_array(readonly, "ft", "m")
    assert str(error.value) == "the array is read-only: it is converted in place"
    raw = np.zeros(8 * 4 + 1, dtype=np.uint8)
    misaligned = raw[1:].view(np.float64)
    with pytest.raises(ValueError) as error:
        xun.convert_array(misaligned, "ft", "m")
    assert str(error.value) == "the array is not aligned: convert an aligned copy"
    assert base.tolist() == list(np.arange(10.0))


def test_arrays_of_2_to_the_31_elements_are_refused():
    try:
        huge = np.empty(2**31, dtype=np.float32)  # never touched: no memory is used
    except MemoryError:
        pytest.skip("this machine does not grant 8 GiB of address space")
    with pytest.raises(ValueError) as error:
        xun.convert_array(huge, "ft", "m")
    assert str(error.value) == (
        "the array has 2147483648 elements; one call converts at most 2147483647: "
        "convert it in parts"
    )


@pytest.mark.parametrize(
    "dtype, function", [(np.float64, "xunConvertItemArrayD"), (np.float32, "xunConvertItemArrayF")]
)
def test_a_whole_array_is_converted_in_one_call(monkeypatch, dtype, function):
    library = xun.library()
    original = getattr(library, function)
    calls = []

    def counting(*args):
        calls.append(args[3])
        return original(*args)

    monkeypatch.setattr(library, function, counting)
    values = np.full(2_000_000, 1.0, dtype=dtype)
    xun.convert_array(values, "UnitKilometer", "UnitMeter")
    assert calls == [2_000_000]
    assert np.all(values == 1000.0)


def test_threads_share_the_library():
    import threading

    failures = []

    def work():
        for _ in range(200):
            values = np.array([1.0, 2.0])
            xun.convert_array(values, "UnitFoot", "UnitMeter")
            if values.tolist() != [0.3048, 0.6096] or xun.convert(1, "ft", "m") != 0.3048:
                failures.append(values)

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []
