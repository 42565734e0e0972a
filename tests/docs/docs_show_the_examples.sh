#!/usr/bin/env bash
# Every block in C or C++ of the pages stands below a line that names its program, and is that program to
# the letter; every program is shown, every pattern and picture spoken of, and every text that the
# header of patterns promises to throw. The README's figures are the measured ones:
#   docs_show_the_examples.sh SOURCE_DIR
set -euo pipefail
cd "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

for page in docs/*.md; do
    awk -v work="$work" -v page="$page" '
        /^<!-- examples\/[a-z_]+\.c(pp)? -->$/ { name = $2; sub(/.*\//, "", name); next }
        /^```c(pp)?$/ { inside = 1; file = work "/" (name == "" ? "nameless-" NR : name); next }
        /^```$/ && inside { inside = 0; name = ""; next }
        inside { print >file }' "$page"
done
for shown in "$work"/*; do
    diff "examples/$(basename "$shown")" "$shown" || status=1
done
for program in examples/*.c*; do
    if [ ! -f "$work/$(basename "$program")" ]; then
        echo "$program is shown on no page" >&2
        status=1
    fi
done
for file in examples/patterns/* docs/pictures/*; do
    if ! grep -qF "${file#docs/}" README.md docs/*.md; then
        echo "no page speaks of $file" >&2
        status=1
    fi
done
while IFS= read -r text; do
    if ! grep -qF "| \`$text\` |" docs/failures.md; then
        echo "docs/failures.md doesn't have: $text" >&2
        status=1
    fi
done < <(sed -nE 's|^// +"([^"]+)".*|\1|p' include/pelkraft/dot_weave_pattern.h)
figures=0
while IFS= read -r figure; do
    figures=$((figures + 1))
    if ! grep -qF "$figure" docs/benchmarks.md docs/reliability.md; then
        echo "README.md has a figure that was not measured: $figure" >&2
        status=1
    fi
done < <(sed -nE 's/^\|[^|]+\| ([^|]+) \| `bash scripts\/(bench|evidence)\.sh.*/\1/p' README.md)
[ $figures -ne 0 ] || status=1
exit $status
