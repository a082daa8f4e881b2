#!/usr/bin/env bash
# Installs the Debian 12 packages the Windows cross build and its Wine run
# need (MinGW-w64 with POSIX threads, Wine), when any is missing.
set -euo pipefail

packages=(g++-mingw-w64-x86-64-posix wine wine64)

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
