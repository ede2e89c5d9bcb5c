#!/usr/bin/env bash
# Tarnsysm: installs what building, testing and benchmarking need on a fresh Debian machine.
# Packages already present are left alone; when not run as root it asks sudo for the install.
# With --windows it installs the MinGW-w64 cross compilers and wine instead.
set -euo pipefail
packages=(cmake ninja-build g++ clang clang-format binutils pkg-config
  libgtest-dev libbenchmark-dev libdxflib-dev libcli11-dev doxygen
  pybind11-dev python3-dev python3-numpy python3-pytest python3-ezdxf)
if [ "${1:-}" = --windows ]; then
  packages=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix wine64 binutils-mingw-w64-i686)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
  as_root=()
  [ "$(id -u)" = 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
