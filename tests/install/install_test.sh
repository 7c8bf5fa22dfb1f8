#!/bin/sh
# Installs the build into a temporary prefix, then builds and runs client
# programs against the installed files only, each in a directory outside the
# source tree: C through pkg-config, C++ through find_package(xun), Fortran and
# Pascal through the installed bindings and the generated include files,
# Python through the installed package. The tour_* steps build the same
# program (tests/install/tour) in each language from the installed files;
# each must print what the C one prints.
#
# usage: install_test.sh STEP
#   setup    cmake --install into a new temporary prefix (its path goes to $XUN_STATE)
#   layout   the installed files, links and package files
#   tool     the installed xun tool
#   c, cxx, fortran, pascal, python
#   tour_c, tour_cxx, tour_fortran, tour_fortran_fixed, tour_pascal, tour_csharp, tour_python
#   cleanup  removes the temporary prefix
#
# Environment (set by tests/install/CMakeLists.txt): XUN_STATE, XUN_BUILD_DIR,
# XUN_SOURCE_DIR, XUN_CMAKE, XUN_CC, XUN_CXX, XUN_VERSION, XUN_LIBDIR,
# XUN_INCLUDEDIR, XUN_BINDIR, XUN_DATADIR, XUN_PKGCONFIGDIR, XUN_CMAKEDIR,
# XUN_FORTRANMODDIR, XUN_TOOL (1 when the build has the xun tool),
# XUN_FORTRAN_MODULE (1 when it has the compiled Fortran module), XUN_PYTHON,
# XUN_PYTHONDIR.
set -eu

step=$1
src=$XUN_SOURCE_DIR
# Nothing may come from the build tree through the loader's search path.
unset LD_LIBRARY_PATH XUN_LIBRARY KORVANE_HOME PKG_CONFIG_PATH CMAKE_PREFIX_PATH || true

fail() {
    echo "FAILED: $*"
    exit 1
}

# Runs a command quietly; shows its output when it fails.
quiet() {
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log"
        rm -f "$log"
        fail "$*"
    fi
    rm -f "$log"
}

# expect_output NAME EXPECTED COMMAND...: runs the command, compares its output.
expect_output() {
    name=$1
    expected=$2
    shift 2
    got=$("$@") || fail "$name exited with status $?"
    if [ "$got" != "$expected" ]; then
        printf 'FAILED: %s printed\n%s\nexpected\n%s\n' "$name" "$got" "$expected"
        exit 1
    fi
    echo "$name: output as expected"
}

# The installation goes to the prefix /opt/xun under DESTDIR=<temporary
# directory>/stage: a rule with an absolute destination then lands in the
# temporary directory too (where the layout step finds it) instead of in the
# system, and the clients use the tree away from the prefix it was installed for.
install_prefix=/opt/xun
if [ "$step" = setup ]; then
    root=$(mktemp -d "${TMPDIR:-/tmp}/xun-install.XXXXXX")
    echo "$root" >"$XUN_STATE"
    DESTDIR=$root/stage quiet "$XUN_CMAKE" --install "$XUN_BUILD_DIR" --prefix "$install_prefix"
    echo "installed into $root/stage/opt/xun"
    exit 0
fi

[ -f "$XUN_STATE" ] || fail "no installation: the install.setup test did not run"
root=$(cat "$XUN_STATE")
prefix=$root/stage$install_prefix
libdir=$prefix/$XUN_LIBDIR
home=$prefix/$XUN_DATADIR
moddir=$prefix/$XUN_FORTRANMODDIR
tour=$src/tests/install/tour

# tour_reference DIR: builds the C tour in DIR and writes what it prints to
# DIR/expected.txt (it checks itself against the library's other answers).
tour_reference() {
    PKG_CONFIG_PATH="$prefix/$XUN_PKGCONFIGDIR"
    export PKG_CONFIG_PATH
    # shellcheck disable=SC2046 # the flags are words
    quiet "$XUN_CC" -std=c99 -pedantic -Wall -Wextra -Werror "$tour/tour.c" -o "$1/tour_c" \
        $(pkg-config --cflags --libs xun) -Wl,-rpath,"$(pkg-config --variable=libdir xun)" -lm
    KORVANE_HOME=$home "$1/tour_c" >"$1/expected.txt" || fail "the C tour"
}

