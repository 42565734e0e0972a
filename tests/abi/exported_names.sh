#!/usr/bin/env bash
# Fails unless the library exports the names of the lists and no other. The type information in
# them is passed over for a DLL, as names_of.sh does.
#   exported_names.sh LIBRARY LIST...
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

expected() {
    case $library in
    *.dll) grep -hv '^typeinfo ' "$@" ;;
    *) cat "$@" ;;
    esac | LC_ALL=C sort -u
}

library=$1
shift
if ! diff --label expected --label exported -U0 <(expected "$@") \
    <(bash "$here/names_of.sh" "$library"); then
    echo "if this is meant, CONTRIBUTING.md tells under Versions what to do" >&2
    exit 1
fi
