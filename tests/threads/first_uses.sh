#!/usr/bin/env bash
# Lets sixteen threads race for the first use of the library, each time in a fresh process.
#   first_uses.sh [EMULATOR...] PROGRAM   PELKRAFT_FIRST_USES says how many processes
set -euo pipefail

count=${PELKRAFT_FIRST_USES:-24}
for ((number = 0; number < count; ++number)); do
    if ! output=$("$@" "$number" 2>&1); then
        echo "process $number: $output" >&2
        exit 1
    fi
done
echo "$count fresh processes"
