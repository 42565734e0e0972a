#!/usr/bin/env bash
# Builds the benchmarks as Release and runs them.
#   bench.sh          the two roads and the patterns, into their part of docs/benchmarks.md
#   bench.sh --peers  our rows beside public libraries, which it installs: into their part of the
#                     page, with its chart, and into the stored figures
#   bench.sh --check  compares the common jobs with the stored figures; exits 1 on a loss
set -euo pipefail
cd "$(dirname "$0")/.."
page=docs/benchmarks.md
picture=docs/pictures/benchmarks.svg
stored=benchmarks/peers/stored_ratios.json
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The last processor that this process may use: the first ones see most interrupts.
pinned() {
    if command -v taskset >/dev/null; then
        taskset -c "$(sed -n 's/^Cpus_allowed_list:.*[^0-9]//p' /proc/self/status)" "$@"
    else
        "$@"
    fi
}

# Puts the standard input between the page's two marks of a name.
replace_part() {
    local begin="<!-- $1: begin -->" end="<!-- $1: end -->"
    cat >"$work/part"
    awk -v begin="$begin" -v end="$end" -v part="$work/part" '
        $0 == begin { print; while ((getline line <part) > 0) print line; inside = 1; ++marks }
        $0 == end { inside = 0; ++marks }
        !inside { print }
        END { exit marks != 2 }' "$page" >"$work/page" || {
        echo "bench.sh: $page doesn't have the marks of $1" >&2
        exit 1
    }
    cat "$work/page" >"$page"
}

conversions_table() {
    cat <<EOF

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
        }' "$1"
}

patterns_table() {
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
        }' "$1"
}

write_roads() {
    bash scripts/setup.sh test
    cmake --preset release >/dev/null
    cmake --build --preset release -j "$(nproc)" --target bench_conversions bench_patterns \
        >/dev/null
    build/release/benchmarks/rows/bench_conversions --benchmark_format=csv \
        >"$work/conversions" 2>/dev/null
    build/release/benchmarks/pattern/bench_patterns --benchmark_format=csv \
        >"$work/patterns" 2>/dev/null

    local processor compiler
    processor=$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)
    compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' build/release/CMakeCache.txt)
    {
        echo "Written by \`bash scripts/bench.sh\` on $(date +%F)."
        echo
        echo "Machine: $processor, $(nproc) cores. Compiler: $($compiler --version | head -1)," \
            "Release (-O3)."
        conversions_table "$work/conversions"
        patterns_table "$work/patterns"
    } | replace_part roads
    echo "$page is written"
}

build_peers() {
    cmake -S . -B build/peers -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
        -DPELKRAFT_BUILD_PEER_BENCHMARKS=ON -DPython3_EXECUTABLE=/usr/bin/python3 |
        grep 'bench_peers: no' || true
    cmake --build build/peers -j "$(nproc)" --target bench_peers >/dev/null
}

# Three runs, each a process with its own places in memory, all entries in random order:
# measure REPETITIONS [FLAG...]
measure() {
    local run
    for run in 1 2 3; do
        pinned build/peers/benchmarks/peers/bench_peers "${@:2}" \
            --benchmark_min_time=0.01 --benchmark_repetitions="$1" \
            --benchmark_enable_random_interleaving=true \
            --benchmark_out="$work/$run.json" --benchmark_out_format=json >/dev/null 2>"$work/said" ||
            {
                cat "$work/said" >&2
                exit 1
            }
    done
}

write_peers() {
    bash scripts/setup.sh peers
    build_peers
    measure 5
    python3 -B benchmarks/peers/report.py store "bash scripts/bench.sh --peers" "$work"/[123].json \
        >"$work/stored"
    python3 -B benchmarks/peers/report.py table "$work/stored" >"$work/table"
    python3 -B benchmarks/peers/report.py chart "$work/stored" >"$work/chart"
    replace_part peers <"$work/table"
    cat "$work/stored" >"$stored"
    cat "$work/chart" >"$picture"
    echo "$page, $picture and $stored are written"
}

check_losses() {
    bash scripts/setup.sh bench
    build_peers
    measure 9 --common_only
    python3 -B benchmarks/peers/report.py check "$stored" "$work"/[123].json
}

case "${1:-}" in
"") write_roads ;;
--peers) write_peers ;;
--check) check_losses ;;
*)
    echo "usage: bash scripts/bench.sh [--peers | --check]" >&2
    exit 2
    ;;
esac
