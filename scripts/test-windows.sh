#!/usr/bin/env bash
# The Windows build and its tests, on Debian: cross-builds the store layers,
# the headless tool and their tests with MinGW-w64 (preset "mingw"), runs
# the registry conformance suite and the store tests under Wine against
# Wine's registry, and round-trips realistic configurations between braxcfg
# and Wine's regedit. Needs the native tool (build/default/bin/braxcfg),
# which it builds when missing.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/ensure-deps.sh --windows

seconds() { date +%s; }
start=$(seconds)

cmake --preset mingw >/dev/null
cmake --build --preset mingw -j"$(nproc)"
built=$(seconds)

export WINEPREFIX="${WINEPREFIX:-$PWD/build/mingw/wineprefix}"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="  # no runtime installers on first start
wineboot --init >/dev/null 2>&1 || true
wineserver --wait
prefix=$(seconds)

# Store tests that meet a known deviation of Wine's registry; the
# conformance suite tests each deviation itself, by name.
wine_deviations=(
  # value-order: Wine enumerates values sorted by name, Windows in creation order.
  DeviceEntries.AutoConfigFlagIsStoredAsOneWhenMissing
  SetupIntfEntries.CreatesTheClassesMarkedForTheTypeWord
  VisaInfo.IsWrittenOncePerProcessEvenWhenTheFirstWriteFails
  VisaInfo.KeepsTunedLimitsAndAddedClassesAndDropsObsoleteTables
  # narrow-path-limit: Wine's A calls take subkey paths of at most 260
  # characters; the 512-level tree builds longer ones (under Wine the rename
  # pass then never finishes).
  RenameIntfEntries.LeavesAnEntryTooDeepToCopyAndFinishesThePass
)
filter="-$(IFS=:; echo "${wine_deviations[*]}")"

status=0
echo "== conformance suite under Wine"
wine build/mingw/tests/conformance/test_conformance.exe || status=1
echo "== store tests under Wine (known Wine deviations left out: ${#wine_deviations[@]})"
wine build/mingw/tests/store/test_store.exe --gtest_filter="$filter" || status=1
tested=$(seconds)

echo "== .reg round trip with Wine's regedit"
tool=build/default/bin/braxcfg
[ -x "$tool" ] || { cmake --preset default >/dev/null && cmake --build --preset default --target braxcfg_tool; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
product='HKEY_LOCAL_MACHINE\SOFTWARE\Tolvane'
# Every kind of value .reg text carries, and a whole configuration after
# set-up and end of pass (its template filled in).
sed -e 's/@VERSION@/1.0.0.0/; s/@LASTMOD@/Tue Nov 24 14:50:00 2026/; s/@VERSIONNBR@/00100000/' \
    -e 's/@MANFID@/00000b5a/; s/@YEARS@/2024-2026/; s/@BASEDIR@/C:\\\\Tolvane/' \
  tests/fixtures/setup_every_type.expected.reg >"$work/configuration.reg"
for fixture in tests/fixtures/regfile_roundtrip.utf16.reg "$work/configuration.reg"; do
  echo "-- $(basename "$fixture")"
  "$tool" --store "$work/a.db" import "$fixture"
  "$tool" --store "$work/a.db" export --key "$product" "$work/braxcfg.reg"
  wine reg delete "$product" /f >/dev/null 2>&1 || true
  # braxcfg's file into Wine's registry, read back by the Windows build of
  # braxcfg (the registry backend): every value arrives as it was.
  wine regedit /S "$(winepath -w "$work/braxcfg.reg")"
  wine build/mingw/bin/braxcfg.exe export --key "$product" "$(winepath -w "$work/registry.reg")"
  tests/windows/reg_compare.py "$work/braxcfg.reg" "$work/registry.reg" || status=1
  # regedit's own export, read by braxcfg: what it holds is kept.
  wine regedit /E "$(winepath -w "$work/regedit.reg")" "$product"
  "$tool" --store "$work/b.db" import "$work/regedit.reg"
  "$tool" --store "$work/b.db" export --key "$product" "$work/reimported.reg"
  tests/windows/reg_compare.py "$work/regedit.reg" "$work/reimported.reg" || status=1
  tests/windows/reg_compare.py --allow-short-dword-export "$work/braxcfg.reg" "$work/regedit.reg" || status=1
  rm -f "$work"/*.db*
done
wineserver --wait
done_at=$(seconds)

echo "== Windows build: cross build $((built - start)) s, Wine start $((prefix - built)) s," \
     "tests under Wine $((tested - prefix)) s, regedit round trip $((done_at - tested)) s"
exit $status
