# Completion of qx for bash. Commands and options are asked of the tool itself, so that they are those of its version.

# The names of the commands, or the options of one.
_qx_commands() {
  "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p'
}
_qx_options() {
  "$@" --help 2>/dev/null | sed -n 's/^  \(-[a-zA-Z],\)\{0,1\}\(--[a-z-]*\).*/\2/p'
}

# The words that may follow an option; false for one that takes none, or any text.
_qx_values() {
  case $1:$2 in
    select:--output) echo "table json plist binary" ;;
    plist:--to) echo "xml binary json" ;;
    prefs:--type | attributes:--type) echo "string int float double bool date data json" ;;
    *) return 1 ;;
  esac
}

_qx() {
  local tool=$1 current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} values word place=0
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_qx_commands "$tool") $(_qx_options "$tool")" -- "$current")
    return
  fi
  for word in "${COMP_WORDS[@]:2:COMP_CWORD-2}"; do
    if [ "$word" = -- ] && [ "$command" = lock ]; then
      mapfile -t COMPREPLY < <(compgen -A command -A file -- "$current")  # the command that is run under the lock
      return
    fi
    [[ $word == -* ]] || place=$((place + 1))
  done
  if values=$(_qx_values "$command" "$previous"); then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_qx_options "$tool" "$command")" -- "$current")
  elif [[ $command == @(prefs|attributes) ]] && [ "$place" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "get set remove list" -- "$current")
  else
    case $command in
      date | size | fraction | identity | explain) ;;
      *)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null || true
        ;;
    esac
  fi
}

complete -F _qx qx
