#!/bin/sh
# Writes the include files of the default installation and compiles a C, a
# Fortran and (when fpc is installed) a Pascal program against them; each must
# print the same constants.
# usage: check_includes.sh WRITER DATA_DIR SOURCE_DIR
set -eu
writer=$1
data=$2
src=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
expected=$(KORVANE_HOME=$data "$writer")
for f in xunDefine.c__ xunDefine.f__ xunDefine.p__ xunDefine.cs xunAllowedUnits.HTML; do
  [ -s "$f" ] || { echo "missing $f"; exit 1; }
done
fail=0
check() {
  got=$(echo "$2" | tr -s ' ' | sed 's/^ //')
  if [ "$got" = "$expected" ]; then echo "$1: $got"; else echo "$1: got '$got', expected '$expected'"; fail=1; fi
}
cc -std=c99 -pedantic -Wall -Wextra -Werror -I. "$src/use_defines.c" -o use_c
check C "$(./use_c)"
if command -v gfortran >/dev/null 2>&1; then
  gfortran -std=f2008 -Wall -Werror -I. "$src/use_defines.f90" -o use_f
  check Fortran "$(./use_f)"
else
  echo "gfortran not installed"; fail=1
fi
if command -v fpc >/dev/null 2>&1; then
  cp "$src/use_defines.pas" .
  fpc -v0 -Fi. use_defines.pas >/dev/null
  check Pascal "$(./use_defines)"
else
  echo "fpc not installed: Pascal not checked"
fi
exit $fail
