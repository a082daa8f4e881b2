#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and the benchmarks
# need, when any is missing. Safe to run again: it does nothing then.
#   ensure-deps.sh [--windows]   --windows: the Windows cross build and Wine instead
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libsqlite3-dev sqlite3
  qt6-base-dev qt6-base-dev-tools libgl-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev llvm
  libtirpc-dev rpcbind rpcsvc-proto iproute2 util-linux
  python3-pyvisa
  libcli11-dev nlohmann-json3-dev xvfb xdotool
  dpkg-dev file
)
if [ "${1:-}" = "--windows" ]; then
  # MinGW-w64 with POSIX threads (std::thread, std::mutex), and Wine to run
  # what it builds.
  packages=(g++-mingw-w64-x86-64-posix wine wine64 cmake ninja-build googletest python3
            libcli11-dev nlohmann-json3-dev)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "need root (or sudo) to install: ${missing[*]}" >&2; exit 1; }
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
