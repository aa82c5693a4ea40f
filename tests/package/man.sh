#!/bin/sh
# The manual pages render without a warning from groff or man, and vossel-cli's page and its bash
# completion know every command and option that `vossel-cli --help` names.
# Usage: man.sh VOSSEL-CLI MAN-FOLDER COMPLETION-SCRIPT
set -u
cli=$1 pages=$2 completion=$3
command -v groff >/dev/null && command -v man >/dev/null || { echo "groff or man missing"; exit 77; }
status=0
for page in "$pages/vossel.1" "$pages/vossel-cli.1"; do
  warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
  [ -z "$warnings" ] || { echo "$page: groff warns:"; echo "$warnings"; status=1; }
  shown=$(MANWIDTH=80 LC_ALL=C.UTF-8 man --warnings -l "$page" 2>"${TMPDIR:-/tmp}/man-$$.err")
  if [ -s "${TMPDIR:-/tmp}/man-$$.err" ]; then
    echo "$page: man warns:"; cat "${TMPDIR:-/tmp}/man-$$.err"; status=1
  fi
  rm -f "${TMPDIR:-/tmp}/man-$$.err"
  for section in NAME SYNOPSIS DESCRIPTION OPTIONS "EXIT STATUS" FILES EXAMPLES "SEE ALSO"; do
    printf '%s\n' "$shown" | grep -q "^$section\$" || { echo "$page: no $section section"; status=1; }
  done
done

# Commands are the words at the start of the help's command lines, options every --word in it.
help=$("$cli" --help)
commands=$(printf '%s\n' "$help" | sed -n 's/^  \([a-z][a-z]*\) [A-Z].*/\1/p')
options=$(printf '%s\n' "$help" | grep -o -- '--[a-z][a-z-]*' | sort -u)
[ -n "$commands" ] && [ -n "$options" ] || { echo "no commands or options in --help"; exit 1; }
for command in $commands; do
  grep -q "^\.B vossel\\\\-cli $command\$" "$pages/vossel-cli.1" ||
    { echo "vossel-cli.1 has no synopsis for $command"; status=1; }
  grep -qw -- "$command" "$completion" || { echo "the completion lacks $command"; status=1; }
done
for option in $options; do
  escaped=$(printf '%s' "$option" | sed 's/-/\\\\-/g')
  grep -q -- "$escaped" "$pages/vossel-cli.1" || { echo "vossel-cli.1 lacks $option"; status=1; }
  grep -q -- "$option\\b" "$completion" || { echo "the completion lacks $option"; status=1; }
done
[ "$status" -eq 0 ] && echo "both pages render; every command and option is documented"
exit "$status"
