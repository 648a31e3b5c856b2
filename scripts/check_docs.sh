#!/usr/bin/env bash
# Makes the API reference in build/reference/html of the public headers and the guide, and fails where a public entity has
# no comment, or Doxygen does not understand one.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if ! command -v doxygen >/dev/null; then
  echo "Doxygen is missing (package doxygen)" >&2
  exit 1
fi
python3 tests/documents/reference_test.py
mkdir -p build/reference
doxygen docs/Doxyfile
echo "Every public entity is documented: build/reference/html/index.html"
