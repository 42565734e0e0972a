#!/usr/bin/env bash
# Compares the library with the golden digests of tests/reproducibility/: whole, built by both
# compilers at every optimisation level, on 1 to 16 threads at -O2 and on 1 and 16 at the others,
# with 1000 splits into bands at each, and the program on 1 to 16 threads. The sample is what the
# test programs of one build do anyway.
#   reproducibility.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
jobs=$(nproc)

bash scripts/setup.sh test
if [ "$1" = sample ]; then
    cmake --preset release >/dev/null
    cmake --build --preset release -j "$jobs" --target test_reproducibility test_client_threads
    ctest --test-dir build/release --output-on-failure -R '^test_(reproducibility|client_threads)$'
    echo "figure: 1 build"
    exit
fi
export PELKRAFT_TEST_FULL=1

# Prints the test's digests, so that those of one build can be held against the next one's.
digests_of() {
    local compiler=$1 level=$2 directory=build/reproducibility/$1-O$2 threads
    cmake -S . -B "$directory" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=None \
        -DCMAKE_CXX_FLAGS="-O$level" -DPELKRAFT_BUILD_TESTS=ON >/dev/null
    cmake --build "$directory" -j "$jobs" --target test_reproducibility >"$directory.build"
    threads=1,16
    [ "$level" != 2 ] || threads=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16
    PELKRAFT_TEST_THREADS=$threads \
        "$directory/tests/reproducibility/test_reproducibility" >"$directory.log" ||
        { tail -n 40 "$directory.log" >&2 && return 1; }
    grep '^digest of ' "$directory.log"
}

mkdir -p build/reproducibility
builds=0
for compiler in g++ clang++; do
    for level in 0 1 2 3; do
        echo "$compiler -O$level"
        digests_of $compiler $level | tee build/reproducibility/last.digests
        [ $builds -ne 0 ] || cp build/reproducibility/{last,first}.digests
        cmp build/reproducibility/{first,last}.digests
        builds=$((builds + 1))
    done
done

cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs" --target test_client_threads
build/release/tests/reproducibility/test_client_threads --gtest_brief=1
echo "figure: equal digests of 200 conversions and 3,000 pictures in $builds builds," \
    "1 to 16 threads, 1,000 splits into bands"
