#!/usr/bin/env bash
# Fails unless left_out_on_windows.md names each test in a file for POSIX alone, and no other.
set -euo pipefail
cd "$(dirname "$0")"
diff --label "tests in files for POSIX" --label "left_out_on_windows.md" -U0 \
    <(grep -hoE '^TEST(_F)?\(\w+, \w+\)' ./*_posix_test.cpp separations_test.cpp io_*_test.cpp \
        standard_streams_test.cpp | sed -E 's/.*\((\w+), (\w+)\)/\1.\2/' | sort) \
    <(sed -nE "s/^\| \`(\w+\.\w+)\` \|.*/\1/p" left_out_on_windows.md | sort)
