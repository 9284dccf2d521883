#!/bin/sh
# package.sh SOURCES WORK: makes the Debian packages, has lintian look at them, and runs their test on what they hold.
set -eu
sources=$1 work=$2
version=$(dpkg-parsechangelog -l "$sources/debian/changelog" -S Version)
upstream=${version%-*}

rm -rf "$work"
mkdir -p "$work/zerklsc-$upstream"
cd "$sources"
{ git ls-files 2>/dev/null || find . -path ./build -prune -o -type f -print; } \
    | tar -cf - -T - | tar -xf - -C "$work/zerklsc-$upstream"
cd "$work"
tar --exclude=debian --sort=name --mtime=@0 --owner=0 --group=0 -czf "zerklsc_$upstream.orig.tar.gz" "zerklsc-$upstream"
cd "zerklsc-$upstream"

# `make test` has run the tests on the same sources.
DEB_BUILD_OPTIONS="nocheck ${DEB_BUILD_OPTIONS:-}" DEB_BUILD_PROFILES=nocheck dpkg-buildpackage -us -uc >../build.log 2>&1 \
    || { tail -n 40 ../build.log && exit 1; }
cd ..
# Not meant for Debian's own archive, whose first uploads close a bug.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs --tag-display-limit 0 ./*.changes

for package in ./*.deb; do
    dpkg-deb -x "$package" root
done
libraries=$(dirname "$(find "$PWD/root" -name 'libzerklsc.so.1')")
mkdir run
cd "zerklsc-$upstream"
AUTOPKGTEST_TMP="$work/run" PKG_CONFIG_PATH="$libraries/pkgconfig" LD_LIBRARY_PATH="$libraries" PATH="$work/root/usr/bin:$PATH" \
    debian/tests/readme
ls -l "$work"/*.deb
