#!/bin/sh
# no_environment.sh NM LIBRARY: the library does not read the environment.
set -eu
imported=$("$1" -D --undefined-only "$2")
found=$(echo "$imported" | grep -E 'getenv|environ' || true)
[ -z "$found" ] || { echo "imports $found"; exit 1; }
# That the list is one at all: the library takes its memory from libc.
echo "$imported" | grep -q malloc || { echo "imports no malloc"; exit 1; }
