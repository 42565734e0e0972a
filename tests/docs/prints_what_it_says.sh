#!/usr/bin/env bash
# Runs a program, perhaps by way of an emulator, and compares its output:
#   prints_what_it_says.sh EXPECTED [EMULATOR...] PROGRAM
set -euo pipefail
diff <("${@:2}") "$1"
