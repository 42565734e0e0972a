#!/usr/bin/env bash
# Rows, conversions, patterns and copies with numbers whose products meet 2^31, 2^32 and 2^63: each
# ends in a documented text or in the right bytes, with 64 and with 32 bits. Whole, it takes a far
# larger grid, and rows of two gigabytes too (of one with 32 bits, where no more has room), and
# runs the tests of all rooms of the library with 32 bits. The sample is the 32-bit half of what
# runs in a push.
set -euo pipefail
cd "$(dirname "$0")/../.."

bash scripts/setup.sh test
mkdir -p build/evidence

# Prints how many calls the lines of a log count, in groups of three digits.
count_calls() {
    awk '/ of any size$/ { calls += $1 } END { print calls }' "$1" |
        sed -E ':group; s/([0-9])([0-9]{3})($|,)/\1,\2\3/; t group'
}

# Runs the tests of sizes of a build.
run_sizes() {
    local log=build/evidence/sizes.$1
    "build/$1/tests/sizes/test_sizes" --gtest_brief=1 | tee "$log"
}

cmake --preset m32 >/dev/null
if [ "$1" = sample ]; then
    cmake --build --preset m32 -j "$(nproc)" --target test_sizes
    run_sizes m32
    echo "figure: $(count_calls build/evidence/sizes.m32) calls with 32 bits"
    exit 0
fi

cmake --build --preset m32 -j "$(nproc)" --target room_tests test_bounds test_sizes
ctest --test-dir build/m32 -L '^(room|bounds|sizes)$' --output-on-failure |
    tee build/evidence/sizes.ctest
tests=$(sed -n 's/.*tests failed out of \([0-9]*\)$/\1/p' build/evidence/sizes.ctest)

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_sizes
export PELKRAFT_TEST_FULL=1
run_sizes release
run_sizes m32
echo "figure: 0 faults in $(count_calls build/evidence/sizes.release) calls with 64 bits and" \
    "$(count_calls build/evidence/sizes.m32) with 32 bits, $tests test programs with 32 bits"
