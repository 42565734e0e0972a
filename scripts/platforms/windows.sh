#!/usr/bin/env bash
# Builds the library for Windows x64 with MinGW's GCC and with Clang, and runs its tests under Wine.
#   windows.sh whole    both compilers, all tests that Windows can run, the static library
#   windows.sh sample   GCC alone, and of the tests those of guards, registry, faults and digests
set -euo pipefail
cd "$(dirname "$0")/../.."
extent=${1:-whole}

bash scripts/setup.sh windows
# shellcheck source=scripts/platforms/wine_session.sh
source scripts/platforms/wine_session.sh windows
jobs=$(nproc)

build() {
    local compiler=$1
    shift
    cmake --preset "windows-$compiler" >"build/windows-$compiler.log"
    grep 'Structured exceptions' "build/windows-$compiler.log"
    cmake --build "build/windows-$compiler" -j"$jobs" "$@" >"build/windows-$compiler.log" ||
        { tail -n 40 "build/windows-$compiler.log" >&2 && return 1; }
}

# Tests print their last words, and the digests their line.
run() {
    local compiler=$1
    shift
    echo "-- windows-$compiler"
    ctest --test-dir "build/windows-$compiler" -j"$jobs" --output-on-failure "$@" |
        grep -vE '^ *(Start|[0-9]+/[0-9]+ Test .* Passed)' | sed '/^$/d'
    "$wine" "build/windows-$compiler/bin/check_goldens.exe" tests/reproducibility/goldens.txt 10 |
        tail -n 1
}

mkdir -p build
if [ "$extent" = sample ]; then
    build gcc --target test_rows test_exchanged_verdict test_customer_guards test_copy \
        test_pattern check_goldens
    run gcc -R '^(test_(rows|exchanged_verdict|customer_guards|copy|pattern)|needed_libraries|.*_exports_its_list)$'
    bash scripts/platforms/windows_program.sh sample
    exit 0
fi
for compiler in gcc clang; do
    build "$compiler"
    run "$compiler" -E '^check_goldens$'
done
bash scripts/platforms/windows_program.sh whole
