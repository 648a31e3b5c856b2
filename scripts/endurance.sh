#!/usr/bin/env bash
# Runs in full what the tests repeat a fiftieth as often: writers killed at random moments, processes that share a
# file. Takes some minutes. Arguments go to the test program.
#
#   endurance.sh                                          everything
#   endurance.sh --gtest_filter='*AKilledWriter*'         one of them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/prepare.sh
cmake --build --preset release --target preferences_tests
QXFOUNDATION_ENDURANCE=full build/release/bin/preferences_tests --gtest_filter='Endurance.*' "$@"
