#!/usr/bin/env bash
# Tarnsysm: configures a Release build in build/ with the tool, builds everything and runs every
# test (the tool's end-to-end tests and the Python module's included).
# Extra arguments go to the CMake configure step.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNSYSM_BUILD_TOOLS=ON -DTARNSYSM_BUILD_PYTHON=ON "$@"
cmake --build build
ctest --test-dir build --output-on-failure -j2
