#!/usr/bin/env bash
# Fuzzes one target with libFuzzer and both sanitizers: whole, until it has had one hour of processor
# time; the sample, for some seconds. Ends at the first finding, which is left in build/fuzz/. An
# interrupted run goes on where it was, unless the target has changed since: an hour counts for one
# build alone.
#   fuzzing.sh whole|sample TARGET   TARGET is a name in fuzz/CMakeLists.txt, as fuzz_plan_run
set -euo pipefail
cd "$(dirname "$0")/../.."

wanted_seconds=3600
round_seconds=300
if [ "$1" = sample ]; then
    wanted_seconds=1
    round_seconds=30
fi
target=$2
name=${target#fuzz_}

case $name in
row_conversion) options="-max_len=128" ;;
plan_run | dither_run) options="-max_len=256" ;;
pattern_text) options="-max_len=2048 -dict=../../fuzz/pattern_text.dict" ;;
verb_*) options="-max_len=4096 -rss_limit_mb=4096 -close_fd_mask=3" ;;
esac
# All verbs of the program begin with the same files.
corpus=$name
[[ $name != verb_* ]] || corpus=tiff_file

# One round, whose processor time, executions and covered edges become a line of the record.
run_round() {
    # shellcheck disable=SC2086 # a list of words
    (cd build/fuzz && TIMEFORMAT='processor: %U %S' && time ./fuzz/"$target" \
        -max_total_time=$round_seconds -timeout=300 -rss_limit_mb=2048 -print_final_stats=1 \
        $options "found/$name" "../../fuzz/corpus/$corpus") >"$log" 2>&1 ||
        { tail -n 40 "$log" && return 1; }
    awk '/^processor:/ { seconds = $2 + $3 }
        /^stat::number_of_executed_units:/ { executions = $2 }
        / cov: / { for (i = 1; i < NF; ++i) if ($i == "cov:") edges = $(i + 1) }
        END { print seconds, executions, edges }' "$log" >>"$record"
}

bash scripts/setup.sh test
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)" --target "$target"
found=build/fuzz/found/$name
mkdir -p "$found"
build=$(sha256sum "build/fuzz/fuzz/$target" | cut -c 1-12)
log=$found.log
record=$found-$build.$1
[ "$1" = whole ] || : >"$record"
touch "$record"
while awk -v wanted=$wanted_seconds '{ s += $1 } END { exit s >= wanted }' "$record"; do
    run_round
done
awk '{ s += $1; n += $2; if ($3 > edges) edges = $3 }
    END { printf "figure: %d executions, %d edges, %d s; 0 findings\n", n, edges, s }' "$record"
