#!/usr/bin/env bash
# Compares the bytes a second of split, join and coverage with those of cp and a sync of its copy, on
# a picture of eight inks, in pairs one after the other: the median of the ratios, which should be
# 0.8 or more. The files lie below TMPDIR; none is there before it is written.
#   plates.sh PELKRAFT BIG_PICTURE [PAIRS] [ROWS]
set -euo pipefail
pelkraft=$1 big_picture=$2 pairs=${3:-7} rows=${4:-500}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# seconds COMMAND...: what it takes, and a sync of what it wrote.
seconds() {
    local start end
    sync
    start=$(date +%s.%N)
    "$@"
    end=$(date +%s.%N)
    awk -v start="$start" -v end="$end" 'BEGIN { print end - start }'
}
copy() {
    cp "$folder/in.tif" "$folder/copy.tif"
    sync "$folder/copy.tif"
}
split_page() {
    "$pelkraft" split "$folder/in.tif" "$folder/plate"
}
join_page() {
    "$pelkraft" join "$folder/joined.tif" "$folder"/plate*.tif
}
cover_page() {
    "$pelkraft" coverage "$folder/in.tif" --limit 100000 --window 40px >"$folder/said"
}

"$big_picture" make "$folder/in.tif" 100000 "$rows" 8 interleaved 4
split_page
for job in split_page join_page cover_page; do
    for ((pair = 0; pair < pairs; ++pair)); do
        copied=$(seconds copy)
        rm -f "$folder/copy.tif" "$folder/joined.tif"
        [ $job != split_page ] || rm "$folder"/plate*.tif
        echo "$copied $(seconds $job)"
    done | awk -v job="$job" '{ print $1 / $2 }' | sort -n |
        awk -v job="$job" '{ ratio[NR] = $1 }
            END { printf "%s: %.2f of cp and sync, the median of %d pairs\n", job,
                ratio[int((NR + 1) / 2)], NR }'
done
