#!/usr/bin/env bash
# The bash completion of vossel-cli, driven as bash drives it: COMP_WORDS and COMP_CWORD set for a
# command line, the function called, COMPREPLY compared with what a user should be offered.
# Usage: completion.sh COMPLETION-SCRIPT
set -u
source "$1" || exit 1
[[ $(complete -p vossel-cli) == *"-F _vossel_cli vossel-cli"* ]] || { echo "not registered"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
mkdir out sets
touch a.grf B.GRF notes.txt pic.png my.pal sets/x.grf

failures=0
# expect "LINE" "WORD WORD ...": the words offered for the last word of LINE, in any order.
expect() {
  local line=$1 want=$2
  read -r -a COMP_WORDS <<<"$line"
  [[ $line == *" " ]] && COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  _vossel_cli vossel-cli "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]:-}"
  local got
  got=$(printf '%s\n' "${COMPREPLY[@]}" | sed '/^$/d' | sort | tr '\n' ' ')
  want=$(printf '%s\n' $want | sed '/^$/d' | sort | tr '\n' ' ')
  if [[ $got != "$want" ]]; then
    echo "'$line': offered [$got], expected [$want]"
    failures=$((failures + 1))
  fi
}

expect "vossel-cli " "list info sprite chunks about nfo items item check diff export sheet view --help --version"
expect "vossel-cli check a.grf --" "--ignore --json"
expect "vossel-cli s" "sprite sheet"
expect "vossel-cli list " "a.grf B.GRF out sets"
expect "vossel-cli list sets/" "sets/x.grf"
expect "vossel-cli list a.grf --" "--json"
expect "vossel-cli nfo a.grf --" ""
expect "vossel-cli sprite a.grf 3 --" \
  "--png --palette --company --company2 --base-set --zoom --depth --force --json"
expect "vossel-cli sprite a.grf 3 --png " "- pic.png out sets"
expect "vossel-cli sprite a.grf 3 --palette " "windows dos declared my.pal out sets"
expect "vossel-cli sprite a.grf 3 --company2 dark" "dark-blue dark-green"
expect "vossel-cli sprite a.grf 3 --company " "dark-blue pale-green pink yellow red light-blue
  green dark-green blue cream mauve purple orange brown grey white"
expect "vossel-cli sprite a.grf 3 --base-set " "a.grf B.GRF out sets"
expect "vossel-cli chunks a.grf 3 --zoom " "normal in4 in2 out2 out4 out8"
expect "vossel-cli chunks a.grf 3 --zoom in4 --depth " "8 32"
expect "vossel-cli chunks a.grf 3 --" "--zoom --depth --json"
expect "vossel-cli export a.grf " "out sets"
expect "vossel-cli export a.grf out --" "--palette --company --company2 --base-set --force"
expect "vossel-cli export --palette dos a.grf " "out sets"
expect "vossel-cli sheet a.grf " "- pic.png out sets"
expect "vossel-cli sheet a.grf s.png --c" "--columns --cell --company --company2"
expect "vossel-cli sheet a.grf s.png --cell 32 --depth 8 --" \
  "--columns --cell --first --last --palette --company --company2 --base-set --zoom --depth --force"
expect "vossel-cli item a.grf tr" "trains tramtypes"
expect "vossel-cli item a.grf trains " ""
expect "vossel-cli items a.grf --" "--json"
expect "vossel-cli view a.grf houses 3 " "- pic.png out sets"
expect "vossel-cli view a.grf houses 3 v.png --pick 98=2 --s" "--shared-origin"
expect "vossel-cli diff a.grf B.GRF --" "--json --pixels"
expect "vossel-cli frobnicate " ""

[ "$failures" -eq 0 ] || { echo "$failures completion(s) wrong"; exit 1; }
echo "all completions as expected"
