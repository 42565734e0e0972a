#!/usr/bin/env bash
# What a push checks beside the tests: the Debian packages, the vector objects of a debug build, and a
# fixed sample of the evidence that is no test program of its own.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh test

bash scripts/package.sh
bash tests/package/deb_packages.sh .

# Without inlining a header's function that slipped into a vector file shows itself.
cmake --preset debug
cmake --build --preset debug -j "$(nproc)" --target pelkraft_objects
ctest --test-dir build/debug --output-on-failure -R vector_objects

bash scripts/evidence.sh --sample threads undefined_bytes sizes mutants_planted mutants_automatic \
    coverage static_analysis
