#!/usr/bin/env bash
# Pictures of an independent rasterizer, converted there and back, judged by independent programs:
#   tiffcmp_round_trips.sh PELKRAFT PAGE.ps
set -euo pipefail
pelkraft=$1 page=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
    echo "$*" >&2
    exit 1
}

# Exits with 0 on a difference in tags alone, but prints it: both must be looked at.
same_picture() {
    local said
    said=$(tiffcmp "$1" "$2" 2>&1) && [ -z "$said" ] || fail "$1 and $2 differ: $said"
}
same_samples() { tiffcmp -t "$1" "$2" >said 2>&1 || fail "$1 and $2 differ: $(cat said)"; }
differ() {
    if tiffcmp -t "$1" "$2" >said 2>&1; then
        fail "tiffcmp does not tell $1 from $2"
    fi
}

gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=tiff32nc -r100 -o page.tif "$page"
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=tiffsep1 -r100 -o bits%d.tif "$page"

echo "planes, as tiffcp makes them too"
"$pelkraft" convert page.tif planar.tif --layout planar
tiffcp -p separate page.tif tiffcp.tif
same_samples planar.tif tiffcp.tif
"$pelkraft" convert planar.tif interleaved.tif --layout interleaved
same_picture page.tif interleaved.tif

echo "wide and narrow again"
"$pelkraft" convert page.tif wide.tif --bits 16 --layout planar
"$pelkraft" convert wide.tif back.tif --bits 8 --layout interleaved
same_picture page.tif back.tif

echo "mirrored twice, reordered twice"
"$pelkraft" convert page.tif mirrored.tif --mirror
differ page.tif mirrored.tif
"$pelkraft" convert mirrored.tif back.tif --mirror
same_picture page.tif back.tif
"$pelkraft" convert page.tif reordered.tif --channels 2,0,3,1 2>/dev/null
differ page.tif reordered.tif
"$pelkraft" convert reordered.tif back.tif --channels 1,3,0,2 2>/dev/null
same_samples page.tif back.tif

echo "bits of a halftone, handed on and through other depths"
for ink in Cyan Black "Harbour Orange"; do
    "$pelkraft" convert "bits1($ink).tif" relayed.tif
    same_picture "bits1($ink).tif" relayed.tif
    for depth in 2 8 16; do
        "$pelkraft" convert "bits1($ink).tif" deep.tif --bits "$depth" --tones scale
        "$pelkraft" convert deep.tif back.tif --bits 1 --tones scale
        same_samples "bits1($ink).tif" back.tif
    done
done

echo "contiguous bits, through planes"
"$pelkraft" convert page.tif woven.tif --bits 2
"$pelkraft" convert woven.tif planes.tif --layout planar
"$pelkraft" convert planes.tif back.tif --layout interleaved
same_picture woven.tif back.tif

echo "both roads, any number of threads"
for options in "--layout planar" "--bits 1" "--bits 16 --mirror --repeat 2 --channels 3,-,0"; do
    # The words of the options are meant to part.
    # shellcheck disable=SC2086
    for work_options in --portable "--threads 1" "--threads 7"; do
        "$pelkraft" convert page.tif one.tif $options --threads 2 2>/dev/null
        "$pelkraft" convert page.tif two.tif $options $work_options 2>/dev/null
        cmp one.tif two.tif || fail "$options $work_options gives another file"
    done
done
echo "all the same"
