#!/usr/bin/env bash
# Makes the Debian packages libpelkraft1, libpelkraft-dev and pelkraft in build/packages/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh package

cmake -S . -B build/package -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
    -DCMAKE_INSTALL_PREFIX=/usr -DPELKRAFT_WARNINGS_AS_ERRORS=ON -DPELKRAFT_BUILD_TOOLS=ON >/dev/null
cmake --build build/package -j "$(nproc)"
rm -rf build/packages
(cd build/package && cpack -G DEB -B ../packages >/dev/null)
rm -rf build/packages/_CPack_Packages
ls -l build/packages/*.deb
