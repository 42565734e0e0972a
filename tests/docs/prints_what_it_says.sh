#!/usr/bin/env bash
# Runs a program and compares its output: prints_what_it_says.sh PROGRAM EXPECTED
set -euo pipefail
diff <("$1") "$2"
