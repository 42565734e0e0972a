#!/usr/bin/env bash
# Runs conversions, pattern rows and copies under valgrind's memcheck, on reduced grids: any error,
# the use of an undefined value included, fails, and nothing is suppressed: valgrind.sh [EVERY]
# EVERY is for the program undefined_bytes, which takes one of so many cases.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test

cmake --preset debug >/dev/null
cmake --build --preset debug -j "$(nproc)" --target test_conversions undefined_bytes
export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-4000}
memcheck="valgrind --quiet --error-exitcode=9 --track-origins=yes --leak-check=full"
memcheck+=" --default-suppressions=no"
$memcheck build/debug/tests/rows/test_conversions --gtest_brief=1
echo "$PELKRAFT_TEST_CASES tested conversions without an undefined byte"
$memcheck build/debug/tests/undefined_bytes/undefined_bytes "${1:-97}"
