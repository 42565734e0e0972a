#!/usr/bin/env bash
# Installs the build for Windows, and the static libraries of the same sources, and builds and runs
# a customer of each:
#   installed_for_windows.sh SOURCE_DIR BUILD_DIR TOOLCHAIN_FILE EMULATOR
set -euo pipefail
source_dir=$1 build_dir=$2 toolchain=$3 emulator=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The DLLs stand beside the program, as a customer ships them.
try_customer() {
    local prefix=$1 customer=$1.customer
    cmake -S "$here/consumer" -B "$customer" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -Dpelkraft_DIR="$prefix/lib/cmake/pelkraft" -DCMAKE_BUILD_TYPE=Release >/dev/null
    cmake --build "$customer" >/dev/null
    [ ! -d "$prefix/bin" ] || cp "$prefix"/bin/*.dll "$customer"
    "$emulator" "$customer/consumer.exe" </dev/null
}

cmake --install "$build_dir" --prefix "$work/shared" >/dev/null
for file in bin/libpelkraft.dll bin/libzvk_system_tools.dll lib/libpelkraft.dll.a \
    lib/libzvk_system_tools.dll.a include/pelkraft/image_row.h include/zvk/diagnostics.h \
    lib/cmake/pelkraft/pelkraftConfig.cmake; do
    [ -f "$work/shared/$file" ] || { echo "no $file is installed" >&2 && exit 1; }
done
echo "a customer of the DLLs"
try_customer "$work/shared"

cmake -S "$source_dir" -B "$build_dir/static" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF >/dev/null
cmake --build "$build_dir/static" >/dev/null
cmake --install "$build_dir/static" --prefix "$work/static" >/dev/null
echo "a customer of the static libraries, which exports nothing and needs no DLL of ours"
try_customer "$work/static"
objdump -p "$work/static.customer/consumer.exe" >"$work/described"
if grep -E 'Name Pointer|DLL Name: lib(pelkraft|zvk)' "$work/described"; then
    exit 1
fi
