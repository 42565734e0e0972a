#!/usr/bin/env bash
# Fails on a man page that doesn't set without a warning, on an option of the program that
# pelkraft(1) doesn't describe under its verb or among the common ones, on a value that it doesn't
# name there, and on an example of pelkraft-pattern(5) that the
# program finds fault with: man_pages.sh SOURCE_DIR PELKRAFT
set -euo pipefail
source_dir=$1 tool=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for page in pelkraft.1 pelkraft-pattern.5; do
    groff -man -ww -Tascii -P-cbou -rLL=100n "$source_dir/man/$page" \
        >"$work/$page" 2>"$work/warnings"
    if [ -s "$work/warnings" ]; then
        cat "$work/warnings" >&2
        exit 1
    fi
done

# Options of a verb stand between its heading and the next.
section() {
    awk -v heading="$1" '
        /^[A-Z]/ || /^   [A-Za-z]/ {inside = ($0 == heading); next}
        inside' "$work/pelkraft.1"
}
described() {
    section "$1" | sed -nE 's/^       (-., )?(--[a-z-]+).*/\2/p'
}
# Prints what is said of an option in a text.
entry() {
    awk -v option="$1" '
        /^       -/ {inside = ($1 == option || $2 == option)}
        inside'
}
diff <(bash "$here/options_of.sh" "$tool" | grep -e '^--') <(described OPTIONS | sort)
while read -r -a verb; do
    diff <(bash "$here/options_of.sh" "$tool" "${verb[@]}" | grep -e '^--' | grep -vx -e --help) \
        <({ described "   ${verb[*]}" && described '   Common options'; } | sort -u)
    while read -r option values; do
        said=$({ section "   ${verb[*]}" && section '   Common options'; } | entry "$option")
        for value in $values; do
            grep -qw -e "$value" <<<"$said" || {
                echo "pelkraft(1) doesn't name $value for $option of ${verb[*]}" >&2
                exit 1
            }
        done
    done < <(bash "$here/values_of.sh" "$tool" "${verb[@]}")
done < <(bash "$here/verbs_of.sh" "$tool")

sed -n '/DotWeavePattern/,/^[A-Z]/{/^ /p}' <(sed -n '/^EXAMPLES/,$p' "$work/pelkraft-pattern.5") \
    >"$work/example.txt"
if ! "$tool" pattern "$work/example.txt" >"$work/report"; then
    cat "$work/report" >&2
    exit 1
fi
