#!/usr/bin/env bash
# Fails unless each completion offers what the program's help lists, and no more. Where fish is
# not installed, its completion is passed over; that of zsh is read as a text:
#   completions.sh SOURCE_DIR PELKRAFT
set -euo pipefail
source_dir=$1 tool=$2
here=$(cd "$(dirname "$0")" && pwd)
status=0

compare() {
    diff --label "the help of pelkraft $2" --label "offered by $1" -U0 \
        <(bash "$here/options_of.sh" "$tool" ${2:+"$2"}) <(sort -u)
}

. "$source_dir/completions/pelkraft.bash"
bash_offers() {
    COMP_WORDS=(pelkraft "$@") COMP_CWORD=$#
    COMPREPLY=()
    _pelkraft
    printf '%s\n' "${COMPREPLY[@]}"
}
in_bash() {
    if [ -n "$1" ]; then bash_offers "$1" --; else bash_offers ''; fi
}
in_fish() {
    local line="pelkraft $1 --"
    fish --no-config -c "source '$source_dir/completions/pelkraft.fish'
        complete -C '$line'
        test -n '$1'; or complete -C 'pelkraft '" | cut -f1 | grep -E '^(--)?[a-z-]+$'
}
in_zsh() {
    local file=$source_dir/completions/_pelkraft
    if command -v zsh >/dev/null; then zsh -n "$file"; fi
    sed -n "/^_pelkraft${1:+_$1}()/,/^}/p" "$file" |
        grep -oE "^ *'\*?--[a-z-]+|--help|^ *('1:verb:\(\()?[a-z]+\\\\:" |
        grep -oE '(--)?[a-z-]+(\\:)?$' | sed 's/\\:$//'
}

values() {
    local wanted=$1
    shift
    if [ "$(bash_offers "$@" '' | paste -sd ' ')" != "$wanted" ]; then
        echo "bash doesn't offer '$wanted' after: $*" >&2
        status=1
    fi
}

for verb in '' convert pattern simulate; do
    in_bash "$verb" | compare bash "$verb" || status=1
    in_zsh "$verb" | compare zsh "$verb" || status=1
    if command -v fish >/dev/null; then
        in_fish "$verb" | compare fish "$verb" || status=1
    fi
done
# Prints the values, as the help shows them in braces.
for verb in convert simulate; do
    while read -r option choice; do
        values "${choice//,/ }" "$verb" "$option"
    done < <("$tool" "$verb" --help | sed -nE 's/^  (--[a-z-]+) [A-Z]+:\{(.*)\}.*/\1 \2/p')
done
exit $status
