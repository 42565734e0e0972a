#!/usr/bin/env bash
# Builds for Linux with 32 bits, and runs the tests of the rooms and the digests at every level.
#   m32.sh whole|sample
# The sample takes the digests alone, of fewer patterns.
set -euo pipefail
cd "$(dirname "$0")/../.."
targets=(check_goldens)
tests='^check_goldens$'
every=10
case "${1:-whole}" in
whole)
    targets+=(room_tests test_bounds)
    tests+='|^test_bounds$'
    every=1
    ;;
sample) ;;
*)
    echo "usage: bash scripts/platforms/m32.sh whole|sample" >&2
    exit 2
    ;;
esac
bash scripts/setup.sh test

cmake --preset m32 -DPELKRAFT_GOLDEN_EVERY=$every >/dev/null
cmake --build --preset m32 --target "${targets[@]}" >build/m32/build.log 2>&1 ||
    { tail -n 40 build/m32/build.log >&2 && exit 1; }
[ "$every" -ne 1 ] || ctest --test-dir build/m32 -j "$(nproc)" --output-on-failure -L '^room$'
ctest --test-dir build/m32 -j "$(nproc)" --output-on-failure -R "$tests"
grep -a '^digest of ' build/m32/Testing/Temporary/LastTest.log
