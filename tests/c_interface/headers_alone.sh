#!/usr/bin/env bash
# Compiles each header of the C interface alone, without a warning, and fails if a function that the
# library exports is not called by the client in C:
#   headers_alone.sh SOURCE_DIR C_COMPILER CXX_COMPILER
set -euo pipefail
source_dir=$1 c_compiler=$2 cxx_compiler=$3
warnings=(-pedantic -Wall -Wextra -Wconversion -Wshadow -Werror "-I$source_dir/include" -fsyntax-only)
compiles() {
    echo "#include \"pelkraft/$1\"" | "$2" -x "$3" -std="$4" "${warnings[@]}" -
}
for header in plan dither; do
    for standard in c99 c11 c17; do
        compiles $header.h "$c_compiler" c $standard
    done
    for standard in c++11 c++14 c++17 c++20; do
        compiles $header.h "$cxx_compiler" c++ $standard
    done
    for standard in c++17 c++20; do
        compiles $header.hpp "$cxx_compiler" c++ $standard
    done
done

status=0
while read -r name; do
    if ! grep -qF "$name(" "$source_dir/tests/c_interface/client.c"; then
        echo "client.c does not call $name" >&2
        status=1
    fi
done < <(grep -x 'plk_.*' "$source_dir/abi/libpelkraft.symbols")
exit $status
