#!/usr/bin/env bash
# Makes ten thousand small pages on two workers of Dask, then of plain processes, and kills one of
# them every 100 pages: each page must be right, with the bytes of a serial run, and made once. The
# sample is 300 pages, which the tests make too.
#   pages.sh whole|sample
set -euo pipefail
cd "$(dirname "$0")/../.."
pages=10000 every=100
[ "$1" = whole ] || pages=300 every=50

bash scripts/setup.sh test
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target pelkraft_python
export PYTHONPATH=build/release/python PYTHONDONTWRITEBYTECODE=1
try() {
    /usr/bin/python3 tests/pages/many_pages.py "$pages" "$every" "$1" | tee /dev/stderr | tail -n 1
}
dask=$(try dask)
processes=$(try processes)
echo "figure: $dask; $processes"
