#!/usr/bin/env bash
# Conversions, pattern rows and copies into memory without a defined bit, out of sources of which
# only what they have to read is defined, under MemorySanitizer and under valgrind. Neither has
# anything suppressed. MemorySanitizer wants all code that it meets compiled with it: the standard
# library is Clang's, whose containers are in headers, and no test framework takes part. It runs
# without optimisation, which would turn shifts into instructions that it follows only roughly,
# and with shuffles spelled out for the same reason; valgrind sees the real ones. Both end with
# level 6: valgrind has no AVX-512, and MemorySanitizer does not follow its shuffles.
set -euo pipefail
cd "$(dirname "$0")/../.."
every_msan=1999
every_valgrind=9973
export PELKRAFT_TEST_CASES=50
if [ "$1" = whole ]; then
    every_msan=23
    every_valgrind=211
    PELKRAFT_TEST_CASES=1500
fi

bash scripts/setup.sh test
cmake --preset msan >/dev/null
cmake --build --preset msan -j "$(nproc)" --target undefined_bytes
log=build/evidence/undefined_bytes
mkdir -p build/evidence
ending="without an undefined byte"
bash scripts/counted_run.sh "$ending" \
    build/msan/tests/undefined_bytes/undefined_bytes $every_msan | tee $log.msan
bash scripts/counted_run.sh "$ending" \
    bash scripts/valgrind.sh $every_valgrind | tee $log.valgrind
echo "figure: 0 reports, 0 suppressions, levels up to 6; MemorySanitizer $(tail -n 1 $log.msan);" \
    "valgrind $(tail -n 1 $log.valgrind)"
