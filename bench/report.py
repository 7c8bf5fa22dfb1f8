#!/usr/bin/env python3
"""Turns the JSON output of xun-bench into the table of README.md.

    build-rel/bench/xun-bench --benchmark_repetitions=5 \\
        --benchmark_out=bench.json --benchmark_out_format=json
    python3 bench/report.py bench.json [more.json ...]

Every figure is the median over the repetitions (of all the files given, for
runs repeated on a busy machine), and every ratio sets two figures of the
same runs against each other. The tables list each target of the
performance requirements with the measured ratio and whether it is met
(check mark or cross); figures without a target are for information.
"""

import json
import statistics
import sys


def load(paths):
    runs = {}
    aggregates = {}
    context = {}
    benchmarks = []
    for path in paths:
        with open(path, encoding="utf-8") as f:
            data = json.load(f)
        context = context or data.get("context", {})
        benchmarks.extend(data["benchmarks"])
    for b in benchmarks:
        name = b.get("run_name", b["name"])
        # Strip the suffixes Google Benchmark appends to a run's name.
        for suffix in ("/real_time", "/manual_time"):
            name = name.replace(suffix, "")
        name = "/".join(p for p in name.split("/")
                        if not p.startswith(("iterations:", "min_time:", "repeats:")))
        if b.get("error_occurred"):
            continue
        if b.get("run_type") == "aggregate":
            if b.get("aggregate_name") == "median":
                aggregates[name] = b
        else:
            runs.setdefault(name, []).append(b)
    return context, runs, aggregates


class Figures:
    def __init__(self, runs, aggregates):
        self.runs = runs
        self.aggregates = aggregates

    def _values(self, name, field):
        if name in self.runs:
            return [b[field] for b in self.runs[name] if field in b]
        if name in self.aggregates and field in self.aggregates[name]:
            return [self.aggregates[name][field]]
        return []

    def median(self, name, field):
        values = self._values(name, field)
        return statistics.median(values) if values else None

    def rate(self, name):
        """Median items per second, in G/s."""
        value = self.median(name, "items_per_second")
        return value / 1e9 if value is not None else None

    def time(self, name, unit):
        """Median real time of one iteration in the given unit (ns, us, ms)."""
        values = []
        for b in self.runs.get(name, []) or ([self.aggregates[name]] if name in self.aggregates else []):
            scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
            seconds = b["real_time"] * scale[b.get("time_unit", "ns")]
            values.append(seconds / scale[unit])
        return statistics.median(values) if values else None


def fmt(value, digits=2, unit=""):
    if value is None:
        return "–"
    return f"{value:.{digits}f}{unit}"


def mark(ratio, target, at_least):
    """The ratio, followed by a check mark or a cross against its target."""
    if ratio is None:
        return "–"
    met = ratio >= target if at_least else ratio <= target
    return f"{ratio:.2f} {'✓' if met else '✗'}"


def ratio(a, b):
    return a / b if a and b else None


def array_tables(f):
    lines = []
    lines.append("Array conversion, scale+offset (°F ↔ °Réaumur, both ways dividing), G elements/s. "
                 "Each ratio comes from one paired benchmark that times both sides in alternating "
                 "blocks; ✓/✗ against the target.")
    lines.append("")
    lines.append("| array | libxun | UDUNITS-2 | ratio (≥ 2.0) | libxun | in-place stream "
                 "| ratio, paired / separate (≥ 0.90 double, ≥ 0.85 float at 64 M) "
                 "| 50 % deleted / 0 % (≥ 0.9) |")
    lines.append("|---|---|---|---|---|---|---|---|")
    for typ in ("double", "float"):
        for size in ("1000", "100000", "64M"):
            base = f"array/{typ}/{size}/paired"
            vs_u = f"{base}/xun-vs-udunits"
            vs_s = f"{base}/xun-vs-stream"
            dele = f"{base}/del50-vs-del0"
            r_u = f.median(vs_u, "ratio")
            r_s = f.median(vs_s, "ratio")
            r_d = f.median(dele, "ratio")
            # The stream also as separate benchmarks of the same run; the
            # target is judged on the lower of the two ratios.
            separate = ratio(f.rate(f"array/{typ}/{size}/offset/del0/xun"),
                             f.rate(f"array/{typ}/{size}/stream"))
            lower = min(x for x in (r_s, separate) if x is not None) if (r_s or separate) else None
            stream_target = 0.90 if typ == "double" else 0.85
            stream_cell = (f"{fmt(r_s)} / {fmt(separate)}"
                           + (f" {mark(lower, stream_target, True).split()[-1]}"
                              if size == "64M" and lower else ""))
            lines.append(
                f"| {typ} × {size} | {fmt(f.median(vs_u, 'first_Gps'))} | "
                f"{fmt(f.median(vs_u, 'second_Gps'))} | "
                f"{mark(r_u, 2.0, True) if size != '64M' else fmt(r_u)} | "
                f"{fmt(f.median(vs_s, 'first_Gps'))} | {fmt(f.median(vs_s, 'second_Gps'))} | "
                f"{stream_cell} | {mark(r_d, 0.9, True)} |")
    lines.append("")
    lines.append("All pairs, separate benchmarks (no targets), G elements/s: libxun / UDUNITS-2, "
                 "and libxun with 10 % and 50 % of the elements deleted")
    lines.append("")
    lines.append("| array | °F ↔ °Ré | 10 % / 50 % deleted | ft ↔ in | 10 % / 50 % deleted | °C ↔ °F |")
    lines.append("|---|---|---|---|---|---|")
    for typ in ("double", "float"):
        for size in ("1000", "100000", "64M"):
            base = f"array/{typ}/{size}"
            cells = []
            for kind in ("offset", "scale", "celsius"):
                ours = f.rate(f"{base}/{kind}/del0/xun")
                theirs = f.rate(f"{base}/{kind}/del0/udunits")
                cells.append(f"{fmt(ours)} / {fmt(theirs)}")
                if kind != "celsius":
                    cells.append(f"{fmt(f.rate(f'{base}/{kind}/del10/xun'))} / "
                                 f"{fmt(f.rate(f'{base}/{kind}/del50/xun'))}")
            lines.append(f"| {typ} × {size} | " + " | ".join(cells) + " |")
    return lines


