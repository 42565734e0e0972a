#!/usr/bin/env bash
# Proves that the tests fail where the library or the program is wrong: whole, on all planted
# defects and on the small changes made by rule; the sample, on those of one file, and that both
# lists fit the tree. It takes the release build that the tests have made anyway.
set -euo pipefail
cd "$(dirname "$0")/../.."

sample_file=portal/relocator.cpp

bash scripts/setup.sh test
automatic=tests/mutants/automatic.pl
log=build/evidence/mutants.tries
mkdir -p build/evidence
planted=$(bash scripts/mutants.sh --list | wc -l)
perl $automatic check .

if [ "$1" = sample ]; then
    cmake --preset release >/dev/null
    cmake --build --preset release -j "$(nproc)" --target test_portal test_conversions test_rows
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    perl $automatic try . build/release "$work" $sample_file | tee "$log"
    echo "figure: planted $planted listed; $(grep '^automatic ' "$log"), $sample_file alone"
    exit
fi

bash scripts/mutants.sh | tee "$log.planted"
bash scripts/mutants.sh --automatic | tee "$log"
caught=$(sed -n 's/^\([0-9]*\) caught, .*/\1/p' "$log.planted")
echo "figure: planted $caught of $planted caught; $(grep '^automatic ' "$log")"
