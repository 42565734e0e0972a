#!/usr/bin/env bash
# Lets each allocation of each public operation and of each verb of the program fail once, and from
# then on for ever. The operation throws what is documented, changes and leaks nothing, and does its
# work when tried again; the program exits with the code for memory and leaves whole files or none.
# Some of its runs are watched by valgrind. The sample takes a few allocations of each verb; the
# tests of scripts/test.sh run the same.
#   memory_failure.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
[ "$1" = whole ] && export PELKRAFT_TEST_FULL=1

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target test_library_memory test_client_memory

# These lines have the numbers of what was done. All else is printed where a test fails.
logs=build/evidence/memory_failure
mkdir -p $logs
run() {
    local log=$logs/$1.log
    build/release/tests/memory_failure/test_"$2"_memory --gtest_brief=1 >"$log" 2>&1 ||
        { cat "$log" && return 1; }
    grep -aE '^(library|client|watched): ' "$log"
}

rm -f $logs/*.log
run library library
running=()
GTEST_TOTAL_SHARDS=$(nproc)
export GTEST_TOTAL_SHARDS
for ((shard = 0; shard < GTEST_TOTAL_SHARDS; ++shard)); do
    GTEST_SHARD_INDEX=$shard run "client$shard" client &
    running+=($!)
done
for process in "${running[@]}"; do
    wait "$process"
done

cat $logs/*.log | awk -F '[:,] *' '
    function number(text) { return text + 0 }
    $1 == "library" { operations += number($3); failed += number($4) }
    $1 == "client" { ++lines; runs += number($4); survived += number($5) }
    $1 == "watched" { watched += number($4) }
    END {
        printf "figure: library: %d operations, %d failed allocations, 0 leaks; ", operations, failed
        printf "program: %d command lines, %d runs with a failed allocation, ", lines, runs
        printf "%d of them did without, all others ended with code 7; %d watched runs, 0 leaks\n",
            survived, watched
    }'
