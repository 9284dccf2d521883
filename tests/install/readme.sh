#!/bin/sh
# readme.sh SOURCES BUILD WORK: the README's C example, built and run by the README's own lines, as printed; then again
# from a moved copy of what they installed. Every link of an installed page leads to an installed file, and all that tells
# a version tells that of the header.
set -eu
sources=$1 build=$2 work=$3

# Prints the block of README.md that begins with ```$1 and comes first after a line that contains $2.
block() {
    awk -v start="\`\`\`$1" -v after="$2" '
        index($0, after) { found = 1 }
        found && $0 == start { inside = 1; next }
        inside && /^```/ { exit }
        inside' "$sources/README.md"
}

rm -rf "$work"
mkdir -p "$work/build"
ln -s "$build" "$work/build/release"
cd "$work"
export HOME="$work"
unset LD_LIBRARY_PATH PKG_CONFIG_PATH
block c '## From C' >example.c
block sh '## From C' >lines.sh
grep -q 'cmake --install' lines.sh && grep -q pkg-config lines.sh && grep -q '^DIR=' lines.sh

sh -eux lines.sh
installed=$(sh -c "$(grep '^DIR=' lines.sh); echo \"\$DIR\"")
mv "$installed" "$work/moved"
rm example
sed -e "s|^DIR=.*|DIR=$work/moved|" -e '/cmake --install/d' lines.sh >moved.sh
sh -eux moved.sh

find moved -name '*.md' | while read -r page; do
    grep -o '](\([^):# ]*\))' "$page" | sed 's/^](//; s/)$//' | while read -r link; do
        [ -e "$(dirname "$page")/$link" ] || { echo "$page: $link leads nowhere" && exit 1; }
    done || exit 1
done

version=$(sed -n 's/.*define ZERKLSC_VERSION_[A-Z]* \([0-9]*\).*/\1/p' moved/include/zerklsc.h | paste -sd.)
[ "$(PKG_CONFIG_PATH=moved/lib/pkgconfig pkg-config --modversion zerklsc)" = "$version" ]
grep -q "set(PACKAGE_VERSION \"$version\")" moved/lib/cmake/zerklsc/zerklsc-config-version.cmake
