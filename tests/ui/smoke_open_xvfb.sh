#!/bin/sh
# Starts the real vossel with a file to open, as a file manager does, on a virtual X display, and
# waits for the window title that shows the file's first sprite (60 seconds at most).
# Usage: smoke_open_xvfb.sh VOSSEL FOLDER FILE TITLE
#   the program is started in FOLDER with the single argument FILE (relative or absolute).
# Needs Xvfb and xwininfo (x11-utils).
set -u
vossel=$1 folder=$2 file=$3 title=$4
[ -f "$folder/$file" ] || [ -f "$file" ] || { echo "$file is not installed: skipped"; exit 77; }
. "$(dirname "$0")/xvfb.sh"
# The start moves to the program's own folder, so a relative FILE only opens when it was made
# absolute first.
begin_smoke
cd "$folder" || exit 1

"$vossel" "$file" &
vossel_pid=$!

titled() {
  kill -0 "$vossel_pid" 2>/dev/null || { echo "vossel ended before the title \"$title\""; exit 1; }
  xwininfo -root -tree 2>/dev/null | grep -qF "\"$title\""
}
if wait_until titled; then
  echo "window title \"$title\" reached"
  exit 0
fi
echo "no window titled \"$title\" within $SMOKE_SECONDS seconds; the windows are:"
xwininfo -root -tree | grep '"'
exit 1
