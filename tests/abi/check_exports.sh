#!/bin/sh
# Checks that libxun.so exports the whole interface of xun.h and nothing else.
# usage: check_exports.sh LIBRARY HEADER
set -eu
lib=$1
header=$2
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
grep -oE '\b(xun[A-Za-z0-9_]*|LoadUnitBaseGroupFile|_fullpath|_splitpath|_makepath)[[:space:]]*\(' "$header" |
  sed 's/[[:space:]]*($//' | sort -u > "$tmp/declared"
nm -D --defined-only "$lib" | awk '{print $3}' | c++filt | sed 's/(.*//' | sort -u > "$tmp/exported"
extra=$(comm -13 "$tmp/declared" "$tmp/exported")
if [ -n "$extra" ]; then
  echo "exported but not part of the interface:"
  echo "$extra"
  exit 1
fi
missing=$(comm -23 "$tmp/declared" "$tmp/exported")
if [ -n "$missing" ]; then
  echo "declared in xun.h but not exported:"
  echo "$missing"
  exit 1
fi
# Every exported function is defined under capi/ (read from the debug
# information; a build without it cannot tell and skips this part).
nm -D --defined-only -l "$lib" | awk 'NF >= 4 {print $3, $4}' > "$tmp/places"
if [ -s "$tmp/places" ]; then
  outside=$(awk '$2 !~ /\/capi\/[A-Za-z]+\.cpp:[0-9]+$/' "$tmp/places")
  if [ -n "$outside" ]; then
    echo "exported functions defined outside capi/:"
    echo "$outside"
    exit 1
  fi
fi
echo "$(wc -l < "$tmp/exported") exported symbols, exactly those declared in xun.h, all in capi/"
