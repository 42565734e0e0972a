#!/usr/bin/env bash
# Fails on a symbol outside the public surface, or a library beyond the language's runtimes:
#   exported_symbols.sh LIBPELKRAFT LIBSYSTEM_TOOLS
set -euo pipefail
status=0

check_symbols() {
    local library=$1 allowed=$2 strangers
    strangers=$(nm -DC --defined-only "$library" | cut -d' ' -f3- | grep -Ev "$allowed" || true)
    if [ -n "$strangers" ]; then
        printf '%s exports more than its public surface:\n%s\n' "$library" "$strangers" >&2
        status=1
    fi
}

check_libraries() {
    local strangers
    strangers=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -Ev "$2" || true)
    if [ -n "$strangers" ]; then
        printf '%s needs more than it may:\n%s\n' "$1" "$strangers" >&2
        status=1
    fi
}

class='zvk::Pelkraft::(ImageRow|DotWeavePattern)'
copies='zvk::Pelkraft::(intelMemcopy|copyByDwords|copySimulation(Unaligned|AlignedFixed|AlignedVariable))'
check_symbols "$1" "^($class::|$copies\(|(vtable|typeinfo|typeinfo name) for $class$)"
check_symbols "$2" \
    '^(zvk::(split|SystemTools::|Diagnostics::)|(vtable|typeinfo|typeinfo name) for zvk::Diagnostics::)'
runtimes='^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-[a-z0-9-]+)\.so'
check_libraries "$1" "$runtimes|^libzvk_system_tools\.so"
check_libraries "$2" "$runtimes"
exit $status
