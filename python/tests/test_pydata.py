"""pandas, xarray and Dask: xun.convert keeps index, coordinates and chunks;
the .xun accessors read and write CF units attributes; Dask arrays convert
lazily, in the workers of a LocalCluster too."""

import os

import numpy as np
import pytest

import xun

pd = pytest.importorskip("pandas")
xr = pytest.importorskip("xarray")
da = pytest.importorskip("dask.array")

import xun.pandas  # noqa: E402,F401 - registers the accessor
import xun.xarray  # noqa: E402,F401

from conftest import DATA  # noqa: E402

pytestmark = pytest.mark.usefixtures("loaded")


def stepwise(values, source, target):
    s, t = xun.unit(source), xun.unit(target)
    x = np.asarray(values, dtype=np.float64)
    return ((x * s.factor + s.offset) - t.offset) / t.factor


def same(a, b):
    a, b = np.asarray(a), np.asarray(b)
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


# ---- pandas -----------------------------------------------------------------------


def test_a_series_keeps_its_index_and_is_not_changed():
    index = pd.date_range("2026-01-01", periods=4, freq="D")
    series = pd.Series([1, 2, 3, 4], index=index, name="q")
    result = xun.convert(series, "cfs", "m3/s")
    assert isinstance(result, pd.Series)
    assert result.index.equals(index) and result.name == "q"
    assert same(result.to_numpy(), stepwise([1, 2, 3, 4], "cfs", "m3/s"))
    assert series.tolist() == [1, 2, 3, 4]
    # What the array route used to need: to_numpy() gives a view, which a
    # conversion into out= would change; xun.convert(series) never does.
    view = series.astype(np.float64).to_numpy()
    assert same(xun.convert(view, "cfs", "m3/s"), result.to_numpy())


def test_series_of_float32_and_of_nullable_integers():
    floats = pd.Series(np.float32([1.5, 2.5]))
    assert xun.convert(floats, "ft", "m").dtype == np.float32
    nullable = pd.Series([1, None, 3], dtype="Int64")
    result = xun.convert(nullable, "ft", "m", missing=np.nan)
    assert result.dtype == np.float64
    assert same(result.to_numpy(), stepwise([1.0, np.nan, 3.0], "ft", "m"))


def test_a_dataframe_column_and_a_whole_dataframe():
    frame = pd.DataFrame({"a": [1.0, -999.0], "b": [3.0, 4.0]}, index=["x", "y"])
    frame["a"] = xun.convert(frame["a"], "ft", "m", missing=-999.0)
    assert same(frame["a"].to_numpy(), np.array([0.3048, -999.0]))
    assert frame["b"].tolist() == [3.0, 4.0]
    whole = xun.convert(frame, "m", "cm")
    assert list(whole.columns) == ["a", "b"] and list(whole.index) == ["x", "y"]
    assert same(whole.to_numpy(), stepwise(frame.to_numpy(), "m", "cm"))


def test_the_series_accessor():
    series = pd.Series([1.0, 2.0], index=[10, 20])
    series.attrs.update({"units": "ft3 s-1", "xun_item": "Discharge", "source": "gauge"})
    assert series.xun.unit == xun.unit("cfs")
    assert series.xun.item_type == xun.item_type("ItemDischarge")
    result = series.xun.to("l/s")
    assert result.attrs == {"units": "l s-1", "xun_item": "Discharge", "source": "gauge"}
    assert list(result.index) == [10, 20]
    assert same(result.to_numpy(), stepwise([1.0, 2.0], "cfs", "l/s"))
    assert series.attrs["units"] == "ft3 s-1"
    user = series.xun.to_user_unit()
    assert user.attrs["units"] == "m3 s-1"
    assert same(user.to_numpy(), stepwise([1.0, 2.0], "cfs", "m3/s"))


def test_the_accessors_name_what_is_missing():
    series = pd.Series([1.0])
    with pytest.raises(xun.XunError) as error:
        series.xun.to("m")
    assert str(error.value) == (
        'the Series has no attrs["units"]: set it to the unit of its data, for example "m3 s-1"'
    )
    series.attrs["units"] = "m"
    with pytest.raises(xun.XunError) as error:
        series.xun.to_user_unit()
    assert str(error.value) == (
        'the Series has no attrs["xun_item"]: set it to the ident, description or key of its '
        "item type"
    )
    series.attrs["units"] = "meterz"
    with pytest.raises(xun.XunError) as error:
        series.xun.to("ft")
    assert str(error.value).startswith("xunParseUnit: 'meterz' stops making sense")


# ---- xarray -----------------------------------------------------------------------


def discharge():
    time = pd.date_range("2026-01-01", periods=6, freq="H")
    return xr.DataArray(
        np.linspace(0.5, 3.0, 12).reshape(6, 2),
        dims=("time", "station"),
        coords={"time": time, "station": ["A", "B"]},
        attrs={"units": "m3 s-1", "long_name": "discharge", "xun_item": "ItemDischarge"},
        name="q",
    )


