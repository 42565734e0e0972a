#!/usr/bin/env bash
# Writes what a program built against a library relies on, without a word on the machine and
# without types that are not in public headers: describe.sh SOURCE_DIR LIBRARY DESCRIPTION
set -euo pipefail
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names --no-elf-needed \
    --exported-interfaces-only --type-id-style hash --drop-private-types \
    --headers-dir "$1/include/pelkraft" --headers-dir "$1/system_tools/include/zvk" \
    --out-file "$3" "$2"
