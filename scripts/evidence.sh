#!/usr/bin/env bash
# Gathers the evidence for what this library promises, line by line, and writes each line's figure,
# date, machine and command into its row of docs/reliability.md.
#   evidence.sh [LINE...]            runs these lines whole, or all of them, which takes most of a day
#   evidence.sh --sample [LINE...]   runs a short fixed sample and writes nothing
# A line has a script in scripts/evidence/, which gets "whole" or "sample", exits with 0 if all holds,
# and prints its figure on a line that begins with "figure: ". A script of several lines gets
# the name of the line too.
set -uo pipefail
cd "$(dirname "$0")/.."

report=docs/reliability.md
extent=whole
if [ "${1:-}" = --sample ]; then
    extent=sample
    shift
fi

# The lines in the order of their rows.
all_lines() {
    sed -n 's/^| `\([a-z_]*\)` |.*/\1/p' "$report"
}

run_script() {
    case $1 in
    guard_pages | outside_bytes) bash scripts/evidence/bounds.sh "$extent" "$1" ;;
    mutants_*) bash scripts/evidence/mutants.sh "$extent" "$1" ;;
    fuzz_*) bash scripts/evidence/fuzzing.sh "$extent" "$1" ;;
    *) bash "scripts/evidence/$1.sh" "$extent" ;;
    esac
}

machine() {
    local model
    model=$(LC_ALL=C lscpu | sed -n 's/^Model name: *//p' | head -1)
    echo "$model, $(nproc) processors"
}

# Puts figure, date and machine into the row of a line; the command stands there already.
record() {
    awk -F ' *[|] *' -v line="\`$1\`" -v figure="$2" -v date="$(date -u +%Y-%m-%d)" \
        -v machine="$(machine)" '
        $2 == line { print "| " $2 " | " $3 " | " figure " | " date " | " machine " | " $7 " |"; next }
        { print }' "$report" >"$report.new" && mv "$report.new" "$report"
}

run_line() {
    local line=$1 log=build/evidence/$1.log verdict="" figure
    echo "== $line, $extent"
    run_script "$line" 2>&1 | tee "$log"
    [ "${PIPESTATUS[0]}" -eq 0 ] || verdict="FAILED: "
    figure=$(sed -n 's/^figure: //p' "$log" | tail -1)
    [ -n "$figure" ] || verdict="FAILED: "
    [ $extent = sample ] || record "$line" "$verdict${figure:-no figure}"
    [ -z "$verdict" ] || echo "== $line failed, see $log" >&2
    [ -z "$verdict" ]
}

lines=("$@")
[ $# -ne 0 ] || mapfile -t lines < <(all_lines)
for line in "${lines[@]}"; do
    if ! all_lines | grep -qx -- "$line"; then
        echo "evidence.sh: no line '$line' among:" $(all_lines) >&2
        exit 2
    fi
done

mkdir -p build/evidence
failed=0
for line in "${lines[@]}"; do
    run_line "$line" || failed=1
done
exit $failed