# tour_compare NAME DIR COMMAND...: runs the tour, compares with DIR/expected.txt.
tour_compare() {
    name=$1
    dir=$2
    shift 2
    expect_output "$name" "$(cat "$dir/expected.txt")" env KORVANE_HOME="$home" "$@"
}

case $step in
cleanup)
    case $root in
    */xun-install.*) rm -rf "$root" ;;
    esac
    rm -f "$XUN_STATE"
    ;;

layout)
    # Every file went below the prefix (the manifest names them without DESTDIR).
    manifest=$XUN_BUILD_DIR/install_manifest.txt
    [ -s "$manifest" ] || fail "no install_manifest.txt"
    outside=$(grep -v "^$install_prefix/" "$manifest" || true)
    [ -z "$outside" ] || fail "installed outside the prefix: $outside"
    # The library: the versioned file, the soname link and the development link.
    [ -f "$libdir/libxun.so.$XUN_VERSION" ] || fail "no $libdir/libxun.so.$XUN_VERSION"
    [ ! -L "$libdir/libxun.so.$XUN_VERSION" ] || fail "libxun.so.$XUN_VERSION is a link"
    [ "$(readlink "$libdir/libxun.so.1")" = "libxun.so.$XUN_VERSION" ] || fail "libxun.so.1 link"
    [ "$(readlink "$libdir/libxun.so")" = "libxun.so.1" ] || fail "libxun.so link"
    soname=$(objdump -p "$libdir/libxun.so.1" | awk '$1 == "SONAME" {print $2}')
    [ "$soname" = "libxun.so.1" ] || fail "soname '$soname'"
    if objdump -p "$libdir/libxun.so.1" | grep -E 'R(UN)?PATH'; then
        fail "the installed library keeps a search path of the build"
    fi
    # Headers and data, unchanged; the data generator stays in the sources.
    cmp "$src/include/xun.h" "$prefix/$XUN_INCLUDEDIR/xun.h" || fail "xun.h"
    cmp "$src/include/SmartPtr" "$prefix/$XUN_INCLUDEDIR/SmartPtr" || fail "SmartPtr"
    diff -r "$src/data/bin" "$home/bin" || fail "data/bin differs from $home/bin"
    diff -r "$src/data/lang" "$home/lang" || fail "data/lang differs from $home/lang"
    [ "$(ls "$home")" = "$(printf 'bin\ncsharp\nfortran\nlang\npascal')" ] ||
        fail "unexpected files in $home: $(ls "$home")"
    # The language bindings as sources, and the Fortran module compiled.
    cmp "$src/bindings/fortran/xun.f90" "$home/fortran/xun.f90" || fail "fortran/xun.f90"
    cmp "$src/bindings/pascal/xun.pas" "$home/pascal/xun.pas" || fail "pascal/xun.pas"
    cmp "$src/bindings/csharp/Xun.cs" "$home/csharp/Xun.cs" || fail "csharp/Xun.cs"
    if [ "$XUN_FORTRAN_MODULE" = 1 ]; then
        [ "$(ls "$moddir")" = "$(printf 'libxunfortran.a\nxun.mod')" ] ||
            fail "unexpected files in $moddir: $(ls "$moddir" 2>&1)"
    else
        [ ! -e "$moddir" ] || fail "$moddir installed without a Fortran compiler"
    fi
    # Package files, none of which names the source or build tree.
    for f in "$prefix/$XUN_PKGCONFIGDIR/xun.pc" "$prefix/$XUN_CMAKEDIR/xunConfig.cmake" \
        "$prefix/$XUN_CMAKEDIR/xunConfigVersion.cmake" "$prefix/$XUN_CMAKEDIR/xunTargets.cmake"; do
        [ -f "$f" ] || fail "missing $f"
    done
    if grep -rlF -e "$XUN_SOURCE_DIR/" -e "$XUN_BUILD_DIR/" "$prefix/$XUN_PKGCONFIGDIR" \
        "$prefix/$XUN_CMAKEDIR"; then
        fail "installed package files name the source or build tree"
    fi
    # The tool is installed exactly when the build has it.
    if [ "$XUN_TOOL" = 1 ]; then
        [ -x "$prefix/$XUN_BINDIR/xun" ] || fail "no $prefix/$XUN_BINDIR/xun"
    else
        [ ! -e "$prefix/$XUN_BINDIR/xun" ] || fail "xun installed without a tool target"
    fi
    echo "layout: library, headers, data and package files in place"
    ;;

