#!/usr/bin/env bash
# usage: check_weak_code.sh NM OBJECT...
#
# Code of a vector object that the linker may merge with other copies of the same function could
# end up in the whole program, and fault on a processor without these instructions.
set -euo pipefail

nm=$1
shift
if [ $# -eq 0 ]; then
    echo "no vector objects to read"
    exit 1
fi

failures=0
for object in "$@"; do
    symbols=$("$nm" --defined-only --extern-only "$object")
    if ! grep -q ' T ' <<<"$symbols"; then
        echo "$object: defines no door"
        failures=$((failures + 1))
    fi
    if weak=$(grep -E ' [Wu] ' <<<"$symbols"); then
        echo "$object: weak code"
        echo "$weak" | c++filt
        failures=$((failures + 1))
    fi
done
echo "$# objects read, $failures faults"
[ "$failures" -eq 0 ]
