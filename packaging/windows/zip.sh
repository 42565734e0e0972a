#!/usr/bin/env bash
# Makes build/packages/pelkraft-VERSION-windows-x64.zip: the program, both DLLs with the runtime
# DLLs that they need, headers, import libraries, the CMake package and all licences.
#
# The runtime is shared: with one of its own in each DLL, what is thrown across their border would
# be counted as never caught.
set -euo pipefail
cd "$(dirname "$0")/../.."
bash scripts/setup.sh windows
bash scripts/setup.sh windows_program
bash scripts/platforms/windows_libraries.sh

build=build/windows-gcc
cmake --preset windows-gcc -DPELKRAFT_BUILD_TOOLS=ON >/dev/null
cmake --build "$build" --target pelkraft zvk_system_tools pelkraft_tool >/dev/null

version=$(sed -nE 's/^project\(pelkraft VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
name=pelkraft-$version-windows-x64
stage=build/windows-zip/$name
rm -rf build/windows-zip
mkdir -p "$stage/licences" build/packages
for component in runtime development client; do
    cmake --install "$build" --component "$component" --prefix "$stage" >/dev/null
done

# Those that the compiler has itself; all others belong to Windows.
needed() {
    x86_64-w64-mingw32-objdump -p "$@" | sed -n 's/.*DLL Name: //p' | sort -u
}
copied=1
while [ "$copied" = 1 ]; do
    copied=0
    for dll in $(needed "$stage"/bin/*); do
        from=$(x86_64-w64-mingw32-g++-posix -print-file-name="$dll")
        if [ -f "$from" ] && [ ! -e "$stage/bin/$dll" ]; then
            cp "$from" "$stage/bin/"
            copied=1
        fi
    done
done
x86_64-w64-mingw32-strip "$stage"/bin/*

cp packaging/windows/README.txt LICENSE NOTICE "$stage/"
cp build/windows-libraries/licences/* "$stage/licences/"
cp /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright "$stage/licences/gcc-runtime"
cp /usr/share/doc/mingw-w64-common/copyright "$stage/licences/mingw-w64"

rm -f "build/packages/$name.zip"
(cd build/windows-zip && find "$name" -type f | sort | zip -q -X -@ "../packages/$name.zip")
ls -l "build/packages/$name.zip"
