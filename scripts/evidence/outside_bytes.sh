#!/usr/bin/env bash
# Conversions, pattern rows and copies on two destinations that differ in every bit: what they
# cover must be the same on both, and all other bytes, those around the destination too, as they
# were. The sample is the test as it runs in each push; whole is every case of its grid.
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = whole ] && export PELKRAFT_TEST_FULL=1

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_bounds
log=build/evidence/outside_bytes.counts
bash scripts/counted_run.sh "on two fills each" \
    build/release/tests/bounds/test_bounds --gtest_brief=1 --gtest_filter='Outside*' | tee "$log"
echo "figure: 0 bytes in $(tail -n 1 "$log")"
