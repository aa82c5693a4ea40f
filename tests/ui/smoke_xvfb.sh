#!/bin/sh
# Opens a GRF file in the real vossel on a virtual X display as a person would, with the keyboard:
# Ctrl+O, the path typed into the Open dialog, Return. Then waits for the title "Viewing sprite 1 (".
# Each window gets 20 seconds. Needs xvfb-run (xvfb, xauth) and xdotool.
# Usage: smoke_xvfb.sh <path of vossel> [GRF file, openttd.grf by default]
set -u
vossel=$1
grf=${2:-/usr/share/games/openttd/baseset/openttd.grf}
if [ ! -f "$grf" ]; then
  echo "$grf is not installed"
  exit 77
fi
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT INT TERM
# A Wine prefix of its own without a registry file: the program starts in its own folder.
export WINEPREFIX="$prefix"
unset QT_QPA_PLATFORM

xvfb-run -a sh -c '
  "$1" &
  pid=$!
  # The id of the first window whose name matches the pattern, once there is one.
  wait_for() {
    for _ in $(seq 40); do
      id=$(xdotool search --name "$1" 2>/dev/null | head -n 1)
      if [ -n "$id" ]; then echo "$id"; return 0; fi
      kill -0 "$pid" 2>/dev/null || return 1
      sleep 0.5
    done
    return 1
  }
  fail() { echo "$1"; kill "$pid" 2>/dev/null; exit 1; }
  main=$(wait_for "^Vossel \(GRF loader engine\)$") || fail "no main window"
  xdotool windowfocus --sync "$main" key ctrl+o
  dialog=$(wait_for "^Open a GRF file\.\.\.$") || fail "no Open dialog after Ctrl+O"
  xdotool windowfocus --sync "$dialog" type --delay 2 "$2"
  xdotool key Return
  shown=$(wait_for "^Viewing sprite 1 \(") || fail "no sprite on view after Return"
  echo "$(xdotool getwindowname "$shown")"
  kill "$pid"
  wait "$pid" 2>/dev/null
  exit 0
' smoke "$vossel" "$grf"
