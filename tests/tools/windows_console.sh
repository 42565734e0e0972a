#!/usr/bin/env bash
# Runs the program for Windows on a console, which Wine makes of a terminal: letters come out whole,
# the progress is shown and its line wiped: windows_console.sh PELKRAFT.EXE WINE
set -euo pipefail
tool=$(realpath "$1") wine=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
perl "$here/make_picture.pl" 61 40 4 8 none 1 >in.tif

# What a run writes to the console, without the sequences by which Wine draws it.
shown() {
    local command
    printf -v command '%q ' "$wine" "$tool" "$@"
    script -qec "stty cols 100 rows 30; $command" typescript </dev/null >/dev/null || true
    sed '1d; /^Script done/d' typescript | sed 's/\x1b\[[?0-9;]*[a-zA-Z]//g' | tr -d '\r'
}
expect() {
    if ! grep -qF -- "$1" <<<"$2"; then
        printf 'the console lacks "%s":\n%s\n' "$1" "$2" >&2
        exit 1
    fi
}

progress=$(shown convert in.tif größe.tif)
expect 'pelkraft: convert größe.tif 100 %, 0:00 left' "$progress"
# Wine shows an escape that it doesn't obey as a caret and a letter.
if grep -qF '^[' <<<"$progress"; then
    printf 'escapes are shown:\n%s\n' "$progress" >&2
    exit 1
fi
[ -s größe.tif ]
expect 'pelkraft: Zoë für 色.tif: cannot be read: No such file' "$(shown convert 'Zoë für 色.tif' x.tif)"
expect 'pelkraft ' "$(shown --version)"
echo "windows_console.sh: the console shows what it should"
