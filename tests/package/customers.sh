#!/usr/bin/env bash
# Builds and runs customers of an installed prefix: customers.sh SOURCE_DIR PREFIX COMPILER
set -euo pipefail
source_dir=$1 prefix=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pkg_config_dir=$(dirname "$(find "$prefix" -name pelkraft.pc)")
lib_dir=$(dirname "$pkg_config_dir")

# Prints a block of the README, by its language.
readme_block() {
    awk -v fence="\`\`\`$1" '$0 == fence {inside = 1; next} /^```$/ {inside = 0} inside' \
        "$source_dir/README.md"
}
readme_block cpp >"$work/readme.cpp"

for standard in 11 20; do
    echo "a CMake project in C++$standard, with find_package"
    cmake -S "$here/consumer" -B "$work/consumer$standard" -G Ninja \
        -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_STANDARD=$standard >/dev/null
    cmake --build "$work/consumer$standard" >/dev/null
    "$work/consumer$standard/consumer"
done

echo "a plain compiler call, with pkg-config"
ln -s "$prefix" "$work/prefix"
export PKG_CONFIG_PATH=$work/prefix/${pkg_config_dir#"$prefix"/}
# A static library brings along what it needs itself.
kind=
[ -e "$lib_dir/libpelkraft.so" ] || kind=--static
read -ra flags <<<"$(pkg-config --cflags --libs $kind pelkraft)"
"$compiler" -std=c++11 -Wall -Wextra -Wpedantic -Werror "$work/readme.cpp" "${flags[@]}" \
    -o "$work/readme" -Wl,-rpath-link,"$lib_dir"

echo "the README's lines for CMake"
mkdir "$work/my_rip"
{
    echo 'cmake_minimum_required(VERSION 3.22)'
    echo 'project(my_rip LANGUAGES CXX)'
    echo 'add_executable(my_rip ../readme.cpp)'
    readme_block cmake
} >"$work/my_rip/CMakeLists.txt"
cmake -S "$work/my_rip" -B "$work/my_rip/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work/my_rip/build" >/dev/null

echo "the README's example prints what its comment says, built either way"
expected=$(sed -n 's|.*std::printf.*// ||p' "$work/readme.cpp")
for program in "$work/readme" "$work/my_rip/build/my_rip"; do
    printed=$(LD_LIBRARY_PATH=$lib_dir "$program")
    if [ -z "$expected" ] || [ "${printed% }" != "$expected" ]; then
        echo "expected '$expected', printed '$printed'" >&2
        exit 1
    fi
done

echo "every public header alone, from C++11 to C++20, and the licence"
grep -qx 'License: Apache-2.0' "$PKG_CONFIG_PATH/pelkraft.pc"
(cd "$prefix/include" && find pelkraft zvk -name '*.h*') | while read -r header; do
    head -n 1 "$prefix/include/$header" |
        grep -qxE '// SPDX-License-Identifier: Apache-2.0|/\* SPDX-License-Identifier: Apache-2.0 \*/'
    echo "#include \"$header\"" >"$work/alone.cpp"
    case $header in
    *.hpp) standards="17 20" ;;
    *) standards="11 14 17 20" ;;
    esac
    for standard in $standards; do
        "$compiler" -std=c++"$standard" -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror \
            -I"$prefix/include" -fsyntax-only "$work/alone.cpp"
    done
done
