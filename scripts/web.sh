#!/usr/bin/env bash
# Builds the page for authors of dot patterns into build/web/, and serves it to this machine alone.
#   web.sh [PORT]    builds and serves, at http://127.0.0.1:8321/ if no other port is named
#   web.sh --build   only builds, and says how large the page is
#   web.sh --test    builds, and runs all tests of the page, beside the program and in Chromium
#   web.sh --measure builds, and measures the page in Chromium; the machine must do nothing else
# It installs what is missing. The folder can be put on any server of files as it is.
set -euo pipefail
cd "$(dirname "$0")/.."

modules=build/wasm-page/web/page
page=build/web
engine_page=build/web-engine
port=8321
case "${1:-}" in
--build | --test | --measure | "") ;;
*[!0-9]*)
    sed -n 's/^#   web.sh/usage: bash scripts\/web.sh/p' "$0" >&2
    exit 2
    ;;
*) port=$1 ;;
esac

# Says nothing of a build that goes well.
quietly() {
    local log=build/web.log
    mkdir -p build
    "$@" >"$log" 2>&1 || { grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" | cut -c -500 >&2 && return 1; }
}

build() {
    bash scripts/setup.sh web
    quietly npm ci --prefix web --no-fund --no-audit --loglevel=error
    bash scripts/platforms/page_libraries.sh
    quietly cmake --preset wasm-page
    quietly cmake --build --preset wasm-page --target page_modules
    node web/page/build.mjs "$modules" "$page"
    quietly node web/node_modules/typescript/bin/tsc -p web/page
    PELKRAFT_WEB=$PWD/$page node web/page/tests/budget.js
}

# The program of the release build, or one of its own kind without tests.
build_program() {
    [ -e build/release/build.ninja ] || quietly cmake --preset release -DPELKRAFT_BUILD_TESTS=OFF \
        -DPELKRAFT_BUILD_BENCHMARKS=OFF -DPELKRAFT_BUILD_PYTHON=OFF
    quietly cmake --build build/release --target pelkraft_tool
}

# Chromium, and a page that has the engine and nothing else.
prepare_browser() {
    bash scripts/setup.sh web_test
    node web/page/tests/engine/build_engine_page.mjs "$modules" "$engine_page"
    PELKRAFT_CHROMIUM=$(command -v chromium)
    export PELKRAFT_CHROMIUM
}

run_tests() {
    prepare_browser
    build_program
    export PELKRAFT_MODULES=$PWD/$modules PELKRAFT_WEB=$PWD/$page
    export PELKRAFT_ENGINE_PAGE=$PWD/$engine_page
    export PELKRAFT_PROGRAM=$PWD/build/release/tools/pelkraft/pelkraft
    node --test web/page/tests/*.test.js web/page/tests/engine/*.test.js
}

build
case "${1:-}" in
--build) ;;
--test) run_tests ;;
--measure)
    prepare_browser
    node web/page/measure.mjs "$page" "$engine_page"
    ;;
*) exec node web/page/serve.mjs "$page" "$port" ;;
esac
