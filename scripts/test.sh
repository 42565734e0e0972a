#!/usr/bin/env bash
# Builds and runs all tests: Release with GCC, then everything under AddressSanitizer and
# UndefinedBehaviorSanitizer with Clang.
#   --full   also sweeps the whole grid of conversions, which takes hours
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = --full ]; then
    export PELKRAFT_TEST_FULL=1
elif [ $# -ne 0 ]; then
    echo "usage: bash scripts/test.sh [--full]" >&2
    exit 2
fi

bash scripts/setup.sh test

jobs=$(nproc)
test_build() {
    # Some tests wait for the disk or for other processes, and one more uses that time.
    ctest --test-dir "build/$1" --output-on-failure -j "$((jobs + 1))"
}

cmake --preset release
cmake --build --preset release -j "$jobs"
test_build release

# The grid, or its usual sample, ran above; here a smaller one does, unless the caller says how many.
unset PELKRAFT_TEST_FULL
export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-1500}
cmake --preset asan-ubsan
cmake --build --preset asan-ubsan -j "$jobs"
export ASAN_OPTIONS=detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1
test_build asan-ubsan
