#!/usr/bin/env bash
# All tests under AddressSanitizer, with its leaks, and UndefinedBehaviorSanitizer; whole, those that
# take a sample of what there is take ten times as much. No report is suppressed: the first one ends
# its test. The sample is what scripts/test.sh runs of it anyway.
set -euo pipefail
cd "$(dirname "$0")/../.."

bash scripts/setup.sh test
cmake --preset asan-ubsan >/dev/null
cmake --build --preset asan-ubsan -j "$(nproc)"
export ASAN_OPTIONS=detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1
log=build/evidence/sanitizers.ctest
ctest --test-dir build/asan-ubsan --output-on-failure -j "$(nproc)" | tee "$log"
tests=$(sed -n 's/.*tests failed out of \([0-9]*\)$/\1/p' "$log")
if [ "$1" = whole ]; then
    printf '%s\n' 400000 rows/test_conversions 80000 direct/test_direct_road \
        15000 plan/test_rows_plan | xargs -n 2 -P "$(nproc)" bash -c \
        'PELKRAFT_TEST_CASES=$0 build/asan-ubsan/tests/$1 --gtest_brief=1'
fi
echo "figure: 0 reports in $tests test programs, 0 suppressions"
