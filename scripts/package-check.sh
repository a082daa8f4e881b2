#!/usr/bin/env bash
# Builds the Debian package of the default build, unpacks it into a
# throw-away root and runs the installed tool from there: its version, a
# change and a read of a temporary store, and the plug-in it loads from the
# package's own lib folder.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/default
(cd "$build" && cpack -G DEB >/dev/null)
deb=$(ls -t "$build"/braxcfg_*.deb | head -n1)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg -x "$deb" "$root"
tool=(env -u BRAXCFG_PLUGIN -u BRAXCFG_MODULE_PATH "$root/usr/bin/braxcfg")
version=$("${tool[@]}" --version)
expected="braxcfg $(sed -n 's/^project(braxcfg VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
[ "$version" = "$expected" ] || { echo "package: --version says '$version', expected '$expected'" >&2; exit 1; }
store="$root/store.db"
"${tool[@]}" --store "$store" import tests/fixtures/setup_every_type.reg
"${tool[@]}" --store "$store" aliases set scope1 --resource TCPIP0::10.0.0.5::inst0::INSTR
[ "$("${tool[@]}" --store "$store" resolve scope1)" = "TCPIP0::10.0.0.5::inst0::INSTR" ]
# The plug-in's export, loaded from the unpacked lib folder (not the build tree).
[ "$("${tool[@]}" --store "$store" valid INTF0)" = "1" ]
loads=$(LD_DEBUG=files "${tool[@]}" --store "$store" valid INTF0 2>&1 >/dev/null)
grep -qF "file=$root/usr/lib/libbraxcfg.so " <<<"$loads" ||
    { echo "package: the tool did not load the plug-in from $root/usr/lib" >&2; exit 1; }
echo "package: $(basename "$deb") runs from its install root ($version)"
