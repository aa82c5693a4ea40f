# Sourced by the smoke tests: a virtual X display of their own, and waiting for conditions.
#
# The display is started with -displayfd, so that the server itself takes the first free display
# number and says which once it accepts connections. Several tests (and other builds on the same
# machine) start displays at the same moment, and xvfb-run -a can then hand the program a number
# whose server it cannot connect to.
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

# Starts Xvfb, waits until a client can connect to it and exports DISPLAY; stop_xvfb ends it.
# A server starting for the same number at the same moment can take the socket of one that has
# already said it is ready (one such failure in 120 loaded runs): a display no client reaches
# within 10 seconds is given up for a new one.
start_xvfb() {
  command -v Xvfb >/dev/null || { echo "Xvfb is not installed: skipped"; exit 77; }
  _deadline=$(($(date +%s) + SMOKE_SECONDS))
  while :; do
    : >"$smoke_dir/display"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$smoke_dir/display" \
      2>>"$smoke_dir/xvfb.log" &
    xvfb_pid=$!
    until grep -q '^[0-9][0-9]*$' "$smoke_dir/display"; do
      if ! kill -0 "$xvfb_pid" 2>/dev/null || [ "$(date +%s)" -ge "$_deadline" ]; then
        echo "the virtual display did not start:"
        cat "$smoke_dir/xvfb.log"
        exit 1
      fi
      sleep 0.2
    done
    DISPLAY=:$(head -n 1 "$smoke_dir/display")
    export DISPLAY
    unset XAUTHORITY
    _reached=$(($(date +%s) + 10))
    until xwininfo -root >/dev/null 2>&1; do
      [ "$(date +%s)" -lt "$_reached" ] && sleep 0.2 && continue
      echo "display $DISPLAY cannot be reached; starting another" >&2
      stop_xvfb
      [ "$(date +%s)" -lt "$_deadline" ] && continue 2
      echo "no virtual display could be reached"
      exit 1
    done
    return 0
  done
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
