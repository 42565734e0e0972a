#!/usr/bin/env bash
# Prints the names that a library exports, sorted: names_of.sh LIBRARY
# The arguments of split are the standard library's to name, and the table of the log's interface
# is there or not, as the compiler needs it.
# From a DLL only some compilers export what they know of a type.
set -euo pipefail
case $1 in
*.dll) objdump -p "$1" | sed -n '/Ordinal\/Name Pointer/,/^$/ s/^\t\[ *[0-9]*\] //p' | c++filt | grep -v '^typeinfo ' ;;
*) nm -DC --defined-only "$1" ;;
esac | sed -E 's/^[0-9a-f]* [A-Za-z] //; s/^(zvk::split)[[(].*/\1/' |
    grep -vx 'vtable for zvk::Diagnostics::ILogSink' | LC_ALL=C sort -u
