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
mkdir -p "$build"
# Says what it does only where it fails.
quietly() {
    "$@" >"$build/script.log" 2>&1 || { tail -n 40 "$build/script.log" >&2 && return 1; }
}
quietly cmake -S tests/platforms/windows_msvc -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/windows-msvc.cmake" \
    -DPELKRAFT_GOLDEN_EVERY="$every"
quietly cmake --build "$build"

# shellcheck source=scripts/platforms/wine_session.sh
source scripts/platforms/wine_session.sh msvc
ctest --test-dir "$build" --output-on-failure --no-tests=error --timeout 600
grep '^digest' "$build/Testing/Temporary/LastTest.log"