tool)
    tool=$prefix/$XUN_BINDIR/xun
    expect_output "xun convert" "3.048" env KORVANE_HOME="$home" "$tool" convert 10 ft m
    # Without KORVANE_HOME the tool reads the installed data beside it, also
    # after the installation has moved: a copy whose active language is German
    # shows the German description of the meter.
    cp -a "$prefix" "$root/moved"
    cp "$root/moved/$XUN_DATADIR/lang/de/"*.lan "$root/moved/$XUN_DATADIR/bin/"
    german=$(sed -n 's/^1200 "\(.*\)"$/\1/p' "$home/lang/de/xununit.lan" | head -n 1)
    english=$(sed -n 's/^1200 "\(.*\)"$/\1/p' "$home/lang/en/xununit.lan" | head -n 1)
    if [ -z "$german" ] || [ "$german" = "$english" ]; then
        fail "no German name of the meter in the installed data"
    fi
    shown=$("$root/moved/$XUN_BINDIR/xun" show UnitMeter) || fail "xun show without KORVANE_HOME"
    echo "$shown" | grep -qwF "$german" ||
        fail "xun without KORVANE_HOME did not read the data beside it: $shown"
    rm -rf "$root/moved"
    echo "tool: reads KORVANE_HOME, else the installed data beside it"
    ;;

c)
    work=$root/c
    mkdir -p "$work"
    cp "$src/tests/install/check_c.c" "$src/examples/c/convert.c" "$work/"
    cd "$work"
    command -v pkg-config >/dev/null 2>&1 || fail "pkg-config is not installed"
    export PKG_CONFIG_PATH="$prefix/$XUN_PKGCONFIGDIR"
    [ "$(pkg-config --modversion xun)" = "$XUN_VERSION" ] || fail "pkg-config --modversion xun"
    pc_home=$(cd "$(pkg-config --variable=korvane_home xun)" && pwd -P)
    [ "$pc_home" = "$(cd "$home" && pwd -P)" ] || fail "korvane_home variable: $pc_home"
    pc_libdir=$(pkg-config --variable=libdir xun)
    # shellcheck disable=SC2046 # the flags are words
    quiet "$XUN_CC" -std=c99 -pedantic -Wall -Wextra -Werror check_c.c -o check_c \
        $(pkg-config --cflags --libs xun) -Wl,-rpath,"$pc_libdir" -lm
    # shellcheck disable=SC2046
    quiet "$XUN_CC" -std=c99 -pedantic -Wall -Wextra -Werror convert.c -o convert \
        $(pkg-config --cflags --libs xun) -Wl,-rpath,"$pc_libdir"
    loaded=$(ldd ./check_c | awk '$1 == "libxun.so.1" {print $3}')
    [ "$(cd "$(dirname "$loaded")" && pwd -P)" = "$(cd "$libdir" && pwd -P)" ] ||
        fail "check_c loads libxun.so.1 from '$loaded'"
    KORVANE_HOME=$home ./check_c || fail "check_c"
    expect_output "C example" "10 ft = 3.048 m" env KORVANE_HOME="$home" ./convert
    ;;

cxx)
    work=$root/cxx
    mkdir -p "$work/check-src" "$work/example-src"
    cp "$src/tests/install/cxx/CMakeLists.txt" "$src/tests/install/cxx/check.cpp" "$work/check-src/"
    cp "$src/examples/cpp/CMakeLists.txt" "$src/examples/cpp/convert.cpp" "$work/example-src/"
    quiet "$XUN_CMAKE" -S "$work/check-src" -B "$work/check" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$XUN_CXX" -DCMAKE_PREFIX_PATH="$prefix" \
        -DXUN_EXPECTED_VERSION="$XUN_VERSION"
    quiet "$XUN_CMAKE" --build "$work/check"
    "$work/check/check_cxx" || fail "check_cxx"
    quiet "$XUN_CMAKE" -S "$work/example-src" -B "$work/example" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$XUN_CXX" -DCMAKE_PREFIX_PATH="$prefix"
    quiet "$XUN_CMAKE" --build "$work/example"
    expect_output "C++ example" "$(printf '%s\n' \
        '212 degrees Fahrenheit = 100 degrees Celsius' 0 -999 37)" \
        env KORVANE_HOME="$home" "$work/example/convert"
    ;;

