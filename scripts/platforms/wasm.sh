#!/usr/bin/env bash
# Builds for WebAssembly, and runs the tests of the library in Node.js, at the levels that there are,
# 3 and 0, and those of the module for JavaScript in Node.js and in Chromium.
#   wasm.sh whole    all tests that make sense there, and all digests
#   wasm.sh sample   the module, the conversions, a tenth of the digests, and the page's build
set -euo pipefail
cd "$(dirname "$0")/../.."

case "${1:-whole}" in
whole)
    chosen=()
    every=1
    ;;
sample)
    chosen=(web_node web_browser web_module test_conversions test_converters check_goldens)
    every=10
    ;;
*)
    echo "usage: bash scripts/platforms/wasm.sh whole|sample" >&2
    exit 2
    ;;
esac

bash scripts/setup.sh wasm
npm ci --prefix web --no-fund --no-audit --loglevel=error
cmake --preset wasm -DPELKRAFT_GOLDEN_EVERY=$every >/dev/null

folder=build/wasm
log=$folder/build.log
targets=()
tests=()
if [ ${#chosen[@]} -ne 0 ]; then
    targets=(--target pelkraft_web pelkraft_web_scripts "${chosen[@]:3}")
    tests=(-R "^($(IFS='|' && echo "${chosen[*]}"))\$")
fi
if ! cmake --build --preset wasm "${targets[@]}" >"$log" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" | cut -c -500 >&2
    exit 1
fi
ctest --test-dir "$folder" -j "$(nproc)" --output-on-failure "${tests[@]}"
grep -a '^digest of .* level' "$folder/Testing/Temporary/LastTest.log"

# The page for authors is another build, in which the dither has no mask.
case "${1:-whole}" in
whole) bash scripts/web.sh --test ;;
sample) bash scripts/web.sh --build ;;
esac