PATHS = ("baseline", "avx2", "avx512", "baseline-product", "avx2-product", "avx512-product")


def paths_table(f):
    """Each path of the array loops forced in turn, and the automatic choice."""
    lines = []
    columns = [(typ, size, kind) for typ in ("double", "float") for size in ("1000", "100000")
               for kind in ("scale", "offset")]
    chosen = f.median("paths/chosen", "path")
    chosen_name = PATHS[int(chosen) - 1] if chosen else None
    lines.append("Array loops per path, forced in turn (G elements/s; scale is ft ↔ in, offset °F ↔ °Ré); "
                 f"the automatic choice of the run: **{chosen_name or '–'}**"
                 + (" (named by XUN_CONVERSION_PATH)" if f.median("paths/chosen", "forced") else ""))
    lines.append("")
    lines.append("| path | " + " | ".join(f"{t} {s} {k}" for t, s, k in columns)
                 + " | timed by the choice: double / float |")
    lines.append("|---|" + "---|" * (len(columns) + 1))
    best = {}
    for path in PATHS:
        cells = []
        for t, s, k in columns:
            rate = f.rate(f"paths/{t}/{s}/{k}/{path}")
            if rate is not None:
                best[(t, s, k)] = max(best.get((t, s, k), 0.0), rate)
            cells.append(fmt(rate))
        timed = (f"{fmt(f.median('paths/chosen', f'{path}_double_Gps'))} / "
                 f"{fmt(f.median('paths/chosen', f'{path}_float_Gps'))}")
        label = f"`{path}`" + (" (chosen)" if path == chosen_name else "")
        lines.append(f"| {label} | " + " | ".join(cells) + f" | {timed} |")
    if chosen_name:
        cells = [mark(ratio(f.rate(f"paths/{t}/{s}/{k}/{chosen_name}"), best.get((t, s, k))), 0.95, True)
                 for t, s, k in columns]
        lines.append("| chosen / fastest (≥ 0.95) | " + " | ".join(cells) + " | |")
    return lines


