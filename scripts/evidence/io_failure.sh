#!/usr/bin/env bash
# Lets every call to the system that the program makes fail once, in every way that it can, and
# kills the program before every call and at 50 random moments for each use and signal. The sample
# is what scripts/test.sh runs of it anyway.
#   io_failure.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = sample ] || export PELKRAFT_TEST_FULL=1

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_tools_io pelkraft_tool
log=build/evidence/io_failure.runs
mkdir -p build/evidence
start=$SECONDS
build/release/tests/tools/test_tools_io | tee "$log"
awk -v seconds=$((SECONDS - start)) '
    /^io_failure:/ { runs += $2 }
    /^io_kill:.*kills/ { kills += $2; met += $4 }
    END { printf "figure: %d failing calls, %d kills, %d of them at work; 0 half files, " \
        "0 other exit codes, %d min %02d s\n", runs, kills, met, seconds / 60, seconds % 60 }' "$log"
