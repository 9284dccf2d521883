#!/bin/sh
# exported_symbols.sh NM LIBRARY LIST: the library exports the listed symbols, letter by letter, and no other.
set -eu
export LC_ALL=C
"$1" -D --defined-only "$2" | awk '{ print $3 }' | sort | diff - "$3"
