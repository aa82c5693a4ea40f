# Sourced by the smoke tests: a virtual X display of their own, and waiting for conditions.
#
# Each display takes a number of its own, drawn at random from a wide range, rather than the
# first free one: tests and other builds on the same machine start and end displays at the same
# moment, and a server ending on a low number removes the socket of the next one to take it.
#
# Every wait polls for what the test needs and gives up only after SMOKE_SECONDS (60 by default),
# far beyond what a loaded machine takes, instead of sleeping a fixed time.

SMOKE_SECONDS=${SMOKE_SECONDS:-60}

# Polls the command until it succeeds, every 0.2 seconds, for SMOKE_SECONDS at most.
wait_until() {
  _deadline=$(($(date +%s) + SMOKE_SECONDS))
  until "$@"; do
    [ "$(date +%s)" -lt "$_deadline" ] || return 1
    sleep 0.2
  done
}

# Starts Xvfb on a free number, waits until a client reaches it and exports DISPLAY; stop_xvfb
# ends it. A number another server holds makes ours end at once, and a display no client reaches
# within 10 seconds is given up: both are tried again on another number.
start_xvfb() {
  command -v Xvfb >/dev/null || { echo "Xvfb is not installed: skipped"; exit 77; }
  _deadline=$(($(date +%s) + SMOKE_SECONDS))
  while [ "$(date +%s)" -lt "$_deadline" ]; do
    _number=$(($(od -An -N2 -tu2 /dev/urandom) % 30000 + 1000))
    [ -e "/tmp/.X$_number-lock" ] && continue
    Xvfb ":$_number" -screen 0 1280x1024x24 -nolisten tcp 2>>"$smoke_dir/xvfb.log" &
    xvfb_pid=$!
    DISPLAY=:$_number
    export DISPLAY
    unset XAUTHORITY
    _reached=$(($(date +%s) + 10))
    # Reached, and by our own server: one holding the number already would answer too.
    until xwininfo -root >/dev/null 2>&1 && kill -0 "$xvfb_pid" 2>/dev/null; do
      kill -0 "$xvfb_pid" 2>/dev/null && [ "$(date +%s)" -lt "$_reached" ] || break
      sleep 0.2
    done
    if kill -0 "$xvfb_pid" 2>/dev/null && xwininfo -root >/dev/null 2>&1; then
      return 0
    fi
    echo "display $DISPLAY cannot be had; trying another" >&2
    stop_xvfb
  done
  echo "no virtual display could be started:"
  cat "$smoke_dir/xvfb.log"
  exit 1
}

stop_xvfb() {
  [ -n "${xvfb_pid:-}" ] || return 0
  kill "$xvfb_pid" 2>/dev/null
  wait "$xvfb_pid" 2>/dev/null
  xvfb_pid=
}

# What every smoke test begins with: a folder of its own in $smoke_dir, which is also an empty
# Wine prefix (no registry, so the program starts in its own folder), and the display; on exit the
# program started as $vossel_pid, the display and the folder go.
begin_smoke() {
  smoke_dir=$(mktemp -d)
  vossel_pid=
  trap end_smoke EXIT
  trap 'exit 1' INT TERM
  export WINEPREFIX="$smoke_dir"
  unset QT_QPA_PLATFORM
  start_xvfb
}

end_smoke() {
  [ -z "$vossel_pid" ] || kill "$vossel_pid" 2>/dev/null
  stop_xvfb
  rm -rf "$smoke_dir"
}
