#!/usr/bin/env bash
# Builds the reference of the public headers, and fails on a warning or on a public entity that no
# comment stands for: docs.sh [FOLDER]. Without a folder it goes to build/reference/.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v doxygen >/dev/null || bash scripts/setup.sh docs
export PELKRAFT_REFERENCE=${1:-build/reference}
PELKRAFT_VERSION=$(sed -nE 's/^project\(pelkraft VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
export PELKRAFT_VERSION
mkdir -p "$PELKRAFT_REFERENCE"
rm -rf "${PELKRAFT_REFERENCE:?}/xml"
doxygen docs/Doxyfile

# Doxygen itself doesn't warn of constants, nor of what is in a namespace without a comment.
find "$PELKRAFT_REFERENCE/xml" '(' -name '*zvk*.xml' -o -name '*plk*.xml' -o -name 'plan_8h.xml' ')' -print0 |
    xargs -0 awk '
        /<compounddef / {within = hidden = /prot="private"/}
        /<memberdef / {hidden = within || /prot="private"/}
        /<(compound)?name>/ {name = $0; gsub(/ *<[^>]*>/, "", name)}
        /<briefdescription>/ {lines = 1; next}
        lines && !/^ *<\/?(brief|detailed)description>$/ {lines = 0}
        lines && ++lines == 4 && !hidden {print FILENAME ": " name " has no comment"; found = 1}
        END {exit found}' >&2
echo "$PELKRAFT_REFERENCE/html/index.html"
