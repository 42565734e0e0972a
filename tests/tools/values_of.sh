#!/usr/bin/env bash
# Prints the options of a verb that take one of a few values, each with these after it:
#   values_of.sh PELKRAFT VERB...
set -euo pipefail
"$@" --help | sed -nE 's/^  (-., )?(--[a-z-]+) ([^ |]+(\|[^ |]+)+)( .*|$)/\2 \3/p' | tr '|' ' '
