#!/bin/sh
# needed_libraries.sh READELF LIBRARY: it needs libc and libm and nothing else, under the name its callers link.
set -eu
dynamic=$("$1" -d "$2")
echo "$dynamic" | grep -q 'SONAME.*\[libzerklsc\.so\.1\]' || { echo "wrong SONAME"; exit 1; }
# The 32-bit ARM loader is what libc itself needs for thread-local data.
others=$(echo "$dynamic" | awk '/NEEDED/ { print $NF }' | grep -vE '^\[(libc\.so\.6|libm\.so\.6|ld-linux.*)\]$' || true)
[ -z "$others" ] || { echo "needs $others"; exit 1; }
