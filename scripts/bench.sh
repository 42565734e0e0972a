#!/usr/bin/env bash
# Builds the benchmarks as Release, runs them one after the other and writes docs/benchmarks.md.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh test

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target bench_conversions bench_patterns \
    >/dev/null
results=$(mktemp)
patterns=$(mktemp)
trap 'rm -f "$results" "$patterns"' EXIT
build/release/benchmarks/rows/bench_conversions --benchmark_format=csv >"$results" 2>/dev/null
build/release/benchmarks/pattern/bench_patterns --benchmark_format=csv >"$patterns" 2>/dev/null

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
    cat <<EOF

## Dot patterns

Four in-colours, 64 combinations. The plain loop asks a random engine for each pixel; the bare loop
is one 16-byte load, two byte shuffles and one store per pixel over the same field.

Nanoseconds per pixel, and in brackets megapixels per second; for a load, milliseconds per text:

| what | out-inks | pixels | time |
|---|---|---|---|
EOF
    awk -F, '
        /^"/ {
            gsub(/"/, "", $1)
            inks = pixels = "-"
            name = $1
            if (match(name, /inks:[0-9]+/)) inks = substr(name, RSTART + 5, RLENGTH - 5)
            if (match(name, /pixels:[0-9]+/)) pixels = substr(name, RSTART + 7, RLENGTH - 7)
            sub(/\/inks:.*/, "", name)
            if (name ~ /^LoadText/)
                printf "| %s | %s | %s | %.2f ms |\n", name, inks, pixels,
                    $4 * ($5 == "ns" ? 1e-6 : $5 == "us" ? 1e-3 : 1)
            else
                printf "| %s | %s | %s | %.2f (%.0f) |\n", name, inks, pixels, 1e3 / $11, $11
        }' "$patterns"
} >docs/benchmarks.md
echo "docs/benchmarks.md is written"
