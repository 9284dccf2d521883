#!/bin/sh
# sources.sh CASE SOURCES WORK: what the sources do in the hands of another project or packager.
set -eu
sources=$2 work=$3/$1
rm -rf "$work"
mkdir -p "$work"
cd "$work"

# What is needed for the library alone, in a folder with a space in its name.
copy="$work/a copy"
copy_sources() {
    mkdir "$copy"
    for item in CMakeLists.txt Makefile README.md CHANGELOG.md CONTRIBUTING.md LICENSE SECURITY.md cmake docs examples include src; do
        cp -R "$sources/$item" "$copy/"
    done
}

case $1 in
in_source) # refused, and the Makefile stays
    copy_sources
    if (cd "$copy" && cmake . >output 2>&1); then
        echo "a build in the source folder was accepted" && exit 1
    fi
    grep -q 'name a build folder' "$copy/output"
    cmp "$copy/Makefile" "$sources/Makefile"
    ;;
absolute_folders) # taken as they are; everything else stays relative; without a build type it is a release
    cmake -S "$sources" -B build -G Ninja -DZERKLSC_TESTS=OFF -DZERKLSC_TOOL=OFF \
        -DCMAKE_INSTALL_LIBDIR=/opt/vendor/lib -DCMAKE_INSTALL_INCLUDEDIR=/opt/vendor/include >output
    grep -qx 'libdir=/opt/vendor/lib' build/zerklsc.pc
    grep -qx 'includedir=/opt/vendor/include' build/zerklsc.pc
    grep -q -- '-O3 -DNDEBUG' build/build.ninja
    cmake build -DCMAKE_INSTALL_LIBDIR=lib/x86_64-linux-gnu -DCMAKE_INSTALL_INCLUDEDIR=include >output
    # shellcheck disable=SC2016  # variables of pkg-config
    grep -qx 'prefix=${pcfiledir}/../../..' build/zerklsc.pc
    # shellcheck disable=SC2016
    grep -qx 'includedir=${prefix}/include' build/zerklsc.pc
    ;;
subproject) # a static library, from folders with spaces, linked by a C compiler with -lm and nothing else
    copy_sources
    cp -R "$sources/tests/install/subproject" "$sources/tests/install/consumer" .
    cmake -S subproject -B "a build" -G Ninja "-DSOURCES=$copy" -DCMAKE_INSTALL_PREFIX="$work/prefix" \
        -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >output
    grep -q -- '-O3 -DNDEBUG' "a build/build.ninja"
    cmake "a build" -DCMAKE_CXX_FLAGS_RELEASE=-O1 >output # is built sooner
    cmake --build "a build" >output
    "a build/subproject"
    cmake --install "a build" >output
    export PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig"
    # shellcheck disable=SC2046  # flags, split on purpose
    ${CC:-cc} -std=c99 consumer/consumer.c -o consumer_static $(pkg-config --static --cflags --libs zerklsc)
    ./consumer_static
    ;;
esac
