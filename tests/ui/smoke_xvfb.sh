#!/bin/sh
# Opens a GRF file in the real vossel on a virtual X display as a person would, with the keyboard:
# Ctrl+O, the path typed into the Open dialog, Return. Then waits for the title "Viewing sprite 1 (".
# Each step acts on the window that is on screen, and acts again when the program has not done
# what the keys ask within 5 seconds (a key can come before a window takes it, and the file
# name's completion list can take a Return). Needs Xvfb and xdotool.
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
# Steps toward the sprite on view, chosen by what is on screen: the Open dialog gets the path
# typed on every other try and Return, the main window (whose title says why a name it was given
# could not be opened) gets Ctrl+O. A new state is acted on at once, the same one again after 5
# seconds, the main window after the dialog only after 5 seconds. The completion list of the file
# name can swallow or reorder typed keys when it pops up, and a key can come before a window takes
# it: both are tried again.
deadline=$(($(date +%s) + SMOKE_SECONDS))
state= again=0 steps=0 dialog_tries=0
until shown "$viewing_title"; do
  if shown "$dialog_title"; then
    now=dialog.$found
  else
    now=main
  fi
  if [ "$now" = main ] && [ "${state%%.*}" = dialog ]; then
    # The dialog has closed on a name: the file is loading.
    state=main again=$(($(date +%s) + 5))
  elif [ "$now" != "$state" ] || [ "$(date +%s)" -ge "$again" ]; then
    [ "$now" = "$state" ] || dialog_tries=0
    state=$now again=$(($(date +%s) + 5)) steps=$((steps + 1))
    case $state in
      dialog.*)
        dialog_tries=$((dialog_tries + 1))
        if [ $((dialog_tries % 2)) -eq 1 ]; then
          xdotool windowfocus --sync "$found" key ctrl+a type --delay 8 "$grf"
        fi
        xdotool windowfocus --sync "$found" key Return
        ;;
      main) xdotool windowfocus --sync "$main" key ctrl+o ;;
    esac
  fi
  [ "$(date +%s)" -lt "$deadline" ] || fail "no sprite on view after $steps steps"
  sleep 0.2
done
echo "$(xdotool getwindowname "$found") (after $steps steps)"
exit 0
