#!/usr/bin/env bash
# Runs the fuzz targets: fuzz/run.sh [SECONDS] [TARGET...]
#
# Builds the fuzz configuration (fuzz/CMakeLists.txt, clang with libFuzzer,
# AddressSanitizer and UndefinedBehaviorSanitizer) in build-fuzz/ when needed,
# then runs each target for SECONDS (default 60) on a copy of its starting
# corpus fuzz/corpus/<target>/, one after the other. Targets: expr, xpath,
# langfile, keyword, setup, parse, cache (default: all of them).
#
# Prints the executions and the coverage of each target from libFuzzer's
# final statistics and exits non-zero when any target found a crash, a leak,
# a time-out or undefined behaviour. The input that caused it is kept in
# build-fuzz/artifacts/<target>/, with the log of the run.
#
# Environment: XUN_FUZZ_BUILD (build folder, default build-fuzz),
# XUN_FUZZ_CC and XUN_FUZZ_CXX (default clang-14 and clang++-14),
# XUN_FUZZ_KEEP (a folder: the grown corpus of each target is copied there).
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
if [ $# -gt 0 ]; then shift; fi
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(expr xpath langfile keyword setup parse cache)
fi
case $seconds in
  '' | *[!0-9]*) echo "usage: fuzz/run.sh [SECONDS] [TARGET...]" >&2; exit 2 ;;
esac
for target in "${targets[@]}"; do
  if [ ! -d "$root/fuzz/corpus/$target" ]; then
    echo "unknown fuzz target: $target" >&2
    exit 2
  fi
done

build=${XUN_FUZZ_BUILD:-$root/build-fuzz}
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$root/fuzz" -B "$build" \
    -DCMAKE_C_COMPILER="${XUN_FUZZ_CC:-clang-14}" \
    -DCMAKE_CXX_COMPILER="${XUN_FUZZ_CXX:-clang++-14}" >/dev/null
fi
cmake --build "$build" -j2 --target $(printf 'fuzz_%s ' "${targets[@]}") >/dev/null

work=$(mktemp -d "${TMPDIR:-/tmp}/xun-fuzz-run-XXXXXX")
trap 'rm -rf "$work"' EXIT

# The last value of a "stat::" line of libFuzzer's final statistics.
stat() { sed -n "s/^stat::$1: *//p" "$2" | tail -n 1; }

failed=0
passed=0
printf '%-9s %12s %8s %8s %8s  %s\n' target executions edges features corpus result
for target in "${targets[@]}"; do
  corpus="$work/$target"
  mkdir -p "$corpus"
  cp "$root/fuzz/corpus/$target/." "$corpus/" -R
  log="$work/$target.log"
  status=0
  # The setup target takes inputs of up to 2 MB, large enough to reach the
  # bounds of an XML document (1 MiB of expanded text, 256 levels, 256
  # attributes), and the words of the setup format.
  options=()
  if [ "$target" = setup ]; then
    options=(-max_len=2097152 -dict="$root/fuzz/setup.dict")
  fi
  # -close_fd_mask=3: the library's own messages (the loader reports every
  # bad row) would flood the output; libFuzzer's reports still get through.
  "$build/fuzz_$target" "$corpus" "${options[@]}" \
    -max_total_time="$seconds" -print_final_stats=1 -close_fd_mask=3 \
    -timeout=25 -rss_limit_mb=2560 -artifact_prefix="$work/$target-" \
    </dev/null >"$log" 2>&1 || status=$?

  executions=$(stat number_of_executed_units "$log")
  # The coverage of the last status line (edges and features).
  line=$(grep -E '^#[0-9]+.*cov: ' "$log" | tail -n 1 || true)
  edges=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$line")
  features=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$line")
  inputs=$(sed -n 's/.* corp: \([0-9]*\).*/\1/p' <<<"$line")
  result=ok
  if [ "$status" -eq 0 ]; then
    passed=$((passed + 1))
  else
    result="FAILED (exit $status)"
    failed=$((failed + 1))
    kept="$build/artifacts/$target"
    mkdir -p "$kept"
    cp "$log" "$kept/"
    find "$work" -maxdepth 1 -name "$target-*" -exec cp {} "$kept/" \;
  fi
  printf '%-9s %12s %8s %8s %8s  %s\n' "$target" "${executions:-?}" "${edges:-?}" \
    "${features:-?}" "${inputs:-?}" "$result"
  if [ "$status" -ne 0 ]; then
    echo "---- $target: end of the log (all of it and the input in $kept)"
    grep -v -E '^#[0-9]+' "$log" | tail -n 60
    echo "----"
  fi
  if [ -n "${XUN_FUZZ_KEEP:-}" ]; then
    mkdir -p "$XUN_FUZZ_KEEP/$target"
    cp "$corpus/." "$XUN_FUZZ_KEEP/$target/" -R
  fi
done

# One line per run in the form test runners close with: each target counts
# as passed when it ran its time without stopping.
echo "fuzz: $passed passed, $failed failed"
if [ "$failed" -ne 0 ]; then
  exit 1
fi
