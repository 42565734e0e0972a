#!/usr/bin/env bash
# Conversions, pattern rows and copies on memory that begins or ends at a forbidden page, at even
# and odd addresses, the source forbidden to be written to. The sample is the test as it runs in
# each push; whole is every case of its grid.
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = whole ] && export PELKRAFT_TEST_FULL=1

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_bounds
log=build/evidence/guard_pages.counts
bash scripts/counted_run.sh "between forbidden pages" \
    build/release/tests/bounds/test_bounds --gtest_brief=1 --gtest_filter='Guarded*' | tee "$log"
echo "figure: 0 faults in $(tail -n 1 "$log")"
