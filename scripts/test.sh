#!/usr/bin/env bash
# Sets everything up and runs every test: installs missing packages,
# configures and builds the default preset, and runs CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/ensure-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)"
ctest --preset default
