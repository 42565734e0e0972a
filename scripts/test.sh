#!/usr/bin/env bash
# Builds and runs all tests: Release with GCC, the vector objects of a debug build, then
# the fuzzers for a while, then everything under AddressSanitizer and UndefinedBehaviorSanitizer
# with Clang.
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
    ctest --test-dir "build/$1" --output-on-failure -j "$jobs" "${@:2}"
}

cmake --preset release
cmake --build --preset release -j "$jobs"
test_build release

bash scripts/package.sh
bash tests/package/deb_packages.sh .

# Without inlining a header's function that slipped into a vector file shows itself.
cmake --preset debug
cmake --build --preset debug -j "$jobs" --target pelkraft_objects
test_build debug -R vector_objects

# What fails is left in build/fuzz/.
fuzz() {
    local target=$1 seconds=$2
    mkdir -p "build/fuzz/found/$target"
    (cd build/fuzz && ./fuzz/fuzz_"$target" -max_total_time="$seconds" -timeout=20 \
        -rss_limit_mb=2048 -print_final_stats=1 "${@:3}" "found/$target" \
        "../../fuzz/corpus/$target" 2>&1 | grep -E '^(stat|Done|==|SUMMARY|[0-9]+ pixels)|ERROR')
}
cmake --preset fuzz
cmake --build --preset fuzz -j "$jobs"
fuzz pattern_text 60 -max_len=2048 -dict=../../fuzz/pattern_text.dict
fuzz row_conversion 30 -max_len=128

# The grid ran whole above; here its sample does.
unset PELKRAFT_TEST_FULL
cmake --preset asan-ubsan
cmake --build --preset asan-ubsan -j "$jobs"
export ASAN_OPTIONS=detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1
test_build asan-ubsan
