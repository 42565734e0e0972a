#!/usr/bin/env bash
# Sends pictures of 100,000 pixels and 8 channels a row through the program, holds its memory to
# 64 MiB and 4 rows for each thread, and checks every sample of what comes out.
#   big_pictures.sh PELKRAFT BIG_PICTURE PEAK_MEMORY HEIGHT
set -euo pipefail

pelkraft=$1 big_picture=$2 peak_memory=$3 height=$4
width=100000
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
in=$folder/in.tif out=$folder/out.tif pattern=$folder/pattern.txt
largest=0

make() {
    "$big_picture" make "$in" $width "$height" "$@"
}

# run BITS THREADS ARGUMENT...: BITS of the widest row, whose picture is read or written.
run() {
    local row=$((width * $1)) limit said # of 8 channels
    limit=$(((64 << 20) + 4 * row * $2))
    said=$("$peak_memory" $((limit / 1024)) "$pelkraft" "${@:3}" --threads "$2" |
        tail -n 1) ||
        { echo "$said: ${*:3}, failed" && return 1; }
    echo "$said: ${*:3} --threads $2" | sed "s|$folder/||g"
    said=${said#peak }
    [ "${said%% *}" -le "$largest" ] || largest=${said%% *}
}

check() {
    "$big_picture" check "$out" $width "$height" "$@"
    rm "$out"
}

# Each step of each channel has one way, so that chance plays no part.
write_pattern() {
    local inks="A B C D E F G H" number=0 ink
    echo "DotWeavePattern VERSION 2"
    echo "BEGIN_OUT_INKS $inks END_OUT_INKS BEGIN_IN_COLORS $inks END_IN_COLORS"
    for ink in $inks; do
        number=$((number + 1))
        echo "BEGIN_IN_COLOR $ink BEGIN_INKS $ink END_INKS BEGIN_VALUES"
        echo "1 1 0-$number END_VALUES END_IN_COLOR"
    done
}

make 8 interleaved 4
for threads in 1 2 8; do
    run 8 $threads convert "$in" "$out" --layout planar
    check 8 planar same
done
run 8 2 convert "$in" "$out" --mirror
check 8 interleaved mirrored
write_pattern >"$pattern"
for threads in 1 2; do
    run 8 $threads simulate "$pattern" "$in" "$out" --levels quantize --preview "$folder/seen.png"
    check 8 interleaved steps
    run 8 $threads simulate "$pattern" "$in" "$out" --levels dither
    rm "$out"
done

# A plate for each ink, and the page again.
for threads in 1 2; do
    run 8 $threads split "$in" "$folder/plate" --inks 0,1,2,3,4,5,6,7
    run 8 $threads join "$out" "$folder"/plate*.tif
    check 8 interleaved same
    rm "$folder"/plate*.tif
done
# Plates in strips that are decoded whole by themselves, and in one that is never held.
run 8 1 split "$in" "$folder/plate" --inks 0,1,2,3,4,5,6,7
for rows in 80 "$height"; do
    mkdir "$folder/packed"
    for plate in "$folder"/plate*.tif; do
        tiffcp -c lzw -r "$rows" "$plate" "$folder/packed/${plate##*/}"
    done
    for threads in 1 2; do
        run 8 $threads join "$out" "$folder"/packed/*.tif --compress none
        check 8 interleaved same
    done
    rm -r "$folder/packed"
done
rm "$folder"/plate*.tif
# Counting alone, and the picture of where the ink lies.
for threads in 1 8; do
    run 8 $threads info "$in" --stats
    run 8 $threads coverage "$in" --limit 100000 --window 40px --map "$folder/map.png"
done

make 8 planar 4
run 8 2 split "$in" "$folder/plate"
run 8 2 join "$out" "$folder"/plate*.tif
check 8 interleaved same
rm "$folder"/plate*.tif
for threads in 1 2; do
    run 8 $threads convert "$in" "$out" --layout interleaved
    check 8 interleaved same
done

# Strips of 64 MB, and one strip that is the whole picture, plain and compressed.
make 8 interleaved 80
run 8 1 convert "$in" "$out" --mirror
check 8 interleaved mirrored
for compression in none packbits; do
    for layout in interleaved planar; do
        make 8 $layout "$height" $compression
        run 8 2 convert "$in" "$out" --layout interleaved
        check 8 interleaved same
    done
done

make 16 interleaved 4
for threads in 1 2; do
    run 16 $threads convert "$in" "$out" --layout planar --bits 1
    check 1 planar halves
    # Windows as wide as the page, and as high but for a row.
    run 16 $threads coverage "$in" --limit 100000 --window "$((height - 1))px"
    run 16 $threads coverage "$in" --limit 100000 --window 100000px
done
echo "largest peak: $(((largest + 1023) / 1024)) MiB"
