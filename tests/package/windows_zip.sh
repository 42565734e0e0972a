#!/usr/bin/env bash
# Unpacks the zip for Windows into a folder with a blank in its name, runs the program from there,
# and builds and runs a customer of its CMake package: windows_zip.sh ZIP TOOLCHAIN_FILE WINE
set -euo pipefail
zip=$(realpath "$1") toolchain=$(realpath "$2") wine=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# What the zip lacks must not be found elsewhere.
unset WINEPATH

mkdir "$work/a fresh folder"
cd "$work/a fresh folder"
unzip -q "$zip"
prefix=$PWD/$(ls)
bin=$prefix/bin

echo "the program"
"$wine" "$bin/pelkraft.exe" --buildinfo
perl "$here/../tools/make_picture.pl" 61 40 4 8 lzw 1 >"$work/in.tif"
cd "$work"
"$wine" "$bin/pelkraft.exe" convert in.tif planes.tif --layout planar --bits 16
"$wine" "$bin/pelkraft.exe" convert planes.tif back.tif --layout interleaved --bits 8
"$wine" "$bin/pelkraft.exe" convert in.tif plain.tif
cmp back.tif plain.tif
if cmp -s in.tif planes.tif; then
    echo "the conversion changes nothing" >&2
    exit 1
fi
"$wine" "$bin/pelkraft.exe" simulate "$prefix/share/doc/pelkraft/examples/patterns/six_ink.txt" \
    in.tif dots.tif --preview seen.png
[ -s dots.tif ] && [ -s seen.png ]

echo "a customer of the CMake package"
cmake -S "$here/consumer" -B consumer -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -Dpelkraft_DIR="$prefix/lib/cmake/pelkraft" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build consumer >/dev/null
cp "$bin"/*.dll consumer/
"$wine" consumer/consumer.exe

echo "nothing is missing, and no other DLL there"
expected=$(echo ./lib{gcc_s_seh-1,pelkraft,stdc++-6,winpthread-1,zvk_system_tools}.dll)
dlls=$(cd "$bin" && LC_ALL=C && echo ./*.dll)
[ "$dlls" = "$expected" ] || { echo "the DLLs are $dlls" >&2 && exit 1; }
for file in LICENSE NOTICE README.txt licences/{tiff,libpng1.6,libjpeg-turbo,libdeflate} \
    licences/{libz-mingw-w64-dev,libcli11-dev,nlohmann-json3-dev,gcc-runtime,mingw-w64} \
    lib/libpelkraft.dll.a lib/libzvk_system_tools.dll.a include/pelkraft/image_row.h; do
    [ -s "$prefix/$file" ] || { echo "the zip lacks $file" >&2 && exit 1; }
done
