#!/usr/bin/env bash
# Every promise of docs/promises.md names tests that exist, of GoogleTest by suite and name, of
# pytest by their function, others as ctest knows them: promises.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source_dir=$1 build_dir=$2
tests=$(
    find "$source_dir/tests" -name '*.cpp' -exec cat {} + | tr '\n' ' ' |
        grep -oE 'TEST(_F|_P)?\( *\w+, *\w+ *\)' | sed -E 's/.*\( *(\w+), *(\w+) *\)/\1.\2/'
    find "$source_dir/tests" -name '*_test.py' -exec sed -nE 's/^def (test_\w+).*/\1/p' {} +
    # Another ctest would take the log of the one that runs this.
    find "$build_dir" -name CTestTestfile.cmake -exec sed -nE 's/^add_test\((\[=*\[)?([^] "]+).*/\2/p' {} +
)
status=0 promises=0
while IFS='|' read -r _ promise names _; do
    promises=$((promises + 1))
    found=0
    for name in $(tr -d '`,' <<<"$names"); do
        found=1
        if ! grep -qxF "$name" <<<"$tests"; then
            echo "docs/promises.md: there is no test $name, which holds:$promise" >&2
            status=1
        fi
    done
    if [ $found -eq 0 ]; then
        echo "docs/promises.md: no test holds:$promise" >&2
        status=1
    fi
done < <(grep '^|' "$source_dir/docs/promises.md" | grep -vE '^\|( promise |---)')
echo "$promises promises, each with its tests"
[ $promises -ne 0 ] && exit $status
