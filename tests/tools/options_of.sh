#!/usr/bin/env bash
# Prints the long options of a verb and the verbs below it, as the program's help lists them:
#   options_of.sh PELKRAFT [VERB...]
set -euo pipefail
"$@" --help | sed -nE '
    s/^  (-., )?(--[a-z-]+).*/\2/p
    /^Subcommands:/,/^$/ s/^  ([a-z]+)( .*|$)/\1/p' | sort
