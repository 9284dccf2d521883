#!/bin/sh
# stored_abi.sh [--renew] TARGET...: the library's types and functions are those that its callers were compiled against.
# TARGET is x86_64-linux-gnu, or one with a toolchain file; tests/abi/TARGET.abi holds what is compared with.
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
renew=no
[ "$1" != --renew ] || { renew=yes && shift; }

for target in "$@"; do
    build=$top/build/abi-$target
    toolchain=$top/cmake/toolchains/$target.cmake
    set --
    [ ! -f "$toolchain" ] || set -- "-DCMAKE_TOOLCHAIN_FILE=$toolchain"
    cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DZERKLSC_TESTS=OFF -DZERKLSC_TOOL=OFF "$@" >/dev/null
    cmake --build "$build" --target zerklsc >/dev/null
    abidw --headers-dir "$top/include" --exported-interfaces-only --no-corpus-path --no-comp-dir-path --no-show-locs \
        --out-file "$build/zerklsc.abi" "$build/src/libzerklsc.so"
    sed -i "s|$top/||g" "$build/zerklsc.abi"
    if [ "$renew" = yes ]; then
        cp "$build/zerklsc.abi" "$top/tests/abi/$target.abi"
    else
        abidiff "$top/tests/abi/$target.abi" "$build/zerklsc.abi"
        echo "$target: the ABI is the stored one"
    fi
done
