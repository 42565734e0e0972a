#!/usr/bin/env bash
# Fails on a library beyond the language's runtimes and our own:
#   needed_libraries.sh LIBPELKRAFT LIBSYSTEM_TOOLS
set -euo pipefail
status=0

check_libraries() {
    local strangers
    strangers=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -Ev "$2" || true)
    if [ -n "$strangers" ]; then
        printf '%s needs more than it may:\n%s\n' "$1" "$strangers" >&2
        status=1
    fi
}

runtimes='^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-[a-z0-9-]+)\.so'
check_libraries "$1" "$runtimes|^libzvk_system_tools\.so"
check_libraries "$2" "$runtimes"
exit $status
