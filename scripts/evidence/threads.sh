#!/usr/bin/env bash
# Tests under ThreadSanitizer, without any suppression: sixteen threads at once in test_threads,
# and sixteen that race for the first use of the library in fresh processes. Whole, both of them
# many times over, after all other tests of that build.
#   threads.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
jobs=$(nproc)
reports=$PWD/build/evidence/threads.report
threads='^(test_threads|first_uses)$'
# The longest memory of what was done, and reports in files, which a captured stream can't hide.
export TSAN_OPTIONS="history_size=7 log_path=$reports"

bash scripts/setup.sh test
cmake --preset tsan >/dev/null
mkdir -p build/evidence
rm -f "$reports".*

run_tests() {
    ctest --test-dir build/tsan --output-on-failure "$@"
}

no_reports() {
    if compgen -G "$reports.*" >/dev/null; then
        head -n 40 "$reports".* >&2
        return 1
    fi
}

if [ "$1" = sample ]; then
    cmake --build --preset tsan -j "$jobs" --target test_threads first_uses
    run_tests -R "$threads"
    no_reports
    echo "figure: 0 reports in 16 threads and 24 fresh processes, 0 suppressions"
    exit
fi
cmake --build --preset tsan -j "$jobs"
run_tests -j "$jobs" -E "$threads" | tee build/evidence/threads.ctest
programs=$(sed -n 's/.*tests failed out of \([0-9]*\)$/\1/p' build/evidence/threads.ctest)
rounds=20
processes=400
PELKRAFT_THREAD_ROUNDS=$rounds PELKRAFT_FIRST_USES=$processes run_tests -R "$threads" --timeout 36000
no_reports
echo "figure: 0 reports in $rounds rounds of 16 threads, $processes fresh processes and" \
    "$programs test programs, 0 suppressions"
