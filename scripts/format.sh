#!/usr/bin/env bash
# Formats all C++ sources. With --check it changes nothing, and fails if anything would change.
#
# Versions of the formatter differ in what they make of the same style: only the one named here will do.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

version=19
formatter=
for candidate in "clang-format-$version" clang-format; do
  if "$candidate" --version 2>/dev/null | grep -q "version $version\."; then
    formatter=$candidate
    break
  fi
done
if [ -z "$formatter" ]; then
  echo "clang-format $version is missing (package clang-format-$version)" >&2
  exit 1
fi

case ${1:-} in
  "") options=(-i) ;;
  --check) options=(--dry-run --Werror) ;;
  *)
    echo "usage: format.sh [--check]" >&2
    exit 2
    ;;
esac

find . \( -name build -o -name '.?*' \) -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0 |
  xargs -0 --no-run-if-empty --max-args=16 --max-procs="$(nproc)" "$formatter" "${options[@]}"
