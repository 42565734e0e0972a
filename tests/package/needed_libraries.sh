#!/usr/bin/env bash
# Fails on a library beyond the language's runtimes and our own:
#   needed_libraries.sh LIBPELKRAFT LIBSYSTEM_TOOLS
set -euo pipefail
status=0

needs_of() {
    case $1 in
    *.dll) objdump -p "$1" | sed -n 's/.*DLL Name: //p' ;;
    *) readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' ;;
    esac
}

check_libraries() {
    local strangers
    strangers=$(needs_of "$1" | grep -Ev "$2" || true)
    if [ -n "$strangers" ]; then
        printf '%s needs more than it may:\n%s\n' "$1" "$strangers" >&2
        status=1
    fi
}

runtimes='^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-[a-z0-9-]+)\.so'
# On Windows the system has the last two, and the first three are those of MinGW.
runtimes+='|^(libstdc\+\+-6|libgcc_s_seh-1|libwinpthread-1|KERNEL32|msvcrt)\.dll$'
check_libraries "$1" "$runtimes|^libzvk_system_tools\.(so|dll)|^ADVAPI32\.dll$"
check_libraries "$2" "$runtimes"
exit $status
