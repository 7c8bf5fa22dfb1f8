"""xun.convert on NumPy data, as a ufunc: any array-like in, a new array out
(or out=), missing values, masked arrays, one library call per block."""

import math

import numpy as np
import pytest

import xun

pytestmark = pytest.mark.usefixtures("loaded")


def stepwise(values, source, target):
    """The library's formula, ((x * f1 + o1) - o2) / f2, in double precision."""
    s, t = xun.unit(source), xun.unit(target)
    x = np.asarray(values, dtype=np.float64)
    return ((x * s.factor + s.offset) - t.offset) / t.factor


def same(a, b):
    """Equal bit for bit, shape and dtype included."""
    a, b = np.asarray(a), np.asarray(b)
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


@pytest.fixture
def count_calls(monkeypatch):
    """Records the element count of every array call of the library."""
    calls = []
    library = xun.library()
    for name in ("xunConvertItemArrayD", "xunConvertItemArrayF"):
        original = getattr(library, name)

        def counting(*args, _original=original, _name=name):
            calls.append((_name[-1], args[3]))
            return _original(*args)

        monkeypatch.setattr(library, name, counting)
    return calls


def test_python_numbers_give_floats():
    assert type(xun.convert(10, "ft", "m")) is float
    assert xun.convert(10, "ft", "m") == stepwise(10, "ft", "m")
    assert xun.convert(-999.0, "ft", "m", missing=-999) == -999.0
    assert math.isnan(xun.convert(math.nan, "ft", "m", missing=math.nan))


@pytest.mark.parametrize(
    "make",
    [
        pytest.param(lambda: [1, 2, 3], id="list of ints"),
        pytest.param(lambda: [[1.5, 2.5], [3.5, 4.5]], id="nested list"),
        pytest.param(lambda: np.arange(6, dtype=np.int32), id="int32"),
        pytest.param(lambda: np.arange(6, dtype=np.uint8), id="uint8"),
        pytest.param(lambda: np.array([True, False]), id="bool"),
        pytest.param(lambda: np.arange(12.0).reshape(3, 4)[:, 1], id="column slice"),
        pytest.param(lambda: np.arange(12.0)[::-3], id="negative stride"),
        pytest.param(lambda: np.arange(24.0).reshape(2, 3, 4).transpose(2, 0, 1), id="transposed"),
        pytest.param(lambda: np.asfortranarray(np.arange(12.0).reshape(3, 4)), id="Fortran order"),
        pytest.param(lambda: np.arange(5.0).astype(">f8"), id="big-endian float64"),
        pytest.param(lambda: np.arange(5, dtype=">i4"), id="big-endian int32"),
        pytest.param(lambda: np.float16([1.5, 2.5]), id="float16"),
    ],
)
def test_array_likes_give_a_new_float64_array(make):
    value = make()
    before = np.array(value, copy=True)
    result = xun.convert(value, "degF", "degC")
    assert isinstance(result, np.ndarray) and result.dtype == np.float64
    assert same(result, stepwise(before, "degF", "degC"))
    assert same(np.asarray(value), before)  # the input is untouched


def test_read_only_input():
    value = np.arange(4.0)
    value.flags.writeable = False
    assert same(xun.convert(value, "in", "m"), stepwise(np.arange(4.0), "in", "m"))


@pytest.mark.parametrize("dtype", ["<f4", ">f4"])
def test_float32_gives_float32_converted_in_double_precision(dtype):
    value = np.random.default_rng(3).uniform(-100, 100, 1000).astype(dtype)
    result = xun.convert(value, "degF", "degC")
    assert result.dtype == np.float32 and result.dtype.isnative
    assert same(result, stepwise(value, "degF", "degC").astype(np.float32))


