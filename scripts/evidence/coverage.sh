#!/usr/bin/env bash
# Lines and branches of the library that its own tests reach, counted by gcov in a build without
# optimisation. What can't be reached stands in tests/coverage/exceptions.txt, line by line with
# its reason. The sample only looks whether each of those lines is still there, since the build
# alone takes minutes.
#
# Left out as the compiler's own: the edges on which a call throws past a function that has no
# handler, and branches on lines without code (gcovr's --exclude-throw-branches and
# --exclude-unreachable-branches). For the same reason the preset has -fstack-reuse=none: without
# it GCC gives each vector instruction of an unrolled method an edge to the end of its scope.
set -euo pipefail
cd "$(dirname "$0")/../.."

list=tests/coverage/exceptions.txt
mapfile -t rooms < <(cat cmake/rooms.txt && echo include)
filters=("${rooms[@]/#/--filter=}")

bash scripts/setup.sh coverage
if [ "$1" = sample ]; then
    python3 tests/coverage/figures.py check $list
    exit
fi

# A report counts one run of the tests on the code as it is.
rm -rf build/coverage
cmake --preset coverage -DPELKRAFT_BUILD_TOOLS=OFF >/dev/null
cmake --build --preset coverage -j "$(nproc)" --target room_tests
# The sample of the direct road takes ten times as long in this build; a quarter reaches as much.
export PELKRAFT_TEST_CASES=2000
ctest --test-dir build/coverage -L '^room$' -j "$(nproc)" --output-on-failure
gcovr --root . "${filters[@]/%//}" -j "$(nproc)" \
    --exclude-throw-branches --exclude-unreachable-branches \
    --json build/coverage/coverage.json build/coverage

# A file that no test program holds is in no report. The mask's maker is none of the library's, and
# a test in Release makes the mask anew with it.
for source in $(git ls-files "${rooms[@]/%//*.cpp}" ':!*_windows.cpp' \
    ':!dither/mask_generator.cpp' ':!dither/write_mask_table.cpp'); do
    grep -q "\"file\": \"$source\"" build/coverage/coverage.json ||
        { echo "coverage.sh: $source is not in the report" >&2 && exit 1; }
done
python3 tests/coverage/figures.py measure $list build/coverage/coverage.json
