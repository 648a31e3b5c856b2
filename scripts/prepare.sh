#!/usr/bin/env bash
# The common start of test.sh, demo.sh and bench.sh: installs missing packages and configures build/release
# where that was not done yet. With CI=true, warnings are errors.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh test
if [ ! -f build/release/build.ninja ] || [ "${CI:-}" = true ]; then
  werror=OFF
  [ "${CI:-}" != true ] || werror=ON
  cmake --preset release "-DQXFOUNDATION_WERROR=$werror"
fi
