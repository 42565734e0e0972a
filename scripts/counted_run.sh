#!/usr/bin/env bash
# Runs a test program and joins its counts, lines such as "5301 copies between forbidden pages",
# and its processor time to one phrase on the last line: counted_run.sh ENDING PROGRAM [ARGUMENT...]
# ENDING is what those lines end with, and is left out of the phrase.
set -euo pipefail
ending=$1
shift
log=$(mktemp)
trap 'rm -f "$log" "$log.time"' EXIT

TIMEFORMAT='%U %S'
{ time "$@" 2>&1 | tee "$log"; } 2>"$log.time"
grep -q "$ending\$" "$log" || {
    echo "counted_run.sh: no line ends with '$ending'" >&2
    exit 1
}
awk -v ending=" $ending" '
    FNR == NR { seconds = int($1 + $2 + 0.5); next }
    $1 ~ /^[0-9]+$/ && substr($0, length($0) - length(ending) + 1) == ending {
        number = $1
        while (match(number, /[0-9][0-9][0-9][0-9]($|,)/))
            number = substr(number, 1, RSTART) "," substr(number, RSTART + 1)
        what = substr($0, length($1) + 1, length($0) - length($1) - length(ending))
        phrase = phrase number what ", "
    }
    END { printf "%s%d s of processor time\n", phrase, seconds }' "$log.time" "$log"
