#!/usr/bin/env bash
# Prints the names that a library exports, sorted: names_of.sh LIBRARY
# The arguments of split are the standard library's to name, and the table of the log's interface
# is there or not, as the compiler needs it.
set -euo pipefail
nm -DC --defined-only "$1" | sed -E 's/^[0-9a-f]* [A-Za-z] //; s/^(zvk::split)[[(].*/\1/' |
    grep -vx 'vtable for zvk::Diagnostics::ILogSink' | LC_ALL=C sort -u
