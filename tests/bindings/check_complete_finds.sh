#!/bin/sh
# check_complete.py finds what is missing: a function added to xun.h (as
# the header of a later version declares more) is reported missing from every
# binding, and a declaration removed from one binding is reported for it.
# usage: check_complete_finds.sh PYTHON SOURCE_DIR
set -eu
python=$1
src=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
check="$python $src/tests/bindings/check_complete.py"
fail=0

# expect NAME EXPECTED_OUTPUT ARGUMENTS...: the check must fail with this output.
expect() {
    name=$1
    expected=$2
    shift 2
    if got=$($check "$@"); then
        echo "FAILED: $name: the check passed"; fail=1; return
    fi
    if [ "$got" != "$expected" ]; then
        printf 'FAILED: %s printed\n%s\nexpected\n%s\n' "$name" "$got" "$expected"; fail=1; return
    fi
    echo "$name: found"
}

# A new function with C linkage, declared after xunBaseGroupCheck.
sed 's/^\(XUN_API int xunBaseGroupCheck(.*\)$/XUN_API int xunGetUnitPlural(int tag, const char** text);\n\1/' \
    "$src/include/xun.h" >"$work/xun.h"
grep -q xunGetUnitPlural "$work/xun.h" || { echo "FAILED: could not add a function to the header"; exit 1; }
expect "a function added to xun.h" "$(printf '%s\n' \
    'Fortran xun.f90: xunGetUnitPlural is missing' \
    'Pascal xun.pas: xunGetUnitPlural is missing' \
    'C# Xun.cs: xunGetUnitPlural is missing' \
    'Python prototypes: xunGetUnitPlural is missing')" \
    "$work/xun.h" "$src/bindings/fortran/xun.f90" "$src/bindings/pascal/xun.pas" \
    "$src/bindings/csharp/Xun.cs" "$src/python/xun"

# A declaration removed from the Pascal unit, one of C++ linkage from the C# class.
grep -v "^function xunGetUnitAlias(" "$src/bindings/pascal/xun.pas" >"$work/xun.pas"
sed 's/EntryPoint = "_Z9_makepathPcS_S_S_S_"/EntryPoint = "_makepath"/' \
    "$src/bindings/csharp/Xun.cs" >"$work/Xun.cs"
expect "declarations removed from the bindings" "$(printf '%s\n' \
    'Pascal xun.pas: xunGetUnitAlias is missing' \
    'C# Xun.cs: _makepath has C++ linkage but is bound as _makepath')" \
    "$src/include/xun.h" "$src/bindings/fortran/xun.f90" "$work/xun.pas" "$work/Xun.cs" \
    "$src/python/xun"
exit $fail
