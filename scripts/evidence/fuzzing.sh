#!/usr/bin/env bash
# Fuzzes with libFuzzer and both sanitizers: whole, each target until it has had one hour of
# processor time; the sample, each for some seconds. Ends at the first finding, which is left in
# build/fuzz/. An interrupted run goes on where it was. If the target has changed since, what it had
# before counts too, and the figure shows how much of it all was the last build's; remove
# build/fuzz/found/*.rounds to begin anew, as after a finding.
#   fuzzing.sh whole|sample fuzzing|fuzzing_program   the library's entry points, or each verb
set -euo pipefail
cd "$(dirname "$0")/../.."

wanted_seconds=3600
round_seconds=300
if [ "$1" = sample ]; then
    wanted_seconds=1
    round_seconds=30
fi
case $2 in
fuzzing) targets=(row_conversion plan_run pattern_text dither_run) ;;
fuzzing_program)
    targets=(verb_{check,convert,coverage,info,join,pattern,preview,simulate,split})
    ;;
esac

options_of() {
    case $1 in
    row_conversion) echo "-max_len=128" ;;
    plan_run | dither_run) echo "-max_len=256" ;;
    verb_*) echo "-max_len=4096 -rss_limit_mb=4096 -close_fd_mask=3" ;;
    pattern_text) echo "-max_len=2048 -dict=../../fuzz/pattern_text.dict" ;;
    esac
}

# All verbs of the program begin with the same files.
corpus_of() {
    case $1 in
    verb_*) echo tiff_file ;;
    *) echo "$1" ;;
    esac
}

# One round, whose processor time, executions and covered edges become a line of the record.
run_round() {
    local target=$1 build=$2 record=$3 log=$4
    # shellcheck disable=SC2046 # a list of words
    (cd build/fuzz && TIMEFORMAT='processor: %U %S' && time ./fuzz/fuzz_"$target" \
        -max_total_time=$round_seconds -timeout=300 -rss_limit_mb=2048 -print_final_stats=1 \
        $(options_of "$target") "found/$target" "../../fuzz/corpus/$(corpus_of "$target")") \
        >"$log" 2>&1 ||
        { tail -n 40 "$log" && return 1; }
    awk -v build="$build" '/^processor:/ { seconds = $2 + $3 }
        /^stat::number_of_executed_units:/ { executions = $2 }
        / cov: / { for (i = 1; i < NF; ++i) if ($i == "cov:") edges = $(i + 1) }
        END { print seconds, executions, edges, build }' "$log" >>"$record"
}

fuzz() {
    local target=$1 directory=build/fuzz/found/$1 record build
    mkdir -p "$directory"
    build=$(sha256sum "build/fuzz/fuzz/fuzz_$target" | cut -c 1-12)
    record=$directory.rounds
    [ $wanted_seconds -gt 1 ] || { record=$directory.sample && : >"$record"; }
    touch "$record"
    while awk -v wanted=$wanted_seconds '{ s += $1 } END { exit s >= wanted }' "$record"; do
        run_round "$target" "$build" "$record" "$directory.log"
    done
    awk -v target="$target" -v build="$build" '
        { s += $1; n += $2; if ($3 > edges) edges = $3; if ($4 == build) last += $1 }
        END { printf "%s %d executions, %d edges, %d s", target, n, edges, s
              if (last < s) printf " (%d s of them on the last build)", last }' \
        "$record" >"$directory.summary"
    cat "$directory.summary" && echo
}

bash scripts/setup.sh test
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
running=()
for target in "${targets[@]}"; do
    fuzz "$target" &
    running+=($!)
done
for process in "${running[@]}"; do
    wait "$process"
done
summaries=""
for target in "${targets[@]}"; do
    summaries+="${summaries:+; }$(cat "build/fuzz/found/$target.summary")"
done
echo "figure: $summaries; 0 findings"