fortran)
    command -v gfortran >/dev/null 2>&1 ||
        fail "gfortran is not installed: the Fortran check needs it (Debian package gfortran)"
    work=$root/fortran
    mkdir -p "$work"
    cp "$src/examples/fortran/"*.f90 "$src/tests/install/check_fortran.f90" "$work/"
    cd "$work"
    # The installed source of the module compiles on its own.
    quiet gfortran -std=f2008 -Wall -Wextra -Werror -c "$home/fortran/xun.f90" -o xun_source.o
    # The programs use the installed compiled module.
    link="-I$moddir -L$moddir -lxunfortran -L$libdir -Wl,-rpath,$libdir -lxun"
    # shellcheck disable=SC2086 # the link flags are words
    quiet gfortran -std=f2008 -Wall -Werror write_defines.f90 -o write_defines $link
    KORVANE_HOME=$home ./write_defines || fail "write_defines"
    [ -s xunDefine.f__ ] || fail "the library wrote no xunDefine.f__"
    # shellcheck disable=SC2086
    quiet gfortran -std=f2008 -Wall -Werror -I. check_fortran.f90 -o check_fortran $link
    KORVANE_HOME=$home ./check_fortran || fail "check_fortran"
    # shellcheck disable=SC2086
    quiet gfortran -std=f2008 -Wall -Werror -I. convert.f90 -o convert $link
    expect_output "Fortran example" \
        "100 cubic foot per second = 2.831685 cubic meter per second" \
        env KORVANE_HOME="$home" ./convert
    ;;

pascal)
    command -v fpc >/dev/null 2>&1 ||
        fail "fpc is not installed: the Pascal check needs it (Debian package fp-compiler)"
    work=$root/pascal
    mkdir -p "$work"
    cp "$src/examples/pascal/"*.pas "$src/tests/install/check_pascal.pas" "$work/"
    cd "$work"
    # The unit comes from the installation; its compiled files go to the work directory.
    fpc_flags="-v0 -Sew -Fl$libdir -k-rpath -k$libdir -Fi. -Fu$home/pascal -FU$work"
    # shellcheck disable=SC2086 # the flags are words
    quiet fpc $fpc_flags write_defines.pas
    KORVANE_HOME=$home ./write_defines || fail "write_defines"
    [ -s xunDefine.p__ ] || fail "the library wrote no xunDefine.p__"
    # shellcheck disable=SC2086
    quiet fpc $fpc_flags check_pascal.pas
    KORVANE_HOME=$home ./check_pascal || fail "check_pascal"
    # shellcheck disable=SC2086
    quiet fpc $fpc_flags convert.pas
    expect_output "Pascal example" "12.5 ft = 3.8100 m" env KORVANE_HOME="$home" ./convert
    ;;

python)
    python=$XUN_PYTHON
    "$python" -c 'import numpy' 2>/dev/null ||
        fail "$python cannot import numpy (Debian package python3-numpy)"
    site=$prefix/$XUN_PYTHONDIR
    [ -f "$site/xun/__init__.py" ] || fail "no Python package in $site"
    [ -f "$site/xun/_installed.py" ] || fail "no $site/xun/_installed.py"
    work=$root/python
    mkdir -p "$work"
    cp "$src/examples/python/convert.py" "$work/"
    cd "$work"
    # With no variable set, the installed package loads the installed library
    # and the installed data, found relative to itself.
    found=$(env -i PATH="$PATH" PYTHONPATH="$site" "$python" -c '
import os, xun
print(xun.convert(1, "ft", "m"))
print(os.path.realpath(xun.library_path()))
print(os.path.realpath(xun.setup_path()))
') || fail "import xun"
    expected=$(printf '%s\n' 0.3048 "$(cd "$libdir" && pwd -P)/libxun.so.$XUN_VERSION" \
        "$(cd "$home/bin" && pwd -P)/XUN.xml")
    [ "$found" = "$expected" ] || fail "the installed package printed '$found', expected '$expected'"
    expect_output "Python example" "$(printf '%s\n' '100 cfs = 2.831685 m3/s' \
        'levels in m: 0.3048 0.762 -999 3.048' \
        "refused: xunConvertUnit: cannot convert unit 1200 'UnitMeter' (dimension L) to "\
"unit 1600 'UnitSecond' (dimension T): the dimensions differ")" \
        env -i PATH="$PATH" PYTHONPATH="$site" "$python" convert.py
    ;;

tour_c)
    work=$root/tour_c
    mkdir -p "$work"
    tour_reference "$work"
    lines=$(wc -l <"$work/expected.txt")
    [ "$lines" -gt 5 ] || fail "the C tour printed $lines lines"
    cat "$work/expected.txt"
    ;;