def test_dtype_chooses_the_result_type():
    value = np.array([0.1, 1e10, 2.0])
    result = xun.convert(value, "ft", "m", dtype=np.float32)
    assert same(result, stepwise(value.astype(np.float32), "ft", "m").astype(np.float32))
    assert same(xun.convert(np.float32([2.0]), "ft", "m", dtype="float64"), stepwise([2.0], "ft", "m"))
    with pytest.raises(TypeError) as error:
        xun.convert(value, "ft", "m", dtype=np.int64)
    assert str(error.value) == "dtype must be float64 or float32, got int64"


def test_scalars_of_numpy_give_numpy_scalars():
    result = xun.convert(np.float32(2.0), "ft", "m")
    assert type(result) is np.float32 and result == np.float32(2 * 0.3048)
    result = xun.convert(np.int64(2), "ft", "m")
    assert type(result) is np.float64 and result == stepwise(2.0, "ft", "m")
    result = xun.convert(np.array(3.0), "ft", "m")
    assert type(result) is np.float64 and result == stepwise(3.0, "ft", "m")


def test_values_that_are_not_numbers_are_refused():
    for value, name in ((["a", "b"], "list of <U1"), (np.array([1j]), "ndarray of complex128")):
        with pytest.raises(TypeError) as error:
            xun.convert(value, "ft", "m")
        assert str(error.value) == f"value must be a number or an array of numbers, got {name}"


@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_missing_number_stays(dtype):
    value = np.array([1.0, -999.0, 2.0, np.nan], dtype=dtype)
    result = xun.convert(value, "ft", "m", missing=-999)
    expected = stepwise(value, "ft", "m").astype(dtype)
    expected[1] = -999.0
    assert same(result, expected)


@pytest.mark.parametrize("missing", [np.nan, math.nan, float("nan"), np.float32("nan")])
@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_missing_nan_converts_every_other_element(missing, dtype):
    value = np.array([1.0, np.nan, -999.0, np.inf, 3.0], dtype=dtype)
    result = xun.convert(value, "degF", "degC", missing=missing)
    expected = stepwise(value, "degF", "degC").astype(dtype)
    assert np.isnan(result[1])
    assert same(result, expected)
    # The library's own rule, for comparison: a NaN marker matches no element,
    # so the C call with NaN converts nothing.
    raw = value.copy()
    xun.convert_array(raw, "degF", "degC", delete_value=np.nan)
    assert same(raw, value)


def test_masked_arrays_keep_their_mask():
    value = np.ma.masked_array([1.0, 2.0, 3.0], mask=[False, True, False])
    result = xun.convert(value, "ft", "m")
    assert isinstance(result, np.ma.MaskedArray)
    assert result.mask.tolist() == [False, True, False]
    assert same(result.compressed(), stepwise([1.0, 3.0], "ft", "m"))
    assert value.tolist() == [1.0, None, 3.0]
    ints = np.ma.masked_equal([5, -1, 7], -1)
    result = xun.convert(ints, "ft", "m")
    assert result.mask.tolist() == [False, True, False]
    assert same(result.compressed(), stepwise([5, 7], "ft", "m"))


def test_out_receives_the_result():
    value = np.arange(6, dtype=np.int16).reshape(2, 3)
    out = np.empty((2, 3))
    assert xun.convert(value, "ft", "m", out=out) is out
    assert same(out, stepwise(value, "ft", "m"))
    out32 = np.empty(3, dtype=np.float32)
    xun.convert([1.0, 2.0, 3.0], "ft", "m", out=out32)
    assert same(out32, stepwise([1.0, 2.0, 3.0], "ft", "m").astype(np.float32))
    broadcast = np.empty((2, 3))
    xun.convert([1.0, 2.0, 3.0], "ft", "m", out=broadcast)
    assert same(broadcast, np.tile(stepwise([1.0, 2.0, 3.0], "ft", "m"), (2, 1)))


def test_out_is_the_input_converts_in_place(count_calls):
    value = np.arange(1000.0)
    expected = stepwise(value, "degF", "K")
    assert xun.convert(value, "degF", "K", out=value) is value
    assert same(value, expected)
    assert count_calls == [("D", 1000)]


