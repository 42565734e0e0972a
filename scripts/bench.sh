#!/usr/bin/env bash
# Builds the benchmarks as Release, runs them one after the other and writes docs/benchmarks.md.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target bench_conversions >/dev/null
results=$(mktemp)
trap 'rm -f "$results"' EXIT
build/release/benchmarks/rows/bench_conversions --benchmark_format=csv >"$results" 2>/dev/null

processor=$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' build/release/CMakeCache.txt)
{
    cat <<EOF
# Benchmarks

Written by \`bash scripts/bench.sh\` on $(date +%F).

Machine: $processor, $(nproc) cores. Compiler: $($compiler --version | head -1), Release (-O3).

## Row conversion

One row of CMYK, all of it in the first caches. The vector and the portable road go through the
public \`ImageRow\`, checks and buffers included. The plain loop is what a caller would write by
hand, compiled with -O3 by the same compiler and so vectorised by it where it can be. memcpy moves
as many bytes as the conversion reads and writes, half of them each.

Nanoseconds per source pixel, and in brackets gigabytes read and written per second:

| conversion | pixels | vector | portable | plain loop | memcpy | vector to portable |
|---|---|---|---|---|---|---|
EOF
    awk -F, '
        /^"/ {
            gsub(/"/, "", $1)
            split($1, part, "/")
            key = part[1] "/" part[3]
            if (!(key in seen)) { seen[key] = 1; order[++count] = key }
            nsPerPixel[key, part[2]] = 1e9 / $7
            rate[key, part[2]] = $6 / 1e9
        }
        function cell(key, road) { return sprintf("%.3f (%.1f)", nsPerPixel[key, road], rate[key, road]) }
        END {
            for (i = 1; i <= count; ++i) {
                key = order[i]
                split(key, part, "/")
                printf "| %s | %s | %s | %s | %s | %s | %.1f |\n", part[1], part[2],
                    cell(key, "vector"), cell(key, "portable"), cell(key, "plain_loop"),
                    cell(key, "memcpy"), nsPerPixel[key, "portable"] / nsPerPixel[key, "vector"]
            }
        }' "$results"
} >docs/benchmarks.md
echo "docs/benchmarks.md is written"
