#!/usr/bin/env bash
# Runs the tests of the row conversion under valgrind's memcheck, on a reduced grid: any error,
# the use of an undefined value included, fails.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test

cmake --preset debug >/dev/null
cmake --build --preset debug -j "$(nproc)" --target test_conversions
export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-4000}
memcheck="valgrind --quiet --error-exitcode=9 --track-origins=yes --leak-check=full"
$memcheck build/debug/tests/rows/test_conversions --gtest_brief=1
echo "valgrind: no error in $PELKRAFT_TEST_CASES conversions"
