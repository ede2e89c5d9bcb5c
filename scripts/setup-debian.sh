#!/usr/bin/env bash
# Tarnsysm: installs what building, testing and benchmarking need on a fresh Debian machine.
# Run as root (or through sudo); packages already present are left alone.
set -euo pipefail
packages=(cmake ninja-build g++ clang clang-format binutils pkg-config
  libgtest-dev libbenchmark-dev libdxflib-dev libcli11-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
