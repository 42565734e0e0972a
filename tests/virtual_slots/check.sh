#!/usr/bin/env bash
# Fails unless a target gives the virtual operations of a source's classes the slots of a list:
#   check.sh CLANG TARGET SOURCE LIST [FLAG...]
# The target "host" is the one that Clang runs on. Nothing is linked or run, so that a target needs
# the headers of the source and no more.
set -euo pipefail
clang=$1 target=$2 source=$3 list=$4
shift 4
[ "$target" != host ] || target=$("$clang" -dumpmachine)
here=$(cd "$(dirname "$0")" && pwd)
found=$("$clang" --target="$target" -std=c++20 -DPELKRAFT_STATIC "$@" -I "$here/../.." \
    -I "$here/../../include" -I "$here/../../system_tools/include" \
    -Xclang -fdump-vtable-layouts -c -o /dev/null "$source" | awk -f "$here/slots_of.awk")

# The list's classes alone: the standard library has virtual tables too.
of_these_classes='
    {class = $0; sub(/\(.*/, "", class); sub(/::[^:]*$/, "", class); sub(/.*[ *&]/, "", class)}
    NR == FNR {wanted[class]; next}
    class in wanted'
diff --label expected --label "$target" -U0 <(LC_ALL=C sort "$list") \
    <(awk "$of_these_classes" "$list" - <<<"$found" | LC_ALL=C sort -u)
