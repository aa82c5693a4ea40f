#!/bin/sh
# Starts the real vossel on a virtual X display and waits, at most 20 seconds, until its main
# window is mapped; then ends it. Needs xvfb-run (xvfb, xauth) and xwininfo (x11-utils).
# Usage: smoke_xvfb.sh <path of vossel>
set -u
vossel=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT INT TERM
# A Wine prefix of its own without a registry file: the program starts in its own folder.
export WINEPREFIX="$prefix"
unset QT_QPA_PLATFORM

xvfb-run -a sh -c '
  "$1" &
  pid=$!
  tries=0
  while [ $tries -lt 40 ]; do
    id=$(xwininfo -root -tree 2>/dev/null | grep "\"Vossel (GRF loader engine)\"" | awk "{print \$1}" | head -n 1)
    if [ -n "$id" ] && xwininfo -id "$id" 2>/dev/null | grep -q "Map State: IsViewable"; then
      echo "main window $id is mapped"
      kill "$pid"
      wait "$pid" 2>/dev/null
      exit 0
    fi
    if ! kill -0 "$pid" 2>/dev/null; then
      echo "vossel ended before its window was mapped"
      exit 1
    fi
    sleep 0.5
    tries=$((tries + 1))
  done
  echo "no mapped main window within 20 seconds"
  kill "$pid"
  exit 1
' smoke "$vossel"
