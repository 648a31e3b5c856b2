#!/usr/bin/env bash
# Builds everything in build/release and runs all tests; installs missing packages first. Arguments go to ctest.
#
#   test.sh                  all tests
#   test.sh -R qualifiers    those whose names match
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/prepare.sh
cmake --build --preset release
ctest --preset release --parallel "$(nproc)" --no-label-summary --no-tests=error "$@"