def other_table(f):
    lines = []
    lines.append("Single conversions, loading and walks")
    lines.append("")
    lines.append("| measure | libxun | reference | ratio | target |")
    lines.append("|---|---|---|---|---|")
    paired = "single/paired/xun-vs-udunits-made"
    ours = f.median(paired, "first_ns")
    made = f.median(paired, "second_ns")
    lines.append(f"| single conversion between random convertible units (ns) vs UDUNITS-2 making a "
                 f"converter each time (paired) | {fmt(ours, 1)} | {fmt(made, 1)} | "
                 f"{mark(f.median(paired, 'ratio'), 0.5, False)} | ≤ 0.5 |")
    alone = f.time("single/convertible/xun", "ns")
    lines.append(f"| the same alone, absolute (ns) | {fmt(alone, 1)} | 6 | {mark(ratio(alone, 6.0), 1.0, False)} "
                 f"| ≤ 6 ns |")
    alone_cpu = f.median("single/convertible/xun", "cpu_time")
    lines.append(f"| the same, CPU time (ns; the real time counts other programs on a shared machine) "
                 f"| {fmt(alone_cpu, 1)} | 6 | {mark(ratio(alone_cpu, 6.0), 1.0, False)} | ≤ 6 ns |")
    prepared = f.time("single/convertible/udunits-prepared", "ns")
    lines.append(f"| UDUNITS-2 with a converter prepared for every pair (ns) | {fmt(alone, 1)} "
                 f"| {fmt(prepared, 1)} | {fmt(ratio(alone, prepared))} | |")
    anyPairs = f.time("single/any/xun", "ns")
    lines.append(f"| libxun between random units of any dimension, mostly refused (ns) | {fmt(anyPairs, 1)} "
                 f"| | | |")
    paired = "load/paired/xun-vs-udunits"
    lines.append(f"| fresh-process load of the default installation, from the load cache (ms) vs UDUNITS-2 `ut_read_xml` of its "
                 f"database (paired) | {fmt(f.median(paired, 'first_ms'))} | "
                 f"{fmt(f.median(paired, 'second_ms'))} | {mark(f.median(paired, 'ratio'), 1.0, False)} "
                 f"| ≤ 1.0 |")
    parsed = "load/paired/parse-vs-udunits"
    lines.append(f"| the same with the load cache off: the XML parsed (ms; paired) "
                 f"| {fmt(f.median(parsed, 'first_ms'))} | {fmt(f.median(parsed, 'second_ms'))} "
                 f"| {fmt(f.median(parsed, 'ratio'))} | |")
    xerces = f.time("load/xerces-init/xun", "ms")
    theirs = f.time("load/default/udunits", "ms")
    lines.append(f"| the XML parser's initialisation alone (ms) | {fmt(xerces)} | {fmt(theirs)} "
                 f"| {fmt(ratio(xerces, theirs))} | |")
    for kind, label, target in (("all", "xunGetNextUnit", 12.0), ("eqv", "xunGetNextEqvUnit", None)):
        small = f.time(f"walk/{kind}/1000/xun", "us")
        large = f.time(f"walk/{kind}/10000/xun", "us")
        shown = mark(ratio(large, small), target, False) if target else fmt(ratio(large, small))
        lines.append(f"| walk with {label}: 10,000 units vs 1,000 (µs) | {fmt(large, 1)} | {fmt(small, 1)} "
                     f"| {shown} | {'≤ 12' if target else ''} |")
    return lines


def parse_table(f):
    lines = []
    lines.append("Unit strings: xunParseUnit against UDUNITS-2's ut_parse on the same texts (ns per text)")
    lines.append("")
    lines.append("| measure | libxun | UDUNITS-2 | ratio | target |")
    lines.append("|---|---|---|---|---|")
    paired = "parse/paired/new/xun-vs-udunits"
    lines.append(f"| 1,000 composed units, each text new to the library (paired) | "
                 f"{fmt(f.median(paired, 'first_ns'), 0)} | {fmt(f.median(paired, 'second_ns'), 0)} | "
                 f"{mark(f.median(paired, 'ratio'), 1.0, False)} | ≤ 1.0 |")
    ours = f.time("parse/new/xun", "ns")
    theirs = f.time("parse/new/udunits", "ns")
    if ours is not None:
        ours /= 1000
    if theirs is not None:
        theirs /= 1000
    lines.append(f"| the same, separately | {fmt(ours, 0)} | {fmt(theirs, 0)} | {fmt(ratio(ours, theirs))} | |")
    lines.append(f"| the first reading of each of the 1,000 units (registers a unit for it) | "
                 f"{fmt(f.median('parse/new/xun', 'first_pass_ns'), 0)} | | | |")
    paired = "parse/paired/repeated/xun-vs-udunits"
    lines.append(f"| one text again and again (paired) | {fmt(f.median(paired, 'first_ns'), 1)} | "
                 f"{fmt(f.median(paired, 'second_ns'), 0)} | {fmt(f.median(paired, 'ratio'), 3)} | |")
    alone = f.time("parse/repeated/xun", "ns")
    lines.append(f"| the same alone, absolute | {fmt(alone, 1)} | {fmt(f.time('parse/repeated/udunits', 'ns'), 0)} "
                 f"| {mark(ratio(alone, 100.0), 1.0, False)} | ≤ 100 ns |")
    return lines


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: report.py BENCH.json [MORE.json ...]")
    context, runs, aggregates = load(sys.argv[1:])
    f = Figures(runs, aggregates)
    print("\n".join(array_tables(f)))
    print()
    print("\n".join(paths_table(f)))
    print()
    print("\n".join(other_table(f)))
    print()
    print("\n".join(parse_table(f)))
    repetitions = max((len(v) for v in runs.values()), default=1)
    print()
    print(f"{context.get('num_cpus', '?')} CPUs at {context.get('mhz_per_cpu', '?')} MHz, "
          f"{repetitions} repetitions, medians; load average at the start of the first run "
          f"{', '.join(f'{x:.2f}' for x in context.get('load_avg', []))}.")


if __name__ == "__main__":
    main()
