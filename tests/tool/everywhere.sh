#!/usr/bin/env bash
# Builds the tool for other processors, lets it write files of every kind there, compares them byte by byte with those that
# the tool of this machine writes, and runs the tool's cases: everywhere.sh TOOL [FAMILY...]. The families are all where none
# is named: i686, which an x86-64 machine runs itself, and under emulation arm, the target, and s390x, which has the high byte
# first.
set -euo pipefail
tool=$(realpath "$1")
shift
cd "$(dirname "$0")/../.."

declare -A triple=([arm]=arm-linux-gnueabihf [s390x]=s390x-linux-gnu)
declare -A debian=([arm]=armhf [s390x]=s390x)

# build FAMILY FOLDER makes FOLDER/run/zerklsc; under emulation a script that stands where a test expects a program.
build() {
    mkdir -p "$2/run"
    if [ "$1" = i686 ]; then
        cmake/sysroot.sh i386 build/sysroot/i386 && cmake --preset i686-tool && cmake --build --preset i686-tool &&
            ln -sf "$PWD/build/i686-tool/tool/zerklsc" "$2/run/zerklsc"
        return
    fi
    local name=${triple[$1]} sysroot=$PWD/build/sysroot/${debian[$1]}
    cmake/sysroot.sh "${debian[$1]}" "$sysroot" &&
        PKG_CONFIG_SYSROOT_DIR=$sysroot PKG_CONFIG_LIBDIR=$sysroot/usr/lib/$name/pkgconfig:$sysroot/usr/share/pkgconfig \
            cmake -G Ninja -S . -B "$2/build" -DCMAKE_SYSROOT="$sysroot" --toolchain "cmake/toolchains/$name.cmake" \
            -DCMAKE_LIBRARY_ARCHITECTURE="$name" -DCMAKE_BUILD_TYPE=Release -DZERKLSC_UNITY=ON -DZERKLSC_WERROR=ON \
            -DZERKLSC_TESTS=OFF -DZERKLSC_INSTALL=OFF &&
        cmake --build "$2/build" --target zerklsc_tool &&
        printf '#!/bin/sh\nexec qemu-%s -L %s %s/build/tool/zerklsc "$@"\n' "$1" "$sysroot" "$2" >"$2/run/zerklsc" &&
        chmod +x "$2/run/zerklsc"
}

# Files of every format, in the current folder, of a module with levels and steps that are not alike. Exit codes are told
# where a verdict decides them.
write_files() {
    "$1" simulate --width 324 --height 250 --pattern GBRG --black-level 62 -o flat.pgm
    "$1" simulate --width 324 --height 250 --pattern GBRG --black-level 62 --seed 5 -o other.pgm
    for algorithm in halvane orvel-otp orvel beta orvel-weights; do
        "$1" calibrate flat.pgm --algorithm $algorithm --step 20 --radius 6 --shading 80 --force -o $algorithm.json \
            --text $algorithm.txt
    done
    "$1" otp encode orvel.json --container --serial A0317 --force -o module.otp --c-array module.h
    "$1" otp encode orvel.json --mode 1 --force -o stream.bin
    "$1" otp decode module.otp -o decoded.json
    "$1" correct flat.pgm --tables orvel.json -o corrected.pgm
    "$1" preview flat.pgm --tables orvel.json -o preview.png
    "$1" report flat.pgm --tables orvel.json -o page.html
    "$1" resample orvel.json --step 9 -o resampled.json --text resampled.txt
    for format in rkisp1 rkisp1-polynomial alsc android c csv npy text; do
        "$1" convert orvel.json --ct 5000 --to $format -o converted.$format
    done
    "$1" convert orvel.json --raw flat.pgm -o converted.dng
    "$1" convert converted.dng -o from_dng.json
    "$1" convert converted.rkisp1 --size 324,250 -o from_yaml.json
    for command in check measure info compare; do
        "$1" $command flat.pgm --json >$command.json || echo "$command: $?"
    done
    printf 'serial,files\nA1,flat.pgm\nA2,other.pgm\n' >lot.csv
    "$1" batch lot.csv --step 20 --force -o results.jsonl --tables tables --streams streams --jobs 1 || echo "batch: $?"
    "$1" lot results.jsonl --golden golden.json -o lot.html
    "$1" lot results.jsonl --partial part.lot
}

# write_into FOLDER TOOL; what is printed is a file too. A shell of its own ends at the first command that fails.
export -f write_files
write_into() {
    rm -rf "$1"
    mkdir -p "$1"
    (cd "$1" && bash -euc 'write_files "$1"' write "$2" >printed 2>&1) || { tail -n 5 "$1/printed" >&2; exit 1; }
}

here=build/files/here
write_into $here "$tool"
[ $# != 0 ] || set -- i686 arm s390x
for family in "$@"; do
    top=$PWD/build/files/$family
    mkdir -p "$top"
    build "$family" "$top" >"$top/log" 2>&1 || { tail -n 30 "$top/log" >&2; exit 1; }
    write_into "$top/written" "$top/run/zerklsc"
    diff -r $here "$top/written"
    echo "$family: all $(find "$top/written" -type f | wc -l) files are the same"
    if [ "$family" = i686 ]; then
        ctest --preset i686-tool -j "$(nproc)" --progress
    else
        # An emulator needs more address space than the first of these allows, and the second has a copy of the tool, which
        # here is a script; the frames of the manual's examples have 13 megapixels, for which it takes longer than the
        # cases may.
        mapfile -t cases < <(find tests/tool/cases -mindepth 1 -maxdepth 1 ! -name sizes_are_bounded \
            ! -name readers_missing ! -name help_examples_work | sort)
        printf '%s\0' "${cases[@]}" | xargs -0 -n 1 -P "$(nproc)" tests/tool/run.py --tool "$top/run/zerklsc"
        echo "$family: ${#cases[@]} cases of the tool pass"
    fi
done
