#!/bin/sh
# hardening.sh READELF LIBRARY OBJECTS...: the library resolves its symbols before it runs and then seals them, has no
# executable stack and checks its stack frames; on x86-64 every object marks where branches may lead.
set -eu
readelf=$1 library=$2
shift 2
dynamic=$("$readelf" -Wdl "$library")
echo "$dynamic" | grep -q 'BIND_NOW\|FLAGS_1.*NOW' || { echo "symbols are resolved late" && exit 1; }
echo "$dynamic" | grep -q GNU_RELRO || { echo "symbols are not sealed" && exit 1; }
echo "$dynamic" | grep 'GNU_STACK' | grep -vq 'RWE' || { echo "the stack is executable" && exit 1; }
"$readelf" -W --dyn-syms "$library" | grep -q '__stack_chk_fail' || { echo "no stack frame is checked" && exit 1; }
"$readelf" -h "$library" | grep -q 'X86-64' || exit 0
for object in "$@"; do
    objects=$("$readelf" -h "$object" | grep -c 'Machine:')
    marked=$("$readelf" -n "$object" | grep -c 'IBT' || true)
    [ "$objects" = "$marked" ] || { echo "$object: $marked of $objects objects mark where branches lead" && exit 1; }
done
