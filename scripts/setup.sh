#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks to build and test Kestrin: also the mingw-w64
# cross compiler and Wine for the Windows presets, widl (mingw-w64-tools) and Wine's IDL files
# (libwine-dev) for the ActiveX control's type library, Xvfb for the desktop its tests run on, xz
# for unpacking Qt for Windows, inih, the benchmarks' reference parser, and python3 for the
# mutation-testing script.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          qt6-base-dev qt6-tools-dev libqt6opengl6-dev libxkbcommon-dev libgl-dev fonts-dejavu-core poppler-utils
          g++-mingw-w64-x86-64-posix wine wine64 libinih-dev python3
          mingw-w64-tools libwine-dev xvfb xz-utils)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
