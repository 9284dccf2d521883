#!/bin/sh
# stripped_size.sh STRIP LIBRARY LIMIT: without its symbols the library has at most LIMIT bytes.
set -eu
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$1" -o "$stripped" "$2"
size=$(wc -c <"$stripped")
echo "$size bytes of at most $3"
[ "$size" -le "$3" ]
