#!/usr/bin/env bash
# What the completion of the tool offers, in bash and, where it is installed, in zsh.
#
#   completion_test.sh QX
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
completion=$here/../../tools/qx/completion
qx=${1:?usage: completion_test.sh QX}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
touch people.json
mkdir folder

faults=0
# expect SHELL WORDS... = OFFERED...: the last of the words is to be completed; what is offered, sorted, as one line.
expect() {
  local shell=$1 words=() offered
  shift
  while [ "$1" != = ]; do
    words+=("$1")
    shift
  done
  shift
  offered=$("offered_by_$shell" "${words[@]}" | LC_ALL=C sort -u | tr '\n' ' ')
  if [ "$offered" != "$*${1:+ }" ]; then
    printf '%s: "%s" offers "%s", not "%s"\n' "$shell" "${words[*]}" "$offered" "$*" >&2
    faults=$((faults + 1))
  fi
}

# shellcheck source=/dev/null
. "$completion/qx.bash"
offered_by_bash() {
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  _qx "$qx" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
  printf '%s\n' "${COMPREPLY[@]}" | sed '/^$/d'
}

# The function alone, with the two that the shell has for it put in place; matching is left to the shell.
offered_by_zsh() {
  zsh -f -c '
    compadd() { if [[ $1 == -a ]]; then print -l -- ${(P)2}; else print -l -- $@; fi }
    _files() { print FILES }
    _normal() { print COMMAND }
    file=$1; words=($2 ${@[4,-1]}); CURRENT=$#words
    eval "$(<$file)"' zsh "$completion/_qx" "$qx" "$@" | grep -e "^${*: -1}" -e '^[A-Z]*$'
}

expect bash qx sel = select
expect bash qx --v = --version
expect bash qx select pe = people.json
expect bash qx select people.json --li = --limit
expect bash qx select people.json --output b = binary
expect bash qx plist --to '' = binary json xml
expect bash qx prefs f.plist s = set
expect bash qx prefs fo = folder
expect bash qx attributes f l = list
expect bash qx attributes f set a 1 --type b = bool
expect bash qx identity --j = --json
expect bash qx date 2 = ''
expect bash qx lock people.json -- people = people.json
if command -v zsh >/dev/null; then
  expect zsh qx sel = select
  expect zsh qx select pe = FILES
  expect zsh qx select people.json --li = --limit
  expect zsh qx select people.json --output b = binary
  expect zsh qx prefs f.plist s = set
  expect zsh qx attributes f l = list
  expect zsh qx attributes f set a 1 --type b = bool
  expect zsh qx lock people.json -- ls = COMMAND
elif [ "${CI:-}" = true ]; then
  echo "zsh is missing" >&2
  faults=$((faults + 1))
fi
exit $((faults > 0))