tour_cxx)
    work=$root/tour_cxx
    mkdir -p "$work/src"
    tour_reference "$work"
    cp "$tour/CMakeLists.txt" "$tour/tour.cpp" "$work/src/"
    quiet "$XUN_CMAKE" -S "$work/src" -B "$work/build" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$XUN_CXX" -DCMAKE_PREFIX_PATH="$prefix"
    quiet "$XUN_CMAKE" --build "$work/build"
    tour_compare "C++ tour" "$work" "$work/build/tour"
    ;;

tour_fortran | tour_fortran_fixed)
    command -v gfortran >/dev/null 2>&1 ||
        fail "gfortran is not installed: the Fortran tour needs it (Debian package gfortran)"
    work=$root/$step
    mkdir -p "$work"
    tour_reference "$work"
    cd "$work"
    fmoddir=$(pkg-config --variable=fortran_moddir xun)
    [ "$(cd "$fmoddir" && pwd -P)" = "$(cd "$moddir" && pwd -P)" ] ||
        fail "fortran_moddir variable: $fmoddir"
    link="-I$fmoddir -L$fmoddir -lxunfortran $(pkg-config --libs xun) -Wl,-rpath,$libdir"
    if [ "$step" = tour_fortran ]; then
        "$prefix/$XUN_BINDIR/xun" --home "$home" includes >/dev/null || fail "xun includes"
        # shellcheck disable=SC2086 # the link flags are words
        quiet gfortran -std=f2008 -Wall -Werror -I. "$tour/tour.f90" -o tour $link
    else
        "$prefix/$XUN_BINDIR/xun" --home "$home" includes --fixed-form >/dev/null ||
            fail "xun includes --fixed-form"
        # shellcheck disable=SC2086
        quiet gfortran -ffixed-form -std=f2008 -Wall -Werror -I. "$tour/tour.f" -o tour $link
    fi
    tour_compare "Fortran tour ($step)" "$work" ./tour
    ;;

tour_pascal)
    command -v fpc >/dev/null 2>&1 ||
        fail "fpc is not installed: the Pascal tour needs it (Debian package fp-compiler)"
    work=$root/tour_pascal
    mkdir -p "$work"
    tour_reference "$work"
    cd "$work"
    "$prefix/$XUN_BINDIR/xun" --home "$home" includes >/dev/null || fail "xun includes"
    cp "$tour/tour.pas" .
    # shellcheck disable=SC2046 # the flags are words
    quiet fpc -v0 -Sew -Fu"$(pkg-config --variable=pascal_srcdir xun)" -FU"$work" \
        -Fl"$libdir" -k-rpath -k"$libdir" -Fi. tour.pas
    tour_compare "Pascal tour" "$work" ./tour
    ;;

tour_csharp)
    command -v mcs >/dev/null 2>&1 ||
        fail "mcs is not installed: the C# tour needs it (Debian packages mono-mcs, mono-runtime)"
    work=$root/tour_csharp
    mkdir -p "$work"
    tour_reference "$work"
    cd "$work"
    "$prefix/$XUN_BINDIR/xun" --home "$home" includes >/dev/null || fail "xun includes"
    quiet mcs -warnaserror -out:tour.exe "$tour/Tour.cs" \
        "$(pkg-config --variable=csharp_srcdir xun)/Xun.cs" xunDefine.cs
    # Mono finds libxun.so.1 through the system loader.
    tour_compare "C# tour" "$work" env LD_LIBRARY_PATH="$libdir" mono tour.exe
    # The C# example, built the same way.
    quiet mcs -warnaserror -out:convert.exe "$src/examples/csharp/Convert.cs" \
        "$(pkg-config --variable=csharp_srcdir xun)/Xun.cs" xunDefine.cs
    expect_output "C# example" "levels in m: 0.3048 -999 0.762" \
        env LD_LIBRARY_PATH="$libdir" KORVANE_HOME="$home" mono convert.exe
    ;;

tour_python)
    work=$root/tour_python
    mkdir -p "$work"
    tour_reference "$work"
    cp -r "$src/python/xun" "$work/"
    tour_compare "Python tour" "$work" env LD_LIBRARY_PATH="$libdir" PYTHONPATH="$work" \
        PYTHONDONTWRITEBYTECODE=1 "$XUN_PYTHON" "$tour/tour.py"
    ;;

*)
    fail "unknown step $step"
    ;;
esac
