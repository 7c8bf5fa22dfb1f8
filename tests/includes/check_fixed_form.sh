#!/bin/sh
# xun includes --fixed-form: xunDefine.f__ is the file the library writes,
# xunDefine.f77 holds every constant of it, has no line longer than 72
# columns, and a fixed-form program built against it prints the constants
# that the free-form program prints.
# A unit with a long ident, added to the tool tests' installation, needs
# continuation lines; a fixed-form program compiled against them prints its
# key as the free-form one does.
# usage: check_fixed_form.sh XUN DATA_DIR SOURCE_DIR TOOL_FIXTURE_HOME
set -eu
xun=$1
data=$2
src=$3
fixture=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/plain" "$work/fixed"
"$xun" --home "$data" includes --out "$work/plain" >/dev/null
"$xun" --home "$data" includes --fixed-form --out "$work/fixed" >/dev/null
cd "$work"
fail=0
# The designed file does not change with the option (but for the time it
# was written at).
grep -v '^!     Created on ' plain/xunDefine.f__ >plain.f__
grep -v '^!     Created on ' fixed/xunDefine.f__ >fixed.f__
cmp plain.f__ fixed.f__ || { echo "xunDefine.f__ differs with --fixed-form"; fail=1; }
long=$(awk 'length > 72' fixed/xunDefine.f77 | wc -l)
[ "$long" -eq 0 ] || { echo "$long lines of xunDefine.f77 are longer than 72 columns"; fail=1; }
# Every constant of the free-form file, with its value, in the fixed-form one.
sed -n 's/^integer, parameter :: *\([A-Za-z0-9_]*\) *= *\([-0-9]*\).*/PARAMETER (\1 = \2)/p' \
  fixed/xunDefine.f__ | sort >free.txt
sed -n 's/^      \(PARAMETER .*\)/\1/p' fixed/xunDefine.f77 | sort >f77.txt
[ -s free.txt ] || { echo "no constants in xunDefine.f__"; fail=1; }
cmp free.txt f77.txt || { echo "the constants of xunDefine.f77 differ"; fail=1; }
cd fixed
gfortran -std=f2008 -Wall -Werror -I. "$src/use_defines.f90" -o use_free
gfortran -ffixed-form -std=f2008 -Wall -Werror -I. "$src/use_defines.f" -o use_fixed
free=$(./use_free)
fixed=$(./use_fixed)
if [ "$free" = "$fixed" ]; then echo "fixed form: $fixed"; else
  echo "fixed form printed '$fixed', free form '$free'"; fail=1; fi

# Continuation lines.
cd "$work"
long=UnitWithAnIdentifierLongEnoughToContinueTheParameterStatement
cp -r "$fixture" home
sed "s|^\( *\)<R Ident=\"UnitPercent\".*$|&\\n\\1<R Ident=\"$long\" KvId=\"1602\" Desc=\"long\" Abbr=\"lg\" Expr=\"UnitFraction/1000\"/>|" \
    "$fixture/bin/XUN.xml" >home/bin/XUN.xml
grep -v '^END$' "$fixture/bin/xununit.lan" >home/bin/xununit.lan
printf '1602 "long"\n1602 "lg"\nEND\n' >>home/bin/xununit.lan
mkdir long
"$xun" --home home includes --fixed-form --out long >/dev/null
cd long
long_lines=$(awk 'length > 72' xunDefine.f77 | wc -l)
[ "$long_lines" -eq 0 ] || { echo "$long_lines lines longer than 72 columns"; fail=1; }
grep -q "^     &" xunDefine.f77 || { echo "no continuation line in xunDefine.f77"; fail=1; }
printf 'program p\n  implicit none\n  include "xunDefine.f__"\n  print "(I0)", %s\nend program p\n' \
    "$long" >long.f90
printf '      PROGRAM P\n      IMPLICIT NONE\n      INCLUDE "xunDefine.f77"\n      PRINT "(I0)",\n     &  %s\n      END\n' \
    "$long" >long.f
gfortran -std=f2008 -Wall -Werror -I. long.f90 -o long_free
gfortran -ffixed-form -std=f2008 -Wall -Werror -I. long.f -o long_fixed
free=$(./long_free)
fixed=$(./long_fixed)
if [ "$free" = 1602 ] && [ "$fixed" = "$free" ]; then echo "continued: $fixed"; else
  echo "the long constant: fixed form '$fixed', free form '$free'"; fail=1; fi
exit $fail
