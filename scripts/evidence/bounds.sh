#!/usr/bin/env bash
# The bytes that conversions, pattern rows and copies touch. The sample is the test as it runs in
# each push; whole is every case of its grid.
#   bounds.sh whole|sample guard_pages     on memory that begins or ends at a forbidden page, at even
#                                          and odd addresses, the source forbidden to be written to
#   bounds.sh whole|sample outside_bytes   on two destinations that differ in every bit: the bytes
#                                          that they cover must be the same on both, and all others,
#                                          those around the destination too, as they were
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = whole ] && export PELKRAFT_TEST_FULL=1
case $2 in
guard_pages) tests='Guarded*' ending="between forbidden pages" found="0 faults" ;;
outside_bytes) tests='Outside*' ending="on two fills each" found="0 bytes" ;;
esac

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_bounds
log=build/evidence/$2.counts
bash scripts/counted_run.sh "$ending" \
    build/release/tests/bounds/test_bounds --gtest_brief=1 --gtest_filter="$tests" | tee "$log"
echo "figure: $found in $(tail -n 1 "$log")"
