#!/usr/bin/env bash
# Uses every subsystem at once from several threads, with faults injected, under the address and undefined-behaviour
# sanitizers and again under the thread sanitizer.
#
#   soak.sh [SECONDS]    30 seconds each unless said otherwise
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=${1:-30}
export ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=second_deadlock_stack=1:halt_on_error=1
for kind in asan tsan; do
  [ -f "build/$kind/build.ninja" ] || cmake --preset "$kind"
  cmake --build --preset "$kind" --target soak
  echo "== $kind, $seconds s"
  "build/$kind/bin/soak" "$seconds" </dev/null
done
