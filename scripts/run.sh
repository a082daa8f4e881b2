#!/usr/bin/env bash
# Sets everything up and runs the tool's main job on the store
# ($BRAXCFG_STORE, else the default one): the configuration window when
# there is a display to show it on; otherwise the overview of the
# configured interfaces and how to open the window. Arguments are a braxcfg
# command line instead (scripts/run.sh interfaces --json).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/ensure-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)" --target braxcfg_tool braxcfg_plugin
tool=build/default/bin/braxcfg
[ $# -gt 0 ] && exec "$tool" "$@"
# The same test the tool makes for "braxcfg" without a command.
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [[ ! "${QT_QPA_PLATFORM:-}" =~ ^(offscreen|minimal) ]]; then
  exec "$tool" gui
fi
"$tool" interfaces
echo "No display here: on a desktop, 'scripts/run.sh' (or '$tool gui') opens the configuration window."
