#!/usr/bin/env bash
# Sets everything up and runs the tool's main job on the default store:
# the overview of the configured interfaces.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/ensure-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)" --target braxcfg_tool braxcfg_plugin
exec build/default/bin/braxcfg interfaces "$@"
