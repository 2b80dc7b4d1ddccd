#!/bin/sh
# Installs what the build and the tests need. Does nothing when it is all there; as root or through
# sudo; where neither is possible it prints the command for someone who may.
set -eu

# libfontconfig-dev: Open CASCADE's own packages ask the linker for it without depending on it.
packages="g++ cmake ninja-build make pkg-config ccache git python3
libfmt-dev libcli11-dev libedit-dev libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev libzip-dev
zlib1g-dev libcurl4-openssl-dev libssl-dev openssl unzip zip python3-aiosmtpd python3-ezdxf qt6-base-dev
libocct-foundation-dev libocct-modeling-data-dev libocct-modeling-algorithms-dev libocct-data-exchange-dev
libtbb-dev libfontconfig-dev hershey-fonts-data binutils bash-completion file dpkg-dev"

missing=""
for package in $packages; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0

command="apt-get install -y --no-install-recommends$missing"
if [ "$(id -u)" = 0 ]; then
    run=""
elif command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
    run="sudo"
else
    echo "These packages are missing; install them with:" >&2
    echo "    sudo apt-get update && sudo $command" >&2
    exit 1
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$run apt-get update -qq
# shellcheck disable=SC2086
$run $command -qq >/dev/null
