#!/bin/sh
# A short demonstration of the xun tool on the default installation (data/):
# conversions, listings, one item type in full and a check of the setup file.
# Usage: tools/demo.sh BUILD_DIR   (the build directory that holds tools/xun)
set -eu
build=${1:?usage: tools/demo.sh BUILD_DIR}
root=$(cd "$(dirname "$0")/.." && pwd)
xun="$build/tools/xun"
home="$root/data"

run() {
    printf '\n$ xun %s\n' "$*"
    "$xun" --home "$home" "$@"
}

run convert 100 degC degF
run convert 20 degC K
run convert 1 kWh MJ
run convert 10ft m
run convert 30 knots "km/h"
run convert 1 UnitCubicMeterPerSecond/UnitSquareKilometer "mm/h"
run convert 20 "kg m-2 s-1" "g/(m²·d)"
run convert 1 "ft^3/s" "m3 s-1"
printf '\n$ xun convert ft m < /dev/null\n'
"$xun" --home "$home" convert ft m </dev/null
printf '\n$ printf %s | xun convert ft m\n' "'1 2.5 1e3\\n'"
printf '1 2.5 1e3\n' | "$xun" --home "$home" convert ft m
printf '\n$ printf %s | xun convert --delimiter , --column 2 --delete -99.99 cfs m3/s\n' \
    "'date,flow_cfs\\n2024-05-01,350\\n2024-05-02,-99.99\\n2024-05-03,NA\\n'"
printf 'date,flow_cfs\n2024-05-01,350\n2024-05-02,-99.99\n2024-05-03,NA\n' |
    "$xun" --home "$home" convert --delimiter , --column 2 --delete -99.99 cfs m3/s
run units --item ItemWaterLevel
run show ItemWaterLevel
run filters
run check
echo "xun check: no problems in $home/bin"
