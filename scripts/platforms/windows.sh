#!/usr/bin/env bash
# Builds the library for Windows x64 with MinGW's GCC and with Clang, and runs its tests under Wine.
#   windows.sh whole    both compilers, all tests that Windows can run, all golden patterns
#   windows.sh sample   GCC alone, of the tests those of guards, registry, faults and digests, and
#                       one golden pattern of ten
set -euo pipefail
cd "$(dirname "$0")/../.."
extent=${1:-whole}
case "$extent" in
whole) every=1 ;;
sample) every=10 ;;
*)
    echo "usage: bash scripts/platforms/windows.sh whole|sample" >&2
    exit 2
    ;;
esac

bash scripts/setup.sh windows
# shellcheck source=scripts/platforms/wine_session.sh
source scripts/platforms/wine_session.sh windows
jobs=$(nproc)

# The guards must log structured exceptions by one compiler or another.
build() {
    local compiler=$1
    shift
    cmake --preset "windows-$compiler" >"build/windows-$compiler.log"
    grep 'Structured exceptions: by' "build/windows-$compiler.log" ||
        { echo "windows.sh: the guards of windows-$compiler log nothing" >&2 && return 1; }
    cmake --build "build/windows-$compiler" -j"$jobs" "$@" >"build/windows-$compiler.log" ||
        { tail -n 40 "build/windows-$compiler.log" >&2 && return 1; }
}

# Tests print their last words, and the digests their line.
run() {
    local compiler=$1
    shift
    echo "-- windows-$compiler"
    ctest --test-dir "build/windows-$compiler" -j"$jobs" --output-on-failure --no-tests=error "$@" |
        grep -vE '^ *(Start|[0-9]+/[0-9]+ Test .* Passed)' | sed '/^$/d'
    "$wine" "build/windows-$compiler/bin/check_goldens.exe" tests/reproducibility/goldens.txt \
        "$every" | grep '^digest of '
}

mkdir -p build
if [ "$extent" = sample ]; then
    build gcc --target test_rows test_exchanged_verdict test_customer_guards test_copy \
        test_pattern test_reference_setting check_goldens
    run gcc -R '^(test_(rows|exchanged_verdict|customer_guards|copy|pattern|reference_setting)|needed_libraries|.*_exports_its_list)$'
    bash scripts/platforms/windows_program.sh sample
    exit 0
fi
for compiler in gcc clang; do
    build "$compiler"
    run "$compiler" -E '^check_goldens$'
done
bash scripts/platforms/windows_program.sh whole
