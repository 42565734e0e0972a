#!/usr/bin/env bash
# Builds for 64-bit Arm, whose vectors SIMDe uses, and for RISC-V, for which it has plain code, and
# runs the tests under qemu, at the levels that there are: 3 and 0. A build without SIMDe's headers
# has level 0 alone.
#   arm.sh whole    all tests and digests on Arm; those of roads, rows and digests on RISC-V with these headers
#                   and without, where the tests that are missing are named
#   arm.sh sample   the tests of roads, kernels, rows and digests on Arm, with PELKRAFT_TEST_CASES
#                   conversions at each level, and a few on RISC-V
set -euo pipefail
cd "$(dirname "$0")/../.."
extent=${1:-whole}
case "$extent" in
whole | sample) ;;
*)
    echo "usage: bash scripts/platforms/arm.sh whole|sample" >&2
    exit 2
    ;;
esac
bash scripts/setup.sh arm

# run_tests FOLDER LEVEL [PROGRAM...]: builds these, or all there are, and runs them. The digests
# must have been compared up to this level.
run_tests() {
    local folder=$1 level=$2 log=$1/build.log chosen=()
    shift 2
    [ $# -eq 0 ] || chosen=(-R "^($(IFS='|' && echo "$*"))\$")
    if ! cmake --build "$folder" ${1:+--target "$@"} >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" >&2
        return 1
    fi
    ctest --test-dir "$folder" -j "$(nproc)" --output-on-failure "${chosen[@]}"
    grep -a "^digest of .* at level $level: .*, as the goldens" \
        "$folder/Testing/Temporary/LastTest.log"
}

list_tests() {
    qemu-riscv64 -L /usr/riscv64-linux-gnu "$1" --gtest_list_tests |
        awk '/^ / { print suite $1; next } { suite = $1 }' | sort
}

# name_left_out FOLDER OTHER PROGRAM...: says which tests of the first folder the other one lacks.
name_left_out() {
    local program
    for program in "${@:3}"; do
        comm -23 <(list_tests "$1/tests/"*"/$program") <(list_tests "$2/tests/"*"/$program") |
            sed "s|^|not run in $2: |"
    done
}

basics=(test_common test_system_tools test_direct_samples)
programs=("${basics[@]}" test_rows test_direct_road)
cmake --preset arm64 -DPELKRAFT_GOLDEN_EVERY=10 >/dev/null
cmake --preset riscv64 >/dev/null
if [ "$extent" = sample ]; then
    export PELKRAFT_TEST_CASES=${PELKRAFT_TEST_CASES:-2000}
    run_tests build/arm64 3 "${programs[@]}" check_goldens
    run_tests build/riscv64 3 "${basics[@]}" check_goldens
    exit 0
fi

cmake --preset arm64 -DPELKRAFT_GOLDEN_EVERY=1 >/dev/null
run_tests build/arm64 3
run_tests build/riscv64 3 "${programs[@]}" check_goldens
portable=build/riscv64-portable
cmake --preset riscv64 -B $portable -DPELKRAFT_SIMDE_INCLUDE=OFF 2>&1 >/dev/null | grep '^pelkraft: '
run_tests $portable 0 "${programs[@]}" check_goldens
name_left_out build/riscv64 $portable "${programs[@]}"
