#!/bin/sh
# reproducible.sh SOURCES WORK [BUILD_TYPE...]: the shared library is the same, bit for bit, from folders of other names and
# depths, in every build type.
set -eu
sources=$1
mkdir -p "$2"
work=$(cd "$2" && pwd)
shift 2
[ $# -gt 0 ] || set -- Debug Release RelWithDebInfo MinSizeRel

for folder in short "a longer/name with spaces"; do
    rm -rf "${work:?}/$folder"
    mkdir -p "$work/$folder"
    for item in CMakeLists.txt cmake include src; do
        cp -R "$sources/$item" "$work/$folder/"
    done
done
for type in "$@"; do
    for folder in short "a longer/name with spaces"; do
        build="$work/$folder/build-$type"
        cmake -S "$work/$folder" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="$type" -DZERKLSC_TESTS=OFF -DZERKLSC_TOOL=OFF \
            -DZERKLSC_INSTALL=OFF >/dev/null
        cmake --build "$build" --target zerklsc >/dev/null
    done
    cmp "$work/short/build-$type/src/libzerklsc.so" "$work/a longer/name with spaces/build-$type/src/libzerklsc.so"
    echo "$type: the same library from both folders"
done
