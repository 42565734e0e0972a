#!/usr/bin/env bash
# Builds the program and sends a real CMYK page through the library: interleaved to planar, 8 to
# 16 bits and back, with a proof that the picture is still the same; then through a dot pattern of
# six inks, with a preview. Joins the plates of a page with a spot colour, checks, measures and
# prints them, and splits them again. Last comes the first page once more from Python, alone and on
# two workers of Dask, with the same pixels. Leaves its files in demo-out/.
set -euo pipefail
cd "$(dirname "$0")/.."
out=demo-out
build=build/demo
trap '[ $? -eq 0 ] || echo "demo.sh: this step failed" >&2' EXIT

say() { printf '\n== %s\n' "$*"; }

bash scripts/setup.sh demo

say "Building the library, the program and the Python package (Release) in $build"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DPELKRAFT_BUILD_TOOLS=ON \
    -DPELKRAFT_BUILD_PYTHON=ON >/dev/null
cmake --build "$build" --target pelkraft_tool pelkraft_python
pelkraft=$build/tools/pelkraft/pelkraft
export PYTHONPATH=$build/python PYTHONDONTWRITEBYTECODE=1

# Rasters one page of a document to $out/page.tif as CMYK.
raster() {
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=tiff32nc -r300 "$@" -o "$out/page.tif" "$document"
    [ -s "$out/page.tif" ]
}

rm -rf "$out"
mkdir -p "$out"
# A page that nobody here drew; minimal systems strip it with all other documentation.
document=$(find /usr/share/doc/ghostscript* -name '*.pdf' 2>/dev/null | sort | head -n 1)
illustrated_page=19
say "Rastering a page to CMYK at 300 dpi with Ghostscript"
if [ -z "$document" ] ||
    ! raster "-dFirstPage=$illustrated_page" "-dLastPage=$illustrated_page"; then
    document=tests/tools/cmyk_spot_page.ps
    raster
    echo "the project's own page: $document"
else
    echo "page $illustrated_page of $document"
fi

# Converts $out/$1 to $out/$2 and prints how it went.
rates=()
convert() {
    local from=$1 to=$2
    shift 2
    say "pelkraft convert $out/$from $out/$to $*"
    "$pelkraft" convert "$out/$from" "$out/$to" "$@" --explain | tee "$out/explain.txt"
    rates+=("$to: $(tail -n 1 "$out/explain.txt")")
    rm "$out/explain.txt"
}

convert page.tif planar.tif --layout planar
convert planar.tif planar16.tif --bits 16
convert planar16.tif interleaved16.tif --layout interleaved
convert interleaved16.tif back.tif --bits 8
convert page.tif mirrored.tif --mirror
convert page.tif bits.tif --layout planar --bits 1

# tiffcmp is another program's opinion. It exits with 0 on a difference in tags, but prints it.
same_picture() {
    local said
    said=$(tiffcmp "$1" "$2" 2>&1) && [ -z "$said" ]
}
same_samples() { tiffcmp -t "$1" "$2" >/dev/null 2>&1; }

say "Comparing with tiffcmp"
same_picture "$out/page.tif" "$out/back.tif" || {
    echo "page.tif and back.tif differ" >&2
    exit 1
}
echo "back.tif, there and back again: tags and samples of page.tif"
same_samples "$out/page.tif" "$out/planar.tif" || {
    echo "page.tif and planar.tif differ" >&2
    exit 1
}
echo "planar.tif: the samples of page.tif, in planes"
if same_samples "$out/page.tif" "$out/mirrored.tif"; then
    echo "tiffcmp finds no difference between mirrored.tif and page.tif" >&2
    exit 1
fi
echo "mirrored.tif: differs from page.tif, as it must"

pattern=examples/patterns/six_ink.txt
say "pelkraft pattern $pattern --plot $out/pattern.svg"
"$pelkraft" pattern "$pattern" --plot "$out/pattern.svg"

# Applies the pattern to the page; $1 names the new file.
simulate() {
    local to=$1
    shift
    say "pelkraft simulate $pattern $out/page.tif $out/$to $*"
    "$pelkraft" simulate "$pattern" "$out/page.tif" "$out/$to" "$@" --explain |
        tee "$out/explain.txt"
    rates+=("$to: $(tail -n 1 "$out/explain.txt")")
    rm "$out/explain.txt"
}
simulate dithered.tif --preview "$out/preview.png"
simulate inks.tif --levels quantize
simulate inks_x86.tif --levels quantize --engine x86 --threads 1
cmp "$out/inks.tif" "$out/inks_x86.tif"
rm "$out/inks_x86.tif"
echo "the portable engine on one thread gives the same file"

# Exit code 1 stands for findings, which are printed; all others end the demo.
findings() {
    say "pelkraft $*"
    "$pelkraft" "$@" || [ $? -eq 1 ]
}
say "Separating a page with a spot colour by Ghostscript's tiffsep"
gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=tiffsep -r300 -o "$out/plates.tif" \
    tests/tools/cmyk_spot_page.ps
rm "$out/plates.tif"
ls -1 "$out"/plates*
findings join "$out/joined.tif" "$out"/plates\(*
findings check "$out/joined.tif"
findings coverage "$out/joined.tif" --limit 150 --map "$out/coverage.png"
findings simulate "$pattern" "$out/joined.tif" "$out/joined_inks.tif"
findings preview "$out/joined.tif" "$out/joined.png"
findings preview "$out/joined_inks.tif" "$out/drops.png" --crop 100,100,400,300
findings split "$out/joined.tif" "$out/again"
for plate in "$out"/again\(*; do
    same_samples "$plate" "$out/plates${plate#"$out/again"}" || {
        echo "$plate differs from the plate that was joined" >&2
        exit 1
    }
    rm "$plate"
done
echo "the plates that were joined come out of the page again"

# Applies the pattern to pages from Python; $1 names the new folder. back.tif is page.tif once more,
# so that each of two workers has one.
pages() {
    local to=$1
    shift
    mkdir "$out/$to"
    say "python3 -m pelkraft.pages $out/page.tif $out/back.tif --to $out/$to --pattern $pattern $*"
    /usr/bin/python3 -m pelkraft.pages "$out/page.tif" "$out/back.tif" --to "$out/$to" \
        --pattern "$pattern" --report "$out/report.jsonl" "$@"
    grep -o '"output": "[^"]*"\|"worker": "[^"]*"' "$out/report.jsonl" | paste -d ' ' - -
    rm "$out/report.jsonl"
}
pages python --runner serial
pages dask --runner dask --workers 2

say "Digests of the pixels"
/usr/bin/python3 -m pelkraft.pages.digest "$out"/{dithered,{python,dask}/{page,back}}.tif |
    tee "$out/digests"
if [ "$(cut -d ' ' -f 1 "$out/digests" | sort -u | wc -l)" -ne 1 ]; then
    echo "the pixels of these pages differ: all must have one digest" >&2
    exit 1
fi
rm "$out/digests"
echo "the program, Python and two workers of Dask give the same pixels"

say "Done: rows, and rows per second with reading and writing"
printf '%s\n' "${rates[@]}"
echo
echo "preview.png shows the page as six inks and three drop sizes print it, pattern.svg what the"
echo "pattern does with each step; joined.png the joined plates, coverage.png where they have most"
echo "ink, and drops.png each drop of a part of them."
echo
echo "The files are in $(pwd)/$out:"
(cd "$out" && ls -sh1)
