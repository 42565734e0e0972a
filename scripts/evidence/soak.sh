#!/usr/bin/env bash
# Random conversions, patterns and copies on four threads, held against naive results, while the
# memory is watched: two hours, or some seconds as a sample.
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds=7200
[ "$1" = whole ] || seconds=10

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target soak
build/release/tests/soak/soak $seconds 4
