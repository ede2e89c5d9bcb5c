#!/usr/bin/env bash
# Tarnsysm: configures a Release build in build/, builds everything and runs every test.
# Extra arguments go to the CMake configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release "$@"
cmake --build build
ctest --test-dir build --output-on-failure -j2
