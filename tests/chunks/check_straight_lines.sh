#!/usr/bin/env bash
# usage: check_straight_lines.sh OBJDUMP METHOD_COUNT OBJECT...
#
# A method of a known size holds no jump at all, nor a call, which could hide a jump. The
# number of methods is given so that a renamed one can't slip through unread.
set -euo pipefail

objdump=$1
methodCount=$2
shift 2

for object in "$@"; do
    "$objdump" -d -C --no-show-raw-insn "$object"
done | awk -F '\t' -v expected="$methodCount" '
    /^[0-9a-f]+ <.*>:$/ {
        reading = /MoveChunk<zvk::Pelkraft::FixedSize</
        methods += reading
        name = $0
    }
    reading && $2 ~ /(^| )(j[a-z]+|call[a-z]*|loop[a-z]*|bl?r?|b\.[a-z]+|[ct]bn?z)( |$)/ {
        print name, $2
        ++jumps
    }
    END {
        print methods + 0 " methods read, " expected " expected, " jumps + 0 " jumps and calls"
        exit jumps != 0 || methods != expected
    }'
