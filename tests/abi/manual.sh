#!/bin/sh
# manual.sh HEADER LIST: every exported function is declared in the header, and every declaration directly follows a
# comment of its own.
set -eu
while read -r symbol; do
    # _Z8cubic_1Dtttttt: the name is as long as the number before it says.
    name=$(echo "$symbol" | awk '/^_Z/ { sub(/^_Z/, ""); n = $0 + 0; sub(/^[0-9]+/, ""); $0 = substr($0, 1, n) } { print }')
    grep -qE "[ *]$name(<[a-z]+>)?\(" "$1" || { echo "$name is not declared"; exit 1; }
done <"$2"
awk '
    /^ZERKLSC_API|^template/ { if (last !~ /\*\/$/) { print "no comment before: " $0; bad = 1 } }
    NF { last = $0 }
    END { exit bad }' "$1"
