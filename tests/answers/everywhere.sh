#!/usr/bin/env bash
# Compares the stored answers on every processor family that Debian's cross compilers know, with GCC and Clang, without
# optimisation, with all of it, and linked as a whole: everywhere.sh [FAMILY...]. Each family but the machine's own runs
# under emulation; a program for 32-bit ARM runs on a processor with NEON and on one where its instructions trap.
set -euo pipefail
cd "$(dirname "$0")/../.."

# What a family's compilers are called, and the cpus that the emulator is to be.
declare -A triple=([x86_64]="" [i686]=i686-linux-gnu [arm]=arm-linux-gnueabihf [aarch64]=aarch64-linux-gnu [s390x]=s390x-linux-gnu)
declare -A emulator=([x86_64]="" [i686]=qemu-i386 [arm]=qemu-arm [aarch64]=qemu-aarch64 [s390x]=qemu-s390x)
declare -A cpus=([arm]="max cortex-a15,neon=off")
declare -A flags=([O0]=-O0 [O3]=-O3 [lto]="-O3 -flto")

# build FAMILY COMPILER FORM FOLDER. Clang's own linker does not know s390x; GNU's crashes where it optimises for 32-bit ARM.
build() {
    local name=${triple[$1]} chosen=()
    case $2 in
    gcc) chosen=(-DCMAKE_C_COMPILER="${name:+$name-}gcc" -DCMAKE_CXX_COMPILER="${name:+$name-}g++") ;;
    clang)
        chosen=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++)
        [ "$1" = s390x ] || chosen+=(-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld)
        ;;
    esac
    if [ -n "$name" ]; then
        chosen+=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$1" -DCMAKE_FIND_ROOT_PATH="/usr/$name"
            -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY)
        [ "$2" = gcc ] || chosen+=(-DCMAKE_C_COMPILER_TARGET="$name" -DCMAKE_CXX_COMPILER_TARGET="$name")
    fi
    cmake -G Ninja -S . -B "$4" "${chosen[@]}" -DCMAKE_BUILD_TYPE=None -DCMAKE_C_FLAGS="${flags[$3]}" \
        -DCMAKE_CXX_FLAGS="${flags[$3]}" -DZERKLSC_WERROR=ON -DZERKLSC_TOOL=OFF -DZERKLSC_BENCH=OFF -DZERKLSC_INSTALL=OFF
    cmake --build "$4" --target zerklsc_answers
}

# compare FAMILY FOLDER
compare() {
    local program=$2/tests/answers/zerklsc_answers processor
    if [ -z "${emulator[$1]}" ]; then
        "$program" tests/answers/answers.txt
        return
    fi
    for processor in ${cpus[$1]:-max}; do
        "${emulator[$1]}" -cpu "$processor" -L "/usr/${triple[$1]}" "$program" tests/answers/answers.txt | sed "s/^/$processor, /"
    done
}

[ $# != 0 ] || set -- x86_64 i686 arm aarch64 s390x
for family in "$@"; do
    for compiler in gcc clang; do
        for form in O0 O3 lto; do
            folder=build/answers/$family-$compiler-$form
            mkdir -p "$folder"
            build "$family" "$compiler" "$form" "$folder" >"$folder/log" 2>&1 || { tail -n 30 "$folder/log" >&2; exit 1; }
            compare "$family" "$folder" | sed "s/^/$family, $compiler, $form, /"
        done
    done
done
