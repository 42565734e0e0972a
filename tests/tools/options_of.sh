#!/usr/bin/env bash
# Prints the long options, and without a verb the verbs too, that the program's help lists:
#   options_of.sh PELKRAFT [VERB]
set -euo pipefail
"$1" ${2:+"$2"} --help | sed -nE '
    /^Options:/,/^$/ s/^  (-.,)?(--[a-z-]+).*/\2/p
    /^Subcommands:/,/^$/ s/^  ([a-z]+) .*/\1/p' | sort
