#!/usr/bin/env bash
# Runs in full what the tests repeat a fiftieth as often: writers killed at random moments, processes that share a
# file, processes that fight for a lock; and, without arguments, ten minutes of every subsystem at once under
# each sanitizer. Arguments go to the test programs.
#
#   endurance.sh                                          everything
#   endurance.sh --gtest_filter='*AKilledWriter*'         one of them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/prepare.sh
cmake --build --preset release --target preferences_tests files_tests
for program in preferences files; do
  QXFOUNDATION_ENDURANCE=full "build/release/bin/${program}_tests" --gtest_filter='*Endurance.*' "$@"
done
[ $# -gt 0 ] || scripts/soak.sh 600
