#!/usr/bin/env bash
# Every C++ block of the pages stands behind a line that names its program, and is that program
# to the letter; every program is shown. docs_show_the_examples.sh SOURCE_DIR
set -euo pipefail
cd "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

for page in docs/*.md; do
    awk -v work="$work" -v page="$page" '
        /^<!-- examples\/[a-z_]+\.cpp -->$/ { name = $2; sub(/.*\//, "", name); next }
        /^```cpp$/ { inside = 1; file = work "/" (name == "" ? "nameless-" NR : name); next }
        /^```$/ && inside { inside = 0; name = ""; next }
        inside { print >file }' "$page"
done
for shown in "$work"/*; do
    diff "examples/$(basename "$shown")" "$shown" || status=1
done
for program in examples/*.cpp; do
    if [ ! -f "$work/$(basename "$program")" ]; then
        echo "$program is shown on no page" >&2
        status=1
    fi
done
exit $status
