#!/usr/bin/env bash
# Fails where a library takes away or changes what programs rely on; more of it may come:
#   unchanged.sh SOURCE_DIR LIBRARY...
set -euo pipefail
source_dir=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
for library in "${@:2}"; do
    name=$(basename "$library")
    name=${name%%.so*}.abi
    bash "$here/describe.sh" "$source_dir" "$library" "$work/$name"
    abidiff --no-added-syms "$source_dir/abi/$name" "$work/$name" || status=1
done
if [ $status -ne 0 ]; then
    echo "if this is meant, CONTRIBUTING.md tells under Versions what to do" >&2
fi
exit $status
