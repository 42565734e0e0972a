#!/usr/bin/env bash
# Prints every verb of the program, each on a line, with the verbs below it after their own:
#   verbs_of.sh PELKRAFT [VERB...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tool=$1
shift
for verb in $(bash "$here/options_of.sh" "$tool" "$@" | grep -v -e '^-'); do
    echo "$* $verb" | sed 's/^ //'
    bash "$0" "$tool" "$@" "$verb"
done
