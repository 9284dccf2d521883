#!/usr/bin/env bash
# Makes a folder to cross-compile the tool in: the libraries that it links, of another Debian architecture, unpacked and not
# installed, so that this machine's own packages stay as they are: sysroot.sh ARCHITECTURE FOLDER. It needs no root.
set -euo pipefail
architecture=$1
mkdir -p "$2"
folder=$(realpath "$2")
[ ! -e "$folder/complete" ] || exit 0

# A state of apt's own, in which nothing is installed: it downloads all that these need.
apt=$folder.apt
mkdir -p "$apt/state/lists/partial" "$apt/cache/archives/partial"
: >"$apt/status"
cat >"$apt/apt.conf" <<END
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Install-Recommends "false";
APT::Sandbox::User "$(id -un)";
Dir::State "$apt/state";
Dir::State::status "$apt/status";
Dir::Cache "$apt/cache";
END
export APT_CONFIG=$apt/apt.conf
{
    apt-get update
    apt-get install -y --download-only libc6-dev libcli11-dev libfmt-dev libpng-dev libraw-dev libtbb-dev libtiff-dev \
        libyaml-dev nettle-dev nlohmann-json3-dev zlib1g-dev
} >"$apt/log" 2>&1 || { tail -n 20 "$apt/log" >&2; exit 1; }
for package in "$apt"/cache/archives/*.deb; do
    dpkg --extract "$package" "$folder"
done
rm -r "$apt"
touch "$folder/complete"
