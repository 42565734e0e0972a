#!/usr/bin/env bash
# Rewrites the descriptions of the binary interface in abi/ from a release build. Look at the
# difference before you commit it: CONTRIBUTING.md says what it means for the version.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release --target pelkraft zvk_system_tools pelkraft_abi zvk_system_tools_abi

for library in build/release/libpelkraft.so build/release/system_tools/libzvk_system_tools.so; do
    name=$(basename "$library" .so)
    bash tests/abi/describe.sh . "build/release/tests/abi/$name.so" "abi/$name.abi"
    bash tests/abi/names_of.sh "$library" >"abi/$name.symbols"
done
git status --short abi
