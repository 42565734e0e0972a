#!/usr/bin/env bash
# Builds the library in Microsoft's binary interface, with Clang under the command line of cl and all
# warnings as errors, compares its virtual slots, and runs programs that use it under Wine:
#   msvc.sh whole|sample
# The sample takes fewer of the golden patterns.
set -euo pipefail
cd "$(dirname "$0")/../.."
case "${1:-whole}" in
whole) every=1 ;;
sample) every=10 ;;
*)
    echo "usage: bash scripts/platforms/msvc.sh whole|sample" >&2
    exit 2
    ;;
esac
bash scripts/setup.sh msvc

build=$PWD/build/windows-msvc
cmake -S tests/platforms/windows_msvc -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/windows-msvc.cmake" \
    -DPELKRAFT_GOLDEN_EVERY="$every" >"$build.log" || {
    cat "$build.log" >&2
    exit 1
}
cmake --build "$build"

# Wine's services start with nothing to write to: with the pipe of a test they would keep it open.
export WINEPREFIX=$PWD/build/wineprefix-msvc WINEDEBUG=-all
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree,mshtml='
unset DISPLAY
wine=/usr/lib/wine/wine64
trap '/usr/lib/wine/wineserver64 -k || true' EXIT
[ -d "$WINEPREFIX" ] || "$wine" wineboot -i </dev/null >/dev/null 2>&1
# It says no where a server still runs, which is as good.
/usr/lib/wine/wineserver64 -p </dev/null >/dev/null 2>&1 || true
"$wine" cmd /c exit </dev/null >/dev/null 2>&1

ctest --test-dir "$build" --output-on-failure --timeout 600
grep '^digest' "$build/Testing/Temporary/LastTest.log"
