"""Times xun.convert on 10^7 float64 values against the library's own array
call and against Pint, on the same data in the same run, and prints the
ratios.

    python3 bench/python_convert.py --library build-rel/libxun.so.1 [--count 10000000] [--repeat 7]

Rows: the C call (xunConvertItemArrayD through ctypes, in place on a copy
made outside the timing), xun.convert into a new array, xun.convert with
out= in place, NumPy's copy of the array (the cost of any new array: memory
and the first touch of its pages), NumPy's x * factor, and Pint
(Quantity(x, unit).to(unit).magnitude, a new array). Each figure is the median of --repeat runs; ratios are against the C
call and against Pint. Pint is Debian's python3-pint; without it the Pint
rows are left out.
"""

import argparse
import ctypes
import os
import statistics
import sys
import time

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.dirname(HERE)

# (xun from, xun to, Pint from, Pint to): a factor, and a factor with offsets.
CASES = [
    ("cfs", "m3/s", "ft**3/s", "m**3/s"),
    ("degF", "degC", "degF", "degC"),
]


def median_seconds(action, repeat):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--library", help="libxun.so.1 to time (default: XUN_LIBRARY or build/)")
    parser.add_argument("--count", type=int, default=10_000_000)
    parser.add_argument("--repeat", type=int, default=7)
    args = parser.parse_args()
    library = (
        args.library or os.environ.get("XUN_LIBRARY") or os.path.join(REPO, "build", "libxun.so.1")
    )
    os.environ["XUN_LIBRARY"] = os.path.abspath(library)
    os.environ.setdefault("KORVANE_HOME", os.path.join(REPO, "data"))
    sys.path.insert(0, os.path.join(REPO, "python"))
    import xun

    xun.load()
    try:
        import pint

        registry = pint.UnitRegistry()
    except ImportError:
        pint = None
        print("Pint is not installed (Debian python3-pint): its rows are left out")

    values = np.random.default_rng(1).uniform(-100.0, 100.0, args.count)
    print(
        f"{args.count} float64 values, median of {args.repeat} runs; library {library}"
        + (f"; Pint {pint.__version__}" if pint else "")
    )
    print(f"{'conversion':<14} {'call':<24} {'ms':>9} {'/ C call':>9} {'Pint /':>8}")
    for source, target, pint_source, pint_target in CASES:
        from_unit, to_unit = xun.unit(source), xun.unit(target)
        lib = xun.library()
        scratch = values.copy()
        pointer = scratch.ctypes.data_as(ctypes.POINTER(ctypes.c_double))

        def c_call():
            lib.xunConvertItemArrayD(
                from_unit.tag, to_unit.tag, pointer, scratch.size, float("inf")
            )

        def new_array():
            xun.convert(values, source, target)

        buffer = values.copy()

        def in_place():
            xun.convert(buffer, source, target, out=buffer)

        factor = from_unit.factor / to_unit.factor

        def numpy_copy():
            values.copy()

        def numpy_multiply():
            values * factor

        rows = [
            ("C array call", c_call),
            ("convert, new array", new_array),
            ("convert, out= in place", in_place),
            # What any new array costs here (allocation and first touch of
            # every page), and NumPy's own ufunc with the factor alone.
            ("NumPy copy", numpy_copy),
            ("NumPy x * factor", numpy_multiply),
        ]
        if pint:

            def with_pint():
                registry.Quantity(values, pint_source).to(pint_target).magnitude

            rows.append(("Pint, new array", with_pint))
        # The results agree before anything is timed.
        expected = xun.convert(values, source, target)
        if pint:
            theirs = registry.Quantity(values, pint_source).to(pint_target).magnitude
            assert np.allclose(theirs, expected, rtol=1e-12, atol=1e-9), "Pint disagrees"
        timed = {name: median_seconds(action, args.repeat) for name, action in rows}
        c_time = timed["C array call"]
        pint_time = timed.get("Pint, new array")
        for name, seconds in timed.items():
            versus_pint = f"{pint_time / seconds:7.1f}x" if pint_time else ""
            print(
                f"{source + ' -> ' + target:<14} {name:<24} {seconds * 1e3:9.2f} "
                f"{seconds / c_time:8.2f}x {versus_pint:>8}"
            )


if __name__ == "__main__":
    main()