def test_the_dataarray_accessor_round_trips_cf_units():
    q = discharge()
    cfs = q.xun.to("cfs")
    assert cfs.attrs == {"units": "ft3 s-1", "long_name": "discharge", "xun_item": "ItemDischarge"}
    assert cfs.name == "q" and cfs.dims == q.dims
    assert cfs.coords.to_dataset().identical(q.coords.to_dataset())
    assert same(cfs.values, stepwise(q.values, "m3/s", "cfs"))
    assert q.attrs["units"] == "m3 s-1"
    back = cfs.xun.to(q.attrs["units"])
    assert back.attrs["units"] == "m3 s-1"
    assert same(back.values, stepwise(cfs.values, "cfs", "m3/s"))
    assert cfs.xun.unit == xun.unit("UnitCubicFootPerSecond")


def test_the_dataarray_accessor_and_the_user_unit():
    q = discharge()
    item = q.xun.item_type
    assert item == xun.item_type("Discharge")
    before = item.user_unit
    try:
        item.user_unit = "l/s"
        in_user_unit = q.xun.to_user_unit()
        assert in_user_unit.attrs["units"] == "l s-1"
        assert same(in_user_unit.values, stepwise(q.values, "m3/s", "l/s"))
    finally:
        item.user_unit = before


def test_xun_convert_on_a_dataarray_and_a_dataset_variable():
    q = discharge()
    result = xun.convert(q, "m3/s", "l/s")
    assert result.attrs["units"] == "l s-1" and result.attrs["long_name"] == "discharge"
    assert same(result.values, stepwise(q.values, "m3/s", "l/s"))
    dataset = xr.Dataset({"q": q, "h": ("time", np.arange(6.0), {"units": "ft"})})
    dataset["h"] = xun.convert(dataset["h"], "ft", "m")
    assert dataset["h"].attrs == {"units": "m"}
    assert same(dataset["h"].values, stepwise(np.arange(6.0), "ft", "m"))
    with pytest.raises(TypeError) as error:
        xun.convert(dataset, "ft", "m")
    assert str(error.value) == "convert a Dataset's variables one by one: dataset['name']"


# ---- Dask -------------------------------------------------------------------------


@pytest.fixture
def count_calls(monkeypatch):
    calls = []
    library = xun.library()
    original = library.xunConvertItemArrayD

    def counting(*args):
        calls.append(args[3])
        return original(*args)

    monkeypatch.setattr(library, "xunConvertItemArrayD", counting)
    return calls


def test_a_dask_array_is_converted_lazily_block_by_block(count_calls):
    values = np.random.default_rng(5).uniform(-50, 120, (400, 300))
    lazy = da.from_array(values, chunks=(100, 150))
    result = xun.convert(lazy, "degF", "degC", missing=np.nan)
    assert isinstance(result, da.Array) and result.chunks == lazy.chunks
    assert count_calls == [1]  # only the check that the library takes the units
    computed = result.compute(scheduler="synchronous")
    assert sorted(count_calls) == [1] + 8 * [15_000]
    assert same(computed, xun.convert(values, "degF", "degC"))


def test_a_dask_backed_dataarray_stays_lazy():
    q = discharge().chunk({"time": 3})
    cfs = q.xun.to("cfs")
    assert isinstance(cfs.data, da.Array)
    assert cfs.attrs["units"] == "ft3 s-1"
    assert same(cfs.compute().values, stepwise(discharge().values, "m3/s", "cfs"))


def test_dask_refuses_in_the_caller_what_the_library_refuses():
    with pytest.raises(xun.XunError) as error:
        xun.convert(da.zeros(4, chunks=2), "m", "s")
    assert str(error.value).startswith("xunConvertItemArrayD: cannot convert unit 1200")


def test_a_local_cluster_of_two_worker_processes(run_python):
    pytest.importorskip("distributed")
    result = run_python(
        """
        import os
        import numpy as np
        import dask.array as da
        from distributed import Client, LocalCluster
        import xun

        values = np.random.default_rng(11).uniform(-40.0, 40.0, 1_000_000)
        expected = xun.convert(values, "degC", "degF")
        with LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                          dashboard_address=None, silence_logs=50) as cluster:
            with Client(cluster) as client:
                lazy = da.from_array(values, chunks=125_000)
                converted = xun.convert(lazy, "degC", "degF")
                # Each block runs where Dask puts it: both workers get some.
                where = da.map_blocks(lambda b: np.full(1, os.getpid()), lazy,
                                      chunks=(1,), dtype=int).compute()
                result = client.compute(converted).result()
                setups = client.run(xun.setup_path)
        print(len(set(where.tolist()) - {os.getpid()}) >= 2)
        print(result.dtype, result.tobytes() == expected.tobytes())
        print(sorted(set(setups.values())))
        """
    )
    assert result.returncode == 0, result.stderr[-3000:]
    assert result.stdout.splitlines() == [
        "True",
        "float64 True",
        f"[{os.path.join(DATA, 'bin', 'XUN.xml')!r}]",
    ]


def test_import_xun_after_pandas_and_xarray_gives_the_accessors(run_python):
    result = run_python(
        """
        import pandas, xarray
        import xun
        print(hasattr(pandas.Series([1.0]), "xun"), hasattr(xarray.DataArray([1.0]), "xun"))
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout.splitlines() == ["True True"]
    result = run_python(
        """
        import xun, sys
        print("pandas" in sys.modules, "xarray" in sys.modules)
        """
    )
    assert result.stdout.splitlines() == ["False False"]
