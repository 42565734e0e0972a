#!/usr/bin/env bash
# Sends pictures of 100,000 x 2,000 pixels and 8 channels through the program, of 1.6 and 3.2 GB,
# holds its memory to 64 MiB and 4 rows for each thread, and checks every sample of what comes out.
# Needs 9 GB below TMPDIR. The sample has 160 rows, and is what scripts/test.sh runs anyway.
#   big_pictures.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
height=2000
[ "$1" = whole ] || height=160

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target pelkraft_tool big_picture peak_memory
log=build/evidence/big_pictures.runs
mkdir -p build/evidence
tests=build/release/tests/tools
bash tests/tools/big_pictures.sh build/release/tools/pelkraft/pelkraft $tests/big_picture \
    $tests/peak_memory $height | tee "$log"
awk -v height=$height '/^peak/ { ++runs } /^largest peak:/ { peak = $3 }
    END { printf "figure: at most %d MiB in %d runs on 100,000 pixels x %d rows of 8 channels; " \
        "0 wrong samples\n", peak, runs, height }' "$log"
