#!/bin/sh
# Installs the Debian packages that a step of the build needs and the machine lacks: install-packages.sh STEP...
#   build    the library, the tool and the tests
#   ci       sanitizers with a second compiler, cross compilers and emulators, a browser for the report
#   afl      the second engine of the fuzz targets
#   targets  a linker for all of them
#   memory   what looks at memory from outside a program
#   coverage what counts the branches that the tests take
#   lint     what looks at the sources: formatting, faults, scripts, the reference of the header
#   package  Debian's tools for packages
#   arm      cross compilers of both ARMs, an emulator and models of their processors
#   bench    the libraries that the benchmarks compare with, and a profiler
#   slurm    a scheduler, to try a lot over several machines
set -eu

packages_of() {
    case $1 in
    build) echo cmake ninja-build g++ pkg-config libcli11-dev nlohmann-json3-dev libfmt-dev libpng-dev nettle-dev libtiff-dev libraw-dev libyaml-dev libtbb-dev libgtest-dev python3 zlib1g-dev scdoc mandoc zsh ;;
    ci) echo clang libclang-rt-14-dev abigail-tools darktable libimage-exiftool-perl chromium chromium-driver googletest qemu-user \
        g++-arm-linux-gnueabihf g++-aarch64-linux-gnu g++-i686-linux-gnu g++-s390x-linux-gnu ;;
    afl) echo afl++ ;;
    targets) echo lld ;;
    memory) echo valgrind ;;
    coverage) echo llvm ;;
    lint) echo clang-format clang-tidy shellcheck doxygen ;;
    package) echo build-essential debhelper dpkg-dev doxygen lintian ;;
    bench) echo libopencv-imgproc-dev liblensfun-dev libeigen3-dev libopenblas-dev linux-perf ;;
    arm) echo g++-arm-linux-gnueabihf g++-aarch64-linux-gnu googletest qemu-user llvm ;;
    slurm) echo slurm-wlm munge ;;
    *) echo "install-packages.sh: unknown step '$1' (build, ci, afl, targets, memory, coverage, lint, package, arm, bench or slurm)" >&2 && exit 2 ;;
    esac
}

is_installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null || true)" = installed ]
}

missing=
for step in "$@"; do
    wanted=$(packages_of "$step")
    for package in $wanted; do
        is_installed "$package" || missing="$missing $package"
    done
done
[ -n "$missing" ] || exit 0

# shellcheck disable=SC2086  # a list of names
if [ "$(id -u)" = 0 ]; then
    run=
elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    run=sudo
else
    echo "These packages are missing, and only root may install them. Please run:" >&2
    echo "    sudo apt-get install$missing" >&2
    exit 1
fi

echo "Installing$missing"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# Another apt on this machine is waited for; the lock of the package lists has no time-out of its own.
refresh() {
    for _ in 1 2 3 4 5 6; do
        $run apt-get update && return
        sleep 20
    done
    return 1
}
# shellcheck disable=SC2086
install() {
    DEBIAN_FRONTEND=noninteractive $run apt-get install -y --no-install-recommends -o DPkg::Lock::Timeout=600 $missing
}
if ! { refresh && install; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "install-packages.sh: apt-get could not install$missing" >&2
    exit 1
fi
