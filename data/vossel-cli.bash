# bash completion for vossel-cli                            -*- shell-script -*-
# Commands, each command's options, the values of options that take names, and files: GRF files
# where a GRF file is read, folders for export, PNG files where a picture is written.
# Stands on its own: it needs none of bash-completion's helpers.

# Files whose names end in one of the given suffixes (any case), and folders to reach them.
_vossel_cli_files() {
  local cur=$1 word suffix lower
  shift
  local IFS=$'\n'
  compopt -o filenames 2>/dev/null
  for word in $(compgen -f -- "$cur"); do
    if [[ -d $word ]]; then
      COMPREPLY+=("$word")
      continue
    fi
    lower=${word,,}
    for suffix in "$@"; do
      [[ $lower == *"$suffix" ]] && COMPREPLY+=("$word") && break
    done
  done
}

_vossel_cli_words() {
  local IFS=$' \t\n'
  COMPREPLY+=($(compgen -W "$1" -- "$2"))
}

_vossel_cli() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=
  ((COMP_CWORD > 0)) && prev=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()

  local commands="list info sprite chunks about nfo items item check diff export sheet view"
  if ((COMP_CWORD <= 1)); then
    _vossel_cli_words "$commands --help --version" "$cur"
    return 0
  fi
  local command=${COMP_WORDS[1]}

  # What each command takes: options with a value, and options alone.
  local valued= flags=
  case $command in
    list | info | about | items | item) flags="--json" ;;
    check)
      valued="--ignore"
      flags="--json"
      ;;
    sprite)
      valued="--png --palette --company --company2 --base-set --zoom --depth"
      flags="--force --json"
      ;;
    chunks)
      valued="--zoom --depth"
      flags="--json"
      ;;
    export)
      valued="--palette --company --company2 --base-set"
      flags="--force"
      ;;
    sheet)
      valued="--columns --cell --first --last --palette --company --company2 --base-set --zoom
        --depth"
      flags="--force"
      ;;
    view)
      valued="--cargo --pick --palette --company --company2 --base-set --zoom --depth"
      flags="--purchase --loading --boxes --origins --shared-origin --json --force"
      ;;
    diff) flags="--json --pixels" ;;
    nfo) ;;
    *) return 0 ;;
  esac

  # The value of the option before.
  case " $valued " in
    *" $prev "*)
      case $prev in
        --png)
          _vossel_cli_words "-" "$cur"
          _vossel_cli_files "$cur" .png
          ;;
        --palette)
          _vossel_cli_words "windows dos declared" "$cur"
          _vossel_cli_files "$cur" .pal
          ;;
        --company | --company2)
          _vossel_cli_words "dark-blue pale-green pink yellow red light-blue green dark-green
            blue cream mauve purple orange brown grey white" "$cur"
          ;;
        --base-set) _vossel_cli_files "$cur" .grf ;;
        --zoom) _vossel_cli_words "normal in4 in2 out2 out4 out8" "$cur" ;;
        --depth) _vossel_cli_words "8 32" "$cur" ;;
      esac
      return 0
      ;;
  esac

  if [[ $cur == -?* ]]; then
    _vossel_cli_words "$valued $flags" "$cur"
    return 0
  fi

  # Which argument this word is: the words before it that are neither options nor their values.
  local i position=1
  for ((i = 2; i < COMP_CWORD; i++)); do
    local word=${COMP_WORDS[i]}
    if [[ " $valued " == *" $word "* ]]; then
      ((i++))
    elif [[ $word != -?* ]]; then
      ((position++))
    fi
  done

  case $command:$position in
    *:1) _vossel_cli_files "$cur" .grf ;;
    export:2)
      compopt -o filenames 2>/dev/null
      local IFS=$'\n'
      COMPREPLY+=($(compgen -d -- "$cur"))
      ;;
    sheet:2)
      _vossel_cli_words "-" "$cur"
      _vossel_cli_files "$cur" .png
      ;;
    view:4)
      _vossel_cli_words "-" "$cur"
      _vossel_cli_files "$cur" .png
      ;;
    item:2 | view:2)
      _vossel_cli_words "trains roadvehicles ships aircraft stations canals bridges houses
        globalsettings industrytiles industries cargos sounds airports signals objects railtypes
        airporttiles roadtypes tramtypes roadstops" "$cur"
      ;;
  esac
  return 0
}
complete -F _vossel_cli vossel-cli
