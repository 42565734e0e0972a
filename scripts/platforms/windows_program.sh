#!/usr/bin/env bash
# Builds the program for Windows with the libraries that it needs, runs its tests under Wine, and
# makes and tries the zip:
#   windows_program.sh whole|sample
# Its files are held against those of the program for Linux, which the whole builds for it and the
# sample takes if it is there. The sample has the tests of files and their names alone.
set -euo pipefail
cd "$(dirname "$0")/../.."
extent=${1:-whole}
case "$extent" in
whole | sample) ;;
*)
    echo "usage: bash scripts/platforms/windows_program.sh whole|sample" >&2
    exit 2
    ;;
esac
bash scripts/setup.sh windows
bash scripts/setup.sh windows_program
bash scripts/platforms/windows_libraries.sh
build=build/windows-gcc

cmake --preset windows-gcc -DPELKRAFT_BUILD_TOOLS=ON >"$build.log"
targets=(pelkraft_tool test_tools)
[ "$extent" = sample ] || targets+=(test_tools_pattern test_client_threads)
cmake --build "$build" --target "${targets[@]}" >"$build.log" ||
    { tail -n 40 "$build.log" >&2 && exit 1; }

# shellcheck source=scripts/platforms/wine_session.sh
source scripts/platforms/wine_session.sh windows
tests='^(test_tools|test_tools_pattern|test_client_threads)$'
if [ "$extent" = sample ]; then
    tests='^test_tools$'
    export GTEST_FILTER='Convert*:Output*:Pipes*:ShownText*-Every/*:*Truncation*:*Damaged*'
fi
ctest --test-dir "$build" --output-on-failure --no-tests=error -R "$tests"
unset GTEST_FILTER
bash tests/tools/windows_console.sh "$build/bin/pelkraft.exe" "$wine"

bash scripts/package.sh --windows
version=$(sed -nE 's/^project\(pelkraft VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
bash tests/package/windows_zip.sh "build/packages/pelkraft-$version-windows-x64.zip" \
    cmake/toolchains/windows-gcc.cmake "$wine"

linux=build/release/tools/pelkraft/pelkraft
if [ "$extent" = whole ]; then
    linux=build/linux-program/tools/pelkraft/pelkraft
    cmake -S . -B build/linux-program -G Ninja -DPELKRAFT_BUILD_TOOLS=ON >/dev/null
    cmake --build build/linux-program --target pelkraft_tool >/dev/null
fi
if [ -x "$linux" ]; then
    bash tests/tools/same_files.sh "$PWD/$linux" "$PWD/$build/bin/pelkraft.exe" "$wine"
else
    echo "windows_program.sh: without $linux, same_files.sh is skipped"
fi
