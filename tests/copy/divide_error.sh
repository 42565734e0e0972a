#!/usr/bin/env bash
# Proves the divide error of the simulations at every level of optimisation, with one compiler.
#   divide_error.sh <compiler> <source folder> <scratch folder>
set -euo pipefail
compiler=$1
root=$2
scratch=$3
ulimit -c 0
mkdir -p "$scratch"

failures=0
fail() {
    echo "$compiler $level: $*: got status $status, '$output'" >&2
    failures=$((failures + 1))
}

run() {
    status=0
    # A shell of its own, so that the notice of a killed program stays out of the answer.
    output=$(bash -c '"$@"' shell "$program" "$@" 2>/dev/null) || status=$?
}

expect_divide_error() {
    run "$@"
    [ "$status" -eq $((128 + $(kill -l FPE))) ] || fail "$* must end by SIGFPE"
}

expect_copied() {
    local copied=$1
    shift
    run "$@"
    if [ "$status" -ne 0 ] || [ "$output" != "$copied" ]; then
        fail "$* must copy $copied bytes"
    fi
}

for level in -O0 -O2 -O3 "-O3 -flto"; do
    program=$scratch/probe
    flags=(-std=c++20 -I"$root" -I"$root/include" -I"$root/system_tools/include")
    # shellcheck disable=SC2206
    flags+=($level)
    objects=()
    for source in "$root"/copy/*.cpp "$root"/tests/copy/divide_error_probe.cpp; do
        object=$scratch/$(basename "$source" .cpp).o
        case $source in
        *_vector.cpp)
            case $(uname -m) in
            x86_64 | i?86) "$compiler" "${flags[@]}" -mssse3 -c "$source" -o "$object" ;;
            *) continue ;;
            esac
            ;;
        *) "$compiler" "${flags[@]}" -c "$source" -o "$object" ;;
        esac
        objects+=("$object")
    done
    rm -f "$program"
    "$compiler" "${flags[@]}" "${objects[@]}" -o "$program"

    for simulation in unaligned fixed variable; do
        expect_copied 256 "$simulation" 256 16
        for size in 0 1 48 2147483647 -1 -2147483648; do
            expect_divide_error "$simulation" "$size" 0
        done
    done
    for simulation in fixed variable; do
        expect_divide_error "$simulation" -2147483648 -1
        expect_copied 48 "$simulation" 51 3
    done
    expect_copied 0 unaligned -2147483648 -1
done
[ "$failures" -eq 0 ]
