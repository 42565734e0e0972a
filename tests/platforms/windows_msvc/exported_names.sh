#!/usr/bin/env bash
# Fails unless a DLL in Microsoft's binary interface exports the names of the lists and no other,
# but for the assignments and constructors that a compiler makes of itself:
#   exported_names.sh DLL LIST...
# The lists are those of other systems, which export what they know of a type as well.
set -euo pipefail
dll=$1
shift
made_by_compilers='(OptionalParameters|ILogSink|StandardExceptionLogger)::(operator=|ILogSink)'
diff --label expected --label exported -U0 \
    <(grep -hv '^typeinfo ' "$@" | LC_ALL=C sort -u) \
    <(llvm-readobj-14 --coff-exports "$dll" | sed -n 's/^ *Name: //p' | llvm-undname-14 |
        grep -v '^?' | grep . | sed -E "
            s/^const (.*)::\`vftable'\$/vtable for \1/
            s/.* __cdecl //
            s/^public: static int const //
            s/\b(class|struct|enum) //g
            s/ ([*&])/\1/g
            s/\(void\)/()/
            s/^(zvk::split)\(.*/\1/" |
        grep -vE "$made_by_compilers|vtable for zvk::Diagnostics::ILogSink" | LC_ALL=C sort -u)
