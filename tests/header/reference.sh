#!/bin/sh
# reference.sh SOURCES DOXYGEN WORK: Doxygen makes a reference of the public headers without a warning, with every
# exported function in it.
set -eu
sources=$1 doxygen=$2 work=$3
rm -rf "$work"
mkdir -p "$work"
cd "$sources"
{ cat docs/Doxyfile && echo "OUTPUT_DIRECTORY = \"$work\"" && echo "GENERATE_XML = YES"; } | "$doxygen" -
cat cmake/exported_symbols.txt cmake/driver_symbols.txt | while read -r symbol; do
    # _Z8cubic_1Dtttttt: the name is as long as the number before it says.
    name=$(echo "$symbol" | awk '/^_Z/ { sub(/^_Z/, ""); n = $0 + 0; sub(/^[0-9]+/, ""); $0 = substr($0, 1, n) } { print }')
    grep -q "<name>$name</name>" "$work"/xml/*_8h.xml "$work"/xml/group__*.xml || { echo "$name is not in the reference" && exit 1; }
done
