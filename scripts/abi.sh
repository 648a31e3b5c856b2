#!/usr/bin/env bash
# Compares what the shared library exports under its own name with the list under version control, so that a change of
# the binary interface is seen.
#
#   abi.sh LIBRARY             fails, and shows the difference, where the two are not the same
#   abi.sh LIBRARY --update    writes the list anew
#
# Inline functions and templates, which every program that uses them may hold as well, are not listed.
set -euo pipefail
list=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/library/abi/symbols.txt
library=${1:?usage: abi.sh LIBRARY [--update]}

exported() {
  nm --dynamic --defined-only --demangle "$library" |
    sed -nE 's/^[0-9a-f]* [TDRBS] ((vtable for |typeinfo for |typeinfo name for )?qx::.*)$/\1/p' | LC_ALL=C sort -u
}

case ${2:-} in
  "")
    if ! diff --unified=0 "$list" <(exported); then
      echo "The library exports something else than library/abi/symbols.txt lists; scripts/abi.sh LIBRARY --update writes it anew" >&2
      exit 1
    fi
    ;;
  --update) exported >"$list" ;;
  *)
    echo "usage: abi.sh LIBRARY [--update]" >&2
    exit 2
    ;;
esac
