#!/usr/bin/env bash
# Runs conversions, pattern rows and copies under valgrind's memcheck, on reduced grids: any error,
# the use of an undefined value included, fails, and nothing is suppressed: valgrind.sh [EVERY]
# EVERY is for the program undefined_bytes, which takes one of so many cases. Valgrind has no
# AVX-512 and shows a processor without it, so that level 7 is left out here, as the programs say.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test

cmake --preset debug >/dev/null
cmake --build --preset debug -j "$(nproc)" --target test_conversions test_direct_road undefined_bytes
export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-4000}
memcheck="valgrind --quiet --error-exitcode=9 --track-origins=yes --leak-check=full"
memcheck+=" --default-suppressions=no"
$memcheck build/debug/tests/rows/test_conversions --gtest_brief=1
echo "$PELKRAFT_TEST_CASES tested conversions without an undefined byte"
# So many at each level, of one step, and again of several at once.
direct_cases=$((PELKRAFT_TEST_CASES / 10 + 1))
PELKRAFT_TEST_CASES=$direct_cases $memcheck build/debug/tests/direct/test_direct_road --gtest_brief=1
echo "$direct_cases conversions on the direct road at each level without an undefined byte"
$memcheck build/debug/tests/undefined_bytes/undefined_bytes "${1:-97}"
