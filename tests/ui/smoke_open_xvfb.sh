#!/bin/sh
# Starts the real vossel with a file to open, as a file manager does, on a virtual X display, and
# waits at most 20 seconds for the window title that shows the file's first sprite.
# Usage: smoke_open_xvfb.sh VOSSEL FOLDER FILE TITLE
#   the program is started in FOLDER with the single argument FILE (relative or absolute).
# Needs xvfb-run (xvfb, xauth) and xwininfo (x11-utils).
set -u
vossel=$1 folder=$2 file=$3 title=$4
[ -f "$folder/$file" ] || [ -f "$file" ] || { echo "$file is not installed: skipped"; exit 77; }
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT INT TERM
# A Wine prefix without a registry file: the start moves to the program's own folder, so a
# relative FILE only opens when it was made absolute first.
export WINEPREFIX="$prefix"
unset QT_QPA_PLATFORM
cd "$folder" || exit 1

xvfb-run -a sh -c '
  "$1" "$2" &
  pid=$!
  for _ in $(seq 40); do
    if xwininfo -root -tree 2>/dev/null | grep -qF "\"$3\""; then
      echo "window title \"$3\" reached"
      kill "$pid"
      exit 0
    fi
    kill -0 "$pid" 2>/dev/null || { echo "vossel ended before the title \"$3\""; exit 1; }
    sleep 0.5
  done
  echo "no window titled \"$3\" within 20 seconds"
  xwininfo -root -tree | grep -i vossel
  kill "$pid"
  exit 1
' smoke "$vossel" "$file" "$title"
