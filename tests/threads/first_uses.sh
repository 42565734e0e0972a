#!/usr/bin/env bash
# Lets sixteen threads race for the first use of the library, each time in a fresh process.
#   first_uses.sh PROGRAM [COUNT]   PELKRAFT_FIRST_USES says how many processes otherwise
set -euo pipefail

program=$1
count=${2:-${PELKRAFT_FIRST_USES:-24}}
for ((number = 0; number < count; ++number)); do
    if ! output=$("$program" "$number" 2>&1); then
        echo "process $number: $output" >&2
        exit 1
    fi
done
echo "$count fresh processes"
