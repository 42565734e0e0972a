#!/usr/bin/env bash
# Builds and runs customers of an installed prefix: customers.sh SOURCE_DIR PREFIX COMPILER
set -euo pipefail
source_dir=$1 prefix=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pkg_config_dir=$(dirname "$(find "$prefix" -name pelkraft.pc)")
lib_dir=$(dirname "$pkg_config_dir")

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
awk '/^```cpp$/ {inside = 1; next} /^```$/ {inside = 0} inside' "$source_dir/README.md" \
    >"$work/readme.cpp"
"$compiler" -std=c++11 -Wall -Wextra -Wpedantic -Werror "$work/readme.cpp" "${flags[@]}" \
    -o "$work/readme" -Wl,-rpath-link,"$lib_dir"

echo "the README's example prints what its comment says"
expected=$(sed -n 's|.*std::printf.*// ||p' "$work/readme.cpp")
printed=$(LD_LIBRARY_PATH=$lib_dir "$work/readme")
if [ -z "$expected" ] || [ "${printed% }" != "$expected" ]; then
    echo "expected '$expected', printed '$printed'" >&2
    exit 1
fi

echo "every public header alone, from C++11 to C++20"
(cd "$prefix/include" && find . -name '*.h') | while read -r header; do
    echo "#include \"$header\"" >"$work/alone.cpp"
    for standard in 11 14 17 20; do
        "$compiler" -std=c++$standard -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror \
            -I"$prefix/include" -fsyntax-only "$work/alone.cpp"
    done
done