def test_out_that_is_not_contiguous(count_calls):
    matrix = np.arange(12.0).reshape(3, 4)
    column = matrix[:, 1]
    xun.convert(column, "ft", "m", out=column)
    expected = np.arange(12.0).reshape(3, 4)
    expected[:, 1] = stepwise(expected[:, 1], "ft", "m")
    assert same(matrix, expected)
    assert count_calls == [("D", 3)]  # one call on a contiguous copy


def test_out_with_missing_and_masks():
    value = np.array([1.0, np.nan, 2.0])
    xun.convert(value, "ft", "m", out=value, missing=np.nan)
    assert same(value, stepwise([1.0, np.nan, 2.0], "ft", "m"))
    masked = np.ma.masked_array([1.0, 2.0], mask=[True, False])
    xun.convert(masked, "ft", "m", out=masked)
    assert masked.mask.tolist() == [True, False]
    assert same(masked.data, stepwise([1.0, 2.0], "ft", "m"))


def test_out_that_cannot_take_the_result():
    with pytest.raises(TypeError) as error:
        xun.convert([1.0], "ft", "m", out=[0.0])
    assert str(error.value) == "out must be a NumPy array, got list"
    with pytest.raises(TypeError) as error:
        xun.convert([1.0], "ft", "m", out=np.zeros(1, dtype=np.int64))
    assert str(error.value) == "out must hold float64 or float32 in native byte order, not <i8"
    with pytest.raises(TypeError) as error:
        xun.convert([1.0], "ft", "m", out=np.zeros(1, dtype=">f8"))
    assert str(error.value) == "out must hold float64 or float32 in native byte order, not >f8"
    readonly = np.zeros(1)
    readonly.flags.writeable = False
    with pytest.raises(ValueError) as error:
        xun.convert([1.0], "ft", "m", out=readonly)
    assert str(error.value) == "out is read-only"
    with pytest.raises(ValueError) as error:
        xun.convert([1.0, 2.0], "ft", "m", out=np.zeros(3))
    assert str(error.value) == "out has the shape (3,), which the value's (2,) does not broadcast to"
    with pytest.raises(TypeError) as error:
        xun.convert([1.0], "ft", "m", out=np.zeros(1), dtype=np.float32)
    assert str(error.value) == "dtype float32 differs from out's float64"


def test_a_refused_conversion_leaves_out_as_it_was():
    out = np.array([7.0, 8.0])
    with pytest.raises(xun.XunError) as error:
        xun.convert([1.0, 2.0], "m", "s", out=out)
    assert str(error.value) == (
        "xunConvertItemArrayD: cannot convert unit 1200 'UnitMeter' (dimension L) to unit 1600 "
        "'UnitSecond' (dimension T): the dimensions differ"
    )
    assert out.tolist() == [7.0, 8.0]


@pytest.mark.parametrize("dtype, kind", [(np.float64, "D"), (np.float32, "F")])
def test_one_library_call_for_a_whole_array(count_calls, dtype, kind):
    value = np.arange(2_000_000, dtype=dtype).reshape(1000, 2000)[:, ::2]
    result = xun.convert(value, "km", "m")
    assert count_calls == [(kind, 1_000_000)]
    assert same(result, (value.astype(np.float64) * 1000.0).astype(dtype))
    count_calls.clear()
    out = np.empty((1000, 1000), dtype=dtype)
    xun.convert(value, "km", "m", out=out)
    # A one-element call first, so that a refused conversion leaves out as it was.
    assert count_calls == [(kind, 1), (kind, 1_000_000)]


def test_longer_arrays_are_converted_in_blocks_of_the_largest_count(count_calls, monkeypatch):
    monkeypatch.setattr(xun._arrays, "MAX_ARRAY_SIZE", 1000)
    value = np.arange(2500.0)
    result = xun.convert(value, "ft", "m")
    assert count_calls == [("D", 1000), ("D", 1000), ("D", 500)]
    assert same(result, stepwise(value, "ft", "m"))
