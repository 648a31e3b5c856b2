#!/usr/bin/env bash
# Builds the tool qx in build/release and shows what the library does; installs missing packages first.
#
# The steps are scripts/demo/*.sh, sourced in the order of their names. They find the tool as `qx` on the PATH
# and an empty folder, removed at the end, as $demo_dir.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/prepare.sh
cmake --build --preset release --target qx

PATH=$PWD/build/release/bin:$PATH
demo_dir=$(mktemp -d)
trap 'rm -rf "$demo_dir"' EXIT

for step in scripts/demo/*.sh; do
  # shellcheck source=/dev/null
  . "$step"
done
