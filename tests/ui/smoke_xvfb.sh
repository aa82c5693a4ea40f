#!/bin/sh
# Opens a GRF file in the real vossel on a virtual X display as a person would, with the keyboard:
# Ctrl+O, the path typed into the Open dialog, Return. Then waits for the title "Viewing sprite 1 (".
# Each step waits for the window it needs to be on screen, and sends its keys again when the
# program has not acted on them (a key can come before a window takes it, and the file name's
# completion list can take the first Return). Needs Xvfb and xdotool.
# Usage: smoke_xvfb.sh <path of vossel> [GRF file, openttd.grf by default]
set -u
vossel=$1
grf=${2:-/usr/share/games/openttd/baseset/openttd.grf}
if [ ! -f "$grf" ]; then
  echo "$grf is not installed"
  exit 77
fi
command -v xdotool >/dev/null || { echo "xdotool is not installed: skipped"; exit 77; }
. "$(dirname "$0")/xvfb.sh"
begin_smoke

"$vossel" &
vossel_pid=$!

fail() {
  echo "$1"
  xdotool search --onlyvisible --name . getwindowname %@ 2>/dev/null | sed 's/^/  on screen: /'
  exit 1
}
# Whether a window whose name matches the pattern is on screen (mapped and viewable); its id is
# left in $found. A program that has ended fails the test at once.
shown() {
  kill -0 "$vossel_pid" 2>/dev/null || fail "vossel ended"
  found=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1)
  [ -n "$found" ]
}
main_title='^Vossel \(GRF loader engine\)$'
dialog_title='^Open a GRF file\.\.\.$'
viewing_title='^Viewing sprite 1 \('

wait_until shown "$main_title" || fail "no main window"
main=$found
act_until 'xdotool windowfocus --sync "$main" key ctrl+o' shown "$dialog_title" ||
  fail "no Open dialog after Ctrl+O"
dialog=$found
# The path typed on every other try, Return alone on the others, while the dialog is open.
act_until 'if shown "$dialog_title"; then
    if [ $((_attempt % 2)) -eq 1 ]; then
      xdotool windowfocus --sync "$dialog" key ctrl+a type --delay 2 "$grf"
    fi
    xdotool windowfocus --sync "$dialog" key Return
  fi' shown "$viewing_title" || fail "no sprite on view after Return"
echo "$(xdotool getwindowname "$found") (keys sent $_attempt times)"
exit 0
