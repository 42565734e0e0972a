#!/usr/bin/env bash
# clang-tidy with the checks of .clang-tidy, and cppcheck: a finding fails. Whole, both read every
# source file; the sample is cppcheck on all of them, and clang-tidy on one file of each room.
# cppcheck's remarks on style are asked for where they help: in the library and the program, but
# not "useStlAlgorithm", since a plain loop is often the plainer text; in tests it takes each
# field of a parameter's record for unused, and each EXPECT_EQ of two names for always true.
# A suppression stands in the line or the one before it, for named checks, with its reason.
#   static_analysis.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."

mapfile -t library < <(cat cmake/rooms.txt && echo include)
others=(tests benchmarks fuzz examples python web/module web/page/module)
mapfile -t sample < <(for room in "${library[@]}"; do git ls-files "$room/*.cpp" | head -n 1; done)
# They belong to builds of their own, and need no more than these flags.
apart=(tests/copy/divide_error_probe.cpp tests/package/consumer/main.cpp tests/rows/stack_test.cpp
    tests/virtual_slots/engines.cpp tests/virtual_slots/rows.cpp)
apart_flags=(-std=c++20 -I. -Iinclude -Isystem_tools/include)

# The headers of another system would be needed to read these.
foreign=tests/platforms/
# A table of numbers and nothing else, with which cppcheck is busy for longer than with all others.
table=dither/mask_table.cpp
# clang-tidy would need those of emscripten for these.
for_wasm=web/

sources_of() { git ls-files "${@/%//*.cpp}" "${@/%//*.h}" ":!$foreign"; }

require_reasons() {
    local marks='NOLINT|cppcheck-suppress' reasoned
    reasoned='NOLINT(NEXTLINE)?\([a-z][A-Za-z0-9.,-]*\): .|cppcheck-suppress [A-Za-z]+ // .'
    if git grep -nE "$marks" -- '*.cpp' '*.h' | grep -vE "$reasoned"; then
        echo "static_analysis.sh: no named check, or no reason" >&2
        exit 1
    fi
    suppressions=$(git grep -hE "$marks" -- '*.cpp' '*.h' | wc -l)
}

run_cppcheck() {
    cppcheck --quiet --error-exitcode=1 --inline-suppr --std=c++20 --language=c++ \
        --platform=unix64 --library=googletest -DPELKRAFT_VECTOR_ROAD -DPELKRAFT_WIDE_ROADS \
        -D__x86_64__ -D__SSE2__ -D__SSSE3__ -I. -Iinclude -Isystem_tools/include -j "$(nproc)" \
        -i "$foreign" -i "$table" "$@"
}

# Without the header that is read once for all tests a source that doesn't include it shows itself.
run_clang_tidy() {
    cmake -S . -B build/analysis -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
        -DPELKRAFT_BUILD_TESTS=ON -DPELKRAFT_BUILD_TOOLS=ON -DPELKRAFT_BUILD_BENCHMARKS=ON \
        -DPELKRAFT_BUILD_FUZZERS=ON -DPELKRAFT_BUILD_PEER_BENCHMARKS=ON \
        -DPELKRAFT_BUILD_PYTHON=ON -DPython3_EXECUTABLE=/usr/bin/python3 \
        -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
    run-clang-tidy -p build/analysis -j "$(nproc)" -quiet "${@/#/^$PWD/}" 2>build/evidence/tidy.log
}

# A file that no build holds would pass unread.
require_all_built() {
    local source
    for source in $(git ls-files '*.cpp' ":!$foreign" ":!$for_wasm"); do
        [[ " ${apart[*]} " == *" $source "* ]] ||
            grep -q "\"file\": \"$PWD/$source\"" build/analysis/compile_commands.json ||
            { echo "static_analysis.sh: no build holds $source" >&2 && exit 1; }
    done
}

bash scripts/setup.sh analysis
mkdir -p build/evidence
require_reasons
run_cppcheck --enable=warning,performance,portability,style --suppress=useStlAlgorithm \
    "${library[@]}" tools
run_cppcheck --enable=warning,performance,portability "${others[@]}"
checked=$(sources_of "${library[@]}" tools "${others[@]}" | wc -l)

if [ "$1" = sample ]; then
    run_clang_tidy "${sample[@]}"
    read_by_tidy=${#sample[@]}
else
    run_clang_tidy "${library[@]/%//}" tools/ "${others[@]/%//}"
    require_all_built
    clang-tidy --quiet "${apart[@]}" -- "${apart_flags[@]}"
    read_by_tidy=$(git ls-files '*.cpp' ":!$foreign" ":!$for_wasm" | wc -l)
fi
echo "figure: 0 findings of clang-tidy in $read_by_tidy sources with their headers and of" \
    "cppcheck in $checked files, $suppressions suppressions with their reasons"
