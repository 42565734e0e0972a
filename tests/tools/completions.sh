#!/usr/bin/env bash
# Fails unless each completion offers what the program's help lists, and no more: verbs, the verbs
# below them, options and values. Where fish is not installed, its completion is passed over; that
# of zsh is read as a text:
#   completions.sh SOURCE_DIR PELKRAFT
set -euo pipefail
source_dir=$1 tool=$2
here=$(cd "$(dirname "$0")" && pwd)
empty=$(mktemp -d)
trap 'rm -rf "$empty"' EXIT
# Files are offered too.
cd "$empty"
status=0

# compare SHELL VERB...
compare() {
    local shell=$1
    shift
    diff --label "the help of pelkraft $*" --label "offered by $shell" -U0 \
        <(bash "$here/options_of.sh" "$tool" "$@") <(sort -u)
}

. "$source_dir/completions/pelkraft.bash"
bash_offers() {
    COMP_WORDS=(pelkraft "$@") COMP_CWORD=$#
    COMPREPLY=()
    _pelkraft
    if [ ${#COMPREPLY[@]} != 0 ]; then printf '%s\n' "${COMPREPLY[@]}"; fi
}
in_bash() {
    bash_offers "$@" --
    bash_offers "$@" ''
}
in_fish() {
    fish --no-config -c "source '$source_dir/completions/pelkraft.fish'
        complete -C 'pelkraft $* --'
        complete -C 'pelkraft $* '" | cut -f1 | grep -E '^(--)?[a-z-]+$'
}
# Prints the part of the file that offers what follows the verb.
zsh_part() {
    local file=$source_dir/completions/_pelkraft name=_pelkraft
    name+=$(printf '_%s' "$@" | grep -x '_.\+' || true)
    local part
    part=$(sed -n "/^$name()/,/^}/p" "$file")
    echo "$part"
    if [[ $part == *'$_pelkraft_common'* ]]; then
        sed -n '/^_pelkraft_common=/,/^)/p' "$file"
    fi
}
in_zsh() {
    zsh_part "$@" | sed -nE "
        s/^ *'\*?(--[a-z-]+).*/\1/p
        s/^ *'\(.*\{-[a-z],(--[a-z-]+)\}.*/\1/p
        s/^ *('1:verb:\(\()?([a-z]+)\\\\:.*/\2/p"
}

# values SHELL, after the line of an option with its values
values() {
    local shell=$1 offered=$2
    shift 2
    if [ "$offered" != "${*:2}" ]; then
        echo "$shell offers '$offered' instead of '${*:2}' after $1" >&2
        status=1
    fi
}
zsh_values() {
    local option=$1
    shift
    zsh_part "$@" | sed -nE "s/^ *'\*?$option\[.*:\(([a-z0-9 -]+)\)'.*/\1/p"
}

if command -v zsh >/dev/null; then zsh -n "$source_dir/completions/_pelkraft"; fi
while read -r -a verb; do
    in_bash "${verb[@]}" | compare bash "${verb[@]}" || status=1
    in_zsh "${verb[@]}" | compare zsh "${verb[@]}" || status=1
    if command -v fish >/dev/null; then
        in_fish "${verb[@]}" | compare fish "${verb[@]}" || status=1
    fi
    if [ ${#verb[@]} = 0 ]; then continue; fi
    while read -r -a choice; do
        offered=$(bash_offers "${verb[@]}" "${choice[0]}" '' | paste -sd ' ')
        values bash "$offered" "${choice[@]}"
        values zsh "$(zsh_values "${choice[0]}" "${verb[@]}")" "${choice[@]}"
        if command -v fish >/dev/null; then
            offered=$(fish --no-config -c "source '$source_dir/completions/pelkraft.fish'
                complete -C 'pelkraft ${verb[*]} ${choice[0]} '" | cut -f1 | sort | paste -sd ' ')
            sorted=$(printf '%s\n' "${choice[@]:1}" | sort | paste -sd ' ')
            values fish "$offered" "${choice[0]}" $sorted
        fi
    done < <(bash "$here/values_of.sh" "$tool" "${verb[@]}")
done < <(echo && bash "$here/verbs_of.sh" "$tool")
offered=$(bash_offers check --rules '' | sort | paste -sd ' ')
rules=$( (echo list && "$tool" check --rules list | cut -d ' ' -f 1) | sort | paste -sd ' ')
values bash "$offered" --rules $rules
# Pictures are no patterns.
touch a.txt b.TIF c.png
offered=$(bash_offers pattern lint '' | paste -sd ' ')
values bash "$offered" 'pattern lint' a.txt
exit $status
