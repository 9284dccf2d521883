#!/bin/sh
# unnamed_target.sh CASE SOURCES LIBRARY WORK: the library for a processor that CMake has no name or the wrong one for. It
# has its kernels, or it would not link, and gives the bits of LIBRARY, which is for this machine. It is hardly optimised, to
# be built sooner. Needs a cross compiler and an emulator; without them the exit code is 77.
set -eu
sources=$2 library=$3 work=$4/$1
program=$sources/tests/cpu/bits.c

case $1 in
i386_called_x86_64) # as in a 32-bit container, whose kernel says x86_64
    triplet=i686-linux-gnu emulator=qemu-i386
    named="set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)"
    ;;
arm_without_a_name)
    triplet=arm-linux-gnueabihf emulator=qemu-arm
    named="set(CMAKE_SYSTEM_NAME Linux)"
    ;;
esac
for command in $triplet-gcc $triplet-g++ $emulator; do
    command -v "$command" >/dev/null || { echo "skipped: $command is not installed" && exit 77; }
done

rm -rf "$work"
mkdir -p "$work"
cd "$work"
cat >toolchain.cmake <<END
$named
set(CMAKE_C_COMPILER $triplet-gcc)
set(CMAKE_CXX_COMPILER $triplet-g++)
END
cmake -S "$sources" -B build -G Ninja -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DZERKLSC_TESTS=OFF -DZERKLSC_TOOL=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >output
cmake --build build >output
"$triplet-gcc" -std=c99 -static -I"$sources/include" "$program" -o bits build/src/libzerklsc.a -lm
"$emulator" ./bits >bits.txt

${CC:-cc} -std=c99 -I"$sources/include" "$program" -o expected "$library" \
    -Wl,-rpath,"$(dirname "$library")" -lm
./expected >expected.txt
cat expected.txt
diff expected.txt bits.txt
