#!/usr/bin/env bash
# Builds the tests with sanitizers and runs them; any finding fails its test.
#
#   sanitize.sh asan    addresses, leaks and undefined behaviour: all unit tests
#   sanitize.sh tsan    data races: the unit tests whose names say Thread
#
# With CI=true, warnings are errors; as the sanitized builds are made with clang, this is the check that clang
# has nothing to warn of.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

kind=${1:-}
werror=OFF
[ "${CI:-}" != true ] || werror=ON

# The test programs of the folders that hold tests of threads: the others need not be built.
thread_test_programs() {
  grep -lzE 'TEST(_F|_P)?\([^)]*Thread' tests/*/*.cpp | cut -d/ -f2 | sort -u | sed 's/$/_tests/'
}

case $kind in
  asan) targets=(all) ;;
  tsan)
    mapfile -t targets < <(thread_test_programs)
    if [ ${#targets[@]} -eq 0 ]; then
      echo "No test says Thread in its name" >&2
      exit 1
    fi
    ;;
  *)
    echo "usage: sanitize.sh asan|tsan" >&2
    exit 2
    ;;
esac

export ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1
export UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=second_deadlock_stack=1:halt_on_error=1
if command -v llvm-symbolizer-19 >/dev/null; then
  ASAN_SYMBOLIZER_PATH=$(command -v llvm-symbolizer-19)
  export ASAN_SYMBOLIZER_PATH UBSAN_SYMBOLIZER_PATH=$ASAN_SYMBOLIZER_PATH
  TSAN_OPTIONS+=:external_symbolizer_path=$ASAN_SYMBOLIZER_PATH
fi

cmake --preset "$kind" "-DQXFOUNDATION_WERROR=$werror"
cmake --build --preset "$kind" --target "${targets[@]}"
ctest --preset "$kind" --parallel "$(nproc)" --no-label-summary --no-tests=error
