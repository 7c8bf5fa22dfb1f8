#!/bin/sh
# The Debian packages: cpack -G DEB makes libxun1, libxun-dev and xun-tools
# with their dependencies and the shlibs entry of libxun.so.1; unpacked
# (dpkg -x) into an empty root, they build a C program through pkg-config
# and run the packaged xun tool.
# usage: check_deb.sh CPACK BUILD_DIR SOURCE_DIR CC VERSION
set -eu
cpack=$1
build=$2
src=$3
cc=$4
version=$5
unset LD_LIBRARY_PATH KORVANE_HOME PKG_CONFIG_PATH || true
work=$(mktemp -d "${TMPDIR:-/tmp}/xun-deb.XXXXXX")
trap 'rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $*"
    exit 1
}

cd "$build"
if ! "$cpack" -G DEB -B "$work/out" --config "$build/CPackConfig.cmake" >"$work/cpack.log" 2>&1; then
    cat "$work/cpack.log"
    fail "cpack -G DEB"
fi
arch=$(dpkg --print-architecture)
runtime=$work/out/libxun1_${version}_$arch.deb
dev=$work/out/libxun-dev_${version}_$arch.deb
tools=$work/out/xun-tools_${version}_$arch.deb
for deb in "$runtime" "$dev" "$tools"; do
    [ -f "$deb" ] || fail "no $(basename "$deb") in: $(ls "$work/out")"
done

# field DEB NAME: a control field of a package.
field() { dpkg-deb -f "$1" "$2"; }
# contents DEB: the files of a package, one per line.
contents() { dpkg-deb -c "$1" | awk '{print $6}'; }
has() { contents "$1" | grep -qxF "$2" || fail "$(basename "$1") lacks $2"; }
lacks() { ! contents "$1" | grep -qxF "$2" || fail "$(basename "$1") holds $2"; }

# Dependencies: the library needs the Xerces-C runtime; the others this very
# library.
field "$runtime" Depends | grep -qE '(^|, )libxerces-c3[.0-9]*( |,|$)' ||
    fail "libxun1 does not depend on the Xerces-C library: $(field "$runtime" Depends)"
[ "$(field "$dev" Depends)" = "libxun1 (= $version)" ] ||
    fail "libxun-dev depends on: $(field "$dev" Depends)"
field "$tools" Depends | grep -qF "libxun1 (= $version)" ||
    fail "xun-tools depends on: $(field "$tools" Depends)"
[ "$(field "$runtime" Section)" = libs ] || fail "libxun1 section $(field "$runtime" Section)"

# The shlibs entry: programs linked against libxun.so.1 depend on libxun1.
mkdir "$work/control"
dpkg-deb -e "$runtime" "$work/control"
[ "$(cat "$work/control/shlibs")" = "libxun 1 libxun1 (>= $version)" ] ||
    fail "shlibs of libxun1: $(cat "$work/control/shlibs" 2>&1)"

# Which package holds what.
has "$runtime" ./usr/lib/libxun.so.$version
has "$runtime" ./usr/lib/libxun.so.1
has "$runtime" ./usr/share/xun/bin/XUN.xml
lacks "$runtime" ./usr/include/xun.h
lacks "$runtime" ./usr/bin/xun
has "$dev" ./usr/include/xun.h
has "$dev" ./usr/lib/libxun.so
has "$dev" ./usr/lib/pkgconfig/xun.pc
has "$dev" ./usr/lib/cmake/xun/xunConfig.cmake
has "$dev" ./usr/share/xun/fortran/xun.f90
has "$dev" ./usr/share/xun/pascal/xun.pas
has "$dev" ./usr/share/xun/csharp/Xun.cs
lacks "$dev" ./usr/lib/libxun.so.1
[ "$(contents "$tools" | grep -v '/$')" = ./usr/bin/xun ] ||
    fail "xun-tools holds: $(contents "$tools" | grep -v '/$')"

# Unpacked into an empty root: a C program built through pkg-config, and the
# packaged tool, each with the packaged library.
root=$work/root
for deb in "$runtime" "$dev" "$tools"; do
    dpkg -x "$deb" "$root"
done
# The library and the tool are packaged without debug information.
for binary in "$root/usr/lib/libxun.so.$version" "$root/usr/bin/xun"; do
    ! readelf -S "$binary" | grep -q '\.debug_info' || fail "$binary keeps its debug information"
done
export PKG_CONFIG_PATH="$root/usr/lib/pkgconfig"
[ "$(pkg-config --modversion xun)" = "$version" ] || fail "pkg-config --modversion xun"
libdir=$(pkg-config --variable=libdir xun)
mkdir "$work/c"
cp "$src/examples/c/convert.c" "$work/c/"
cd "$work/c"
# shellcheck disable=SC2046 # the flags are words
"$cc" -std=c99 -pedantic -Wall -Wextra -Werror convert.c -o convert \
    $(pkg-config --cflags --libs xun) -Wl,-rpath,"$libdir" || fail "building with pkg-config xun"
loaded=$(ldd ./convert | awk '$1 == "libxun.so.1" {print $3}')
[ "$(cd "$(dirname "$loaded")" && pwd -P)" = "$(cd "$root/usr/lib" && pwd -P)" ] ||
    fail "the program loads libxun.so.1 from '$loaded'"
got=$(KORVANE_HOME=$(pkg-config --variable=korvane_home xun) ./convert) || fail "convert"
[ "$got" = "10 ft = 3.048 m" ] || fail "the C program printed '$got'"
echo "C program built with pkg-config xun: $got"

tool=$root/usr/bin/xun
loaded=$(ldd "$tool" | awk '$1 == "libxun.so.1" {print $3}')
[ "$(cd "$(dirname "$loaded")" && pwd -P)" = "$(cd "$root/usr/lib" && pwd -P)" ] ||
    fail "the packaged tool loads libxun.so.1 from '$loaded'"
# Without KORVANE_HOME the tool reads the packaged data beside it.
got=$("$tool" convert 10 ft m) || fail "xun convert"
[ "$got" = 3.048 ] || fail "xun convert 10 ft m printed '$got'"
where=$("$tool" where) || fail "xun where"
echo "$where" | grep -qF "$root/usr/share/xun" || fail "xun where: $where"
echo "packaged xun convert 10 ft m: $got"
