#!/usr/bin/env bash
# The LAN resource list under a real X server, driven with real key presses
# as a person would: Add device, alias, host, port, OK, OK; then the store
# holds the device and the alias. Exit 77 (skipped) when no X server can be
# started here.
set -euo pipefail
tool="$1"
work=$(mktemp -d)
xpid=""
tpid=""
cleanup() {
  [ -n "$tpid" ] && kill "$tpid" 2>/dev/null || true
  [ -n "$xpid" ] && kill "$xpid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

command -v Xvfb >/dev/null && command -v xdotool >/dev/null || { echo "skipped: Xvfb or xdotool missing"; exit 77; }
exec 3>"$work/display"
Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1024x768x24 >"$work/xvfb.log" 2>&1 &
xpid=$!
exec 3>&-
for _ in $(seq 100); do [ -s "$work/display" ] && break; kill -0 "$xpid" 2>/dev/null || break; sleep 0.1; done
[ -s "$work/display" ] || { echo "skipped: Xvfb did not start: $(cat "$work/xvfb.log")"; exit 77; }
export DISPLAY=":$(head -n1 "$work/display")"
unset QT_QPA_PLATFORM
# For a sanitizer build: leaks of the system's X11 libraries are not ours.
export LSAN_OPTIONS="suppressions=$(dirname "$0")/lsan.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"

store="$work/store.db"
cat >"$work/lan.reg" <<'REG'
REGEDIT4

[HKEY_LOCAL_MACHINE\SOFTWARE\Tolvane\Linkbase\CurrentVersion\INTF2]
"VISAName"="TCPIP0"
"VISAIntfType"="TCPIP"

[HKEY_LOCAL_MACHINE\SOFTWARE\Tolvane\Linkbase\CurrentVersion\INTF2\VISADev]

[HKEY_LOCAL_MACHINE\SOFTWARE\Tolvane\Linkbase\CurrentVersion\VISAInfo\DefaultRsrcs\SOCKET]
"DrvrName"="sock"
"PrefixName"="TCPIP"
"TCPIP"=hex:01
REG
"$tool" --store "$store" import "$work/lan.reg"

"$tool" --store "$store" dialog tcpip INTF2 >"$work/out" 2>"$work/err" &
tpid=$!

# Waits for a window with this title and gives it the keyboard.
focus() {
  local id
  id=$(timeout 30 xdotool search --sync --onlyvisible --name "^$1\$" | head -n1)
  xdotool windowfocus --sync "$id"
}

focus "TCPIP devices"
xdotool key alt+a
focus "Add a TCPIP resource"
xdotool key ctrl+a
xdotool type --delay 20 "bench"
xdotool key Tab
xdotool type --delay 20 "127.0.0.1"
xdotool key Tab
xdotool type --delay 20 "5025"
xdotool key Return
focus "TCPIP devices"
xdotool key Return
status=0
wait "$tpid" || status=$?
tpid=""
[ "$status" -eq 0 ] || { echo "the dialog exited with $status:"; cat "$work/err"; exit 1; }

devices=$("$tool" --store "$store" devices INTF2)
aliases=$("$tool" --store "$store" aliases)
echo "$devices"
echo "$aliases"
grep -q "TCPIP0::127.0.0.1::5025::SOCKET" <<<"$devices"
grep -q "bench" <<<"$aliases"
grep -q "TCPIP0::127.0.0.1::5025::SOCKET" <<<"$aliases"
