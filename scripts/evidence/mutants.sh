#!/usr/bin/env bash
# Proves that the tests fail where the library or the program is wrong: on all planted defects, or
# on small changes made by rule. The sample sees that the lists fit the tree, and tries the small
# changes of one file, in the release build that the tests have made anyway.
#   mutants.sh whole|sample mutants_planted|mutants_automatic
set -euo pipefail
cd "$(dirname "$0")/../.."

sample_file=portal/relocator.cpp

bash scripts/setup.sh test
automatic=tests/mutants/automatic.pl
log=build/evidence/$2.tries
mkdir -p build/evidence

case "$1 $2" in
"sample mutants_planted")
    echo "figure: $(bash scripts/mutants.sh --list | wc -l) listed"
    ;;
"whole mutants_planted")
    planted=$(bash scripts/mutants.sh --list | wc -l)
    bash scripts/mutants.sh | tee "$log"
    echo "figure: $(sed -n 's/^\([0-9]*\) caught, .*/\1/p' "$log") of $planted caught"
    ;;
"sample mutants_automatic")
    perl $automatic check .
    cmake --preset release >/dev/null
    cmake --build --preset release -j "$(nproc)" --target test_portal test_conversions test_rows
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    perl $automatic try . build/release "$work" $sample_file | tee "$log"
    echo "figure: $(sed -n 's/^automatic //p' "$log"), $sample_file alone"
    ;;
"whole mutants_automatic")
    perl $automatic check .
    bash scripts/mutants.sh --automatic | tee "$log"
    echo "figure: $(sed -n 's/^automatic //p' "$log")"
    ;;
esac
