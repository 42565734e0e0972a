#!/usr/bin/env bash
# Runs two builds of the program on the same pictures and patterns, and fails where they exit,
# print or write otherwise, to the byte: same_files.sh PELKRAFT OTHER [EMULATOR...]
# Messages that name a place of the machine are not among them.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
one=$1 other=$2
shift 2
emulator=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/one" "$work/other"

pictures=()
picture() {
    local name=$1
    shift
    perl "$here/make_picture.pl" "$@" >"$work/one/$name.tif"
    cp "$work/one/$name.tif" "$work/other/"
    pictures+=("$name")
}
picture plain 61 40 4 8 none 1
picture words 50 31 3 16 lzw 2
picture bits 77 30 1 1 packbits 3
picture pairs 45 20 4 2 deflate 4
picture six 120 90 6 8 deflate 5
for folder in one other; do
    cp "$root"/examples/patterns/*.txt "$work/$folder/"
    printf 'DotWeavePattern\nVERSION 2\nBEGIN_OUT_INKS\n' >"$work/$folder/broken.txt"
done

runs=0
# same ARGUMENT...: in both folders.
same() {
    local code other_code=0
    code=0
    (cd "$work/one" && "$one" "$@" >stdout 2>stderr) || code=$?
    (cd "$work/other" && "${emulator[@]}" "$other" "$@" >stdout 2>stderr </dev/null) ||
        other_code=$?
    if [ "$code" != "$other_code" ]; then
        echo "pelkraft $*: exit code $other_code, not $code" >&2
        cat "$work/other/stderr" >&2
        exit 1
    fi
    diff -r "$work/one" "$work/other" >&2 || {
        echo "pelkraft $*: other files" >&2
        exit 1
    }
    runs=$((runs + 1))
}

for name in "${pictures[@]}"; do
    for bits in 1 2 8 16; do
        same convert "$name.tif" out.tif --bits "$bits" --layout planar --tones scale
        same convert out.tif back.tif --layout interleaved --mirror --repeat 2
        same convert "$name.tif" raw.tif --bits "$bits" --tones raw --channels 0,-,0 --portable
    done
done
for pattern in "$root"/examples/patterns/*.txt; do
    text=$(basename "$pattern")
    same pattern "$text"
    same pattern "$text" --json
    same pattern "$text" --plot plot.svg
    for engine in reference x86 sse; do
        same simulate "$text" six.tif dots.tif --preview seen.png --engine "$engine" --threads 3
    done
done
same --version
same --help
same convert --help
same simulate --help
same pattern broken.txt
same convert missing.tif out.tif
same convert plain.tif missing/out.tif
same convert broken.txt out.tif
same convert plain.tif out.tif --bits 5
same convert plain.tif out.tif --channels 9
echo "same_files.sh: $runs runs, every file, stream and exit code equal"
