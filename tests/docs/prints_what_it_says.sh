#!/usr/bin/env bash
# Runs a program, perhaps by way of an emulator, and compares its output:
#   prints_what_it_says.sh EXPECTED [EMULATOR...] PROGRAM
# On Windows the guards log a throw by its number as well, and lines end in two characters.
set -euo pipefail
diff <("${@:2}" | tr -d '\r' | sed '/^log: Structured exception: /d') "$1"
