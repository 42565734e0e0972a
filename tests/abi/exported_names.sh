#!/usr/bin/env bash
# Fails unless the library exports the names of the list and no other:
#   exported_names.sh LIBRARY LIST
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
if ! diff --label expected --label exported -U0 "$2" <(bash "$here/names_of.sh" "$1"); then
    echo "if this is meant, CONTRIBUTING.md tells under Versions what to do" >&2
    exit 1
fi
