#!/bin/sh
# unnamed_target.sh CASE SOURCES WORK: the library for a processor that CMake has no name or the wrong one for. It has its
# kernels, or it would not link, and gives the stored answers. It is hardly optimised, to be built sooner. Needs a cross
# compiler, GoogleTest's sources and an emulator; without them the exit code is 77.
set -eu
sources=$2 work=$3/$1

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
[ -d /usr/src/googletest ] || { echo "skipped: googletest is not installed" && exit 77; }

rm -rf "$work"
mkdir -p "$work"
cd "$work"
cat >toolchain.cmake <<END
$named
set(CMAKE_C_COMPILER $triplet-gcc)
set(CMAKE_CXX_COMPILER $triplet-g++)
END
cmake -S "$sources" -B build -G Ninja -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
    -DZERKLSC_TOOL=OFF -DZERKLSC_BENCH=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >output
cmake --build build --target zerklsc_answers >output
"$emulator" -L "/usr/$triplet" build/tests/answers/zerklsc_answers "$sources/tests/answers/answers.txt"
