#!/usr/bin/env bash
# Builds the benchmarks in build/release and runs them one after the other.
#
#   bench.sh [--install] [BENCHMARK OPTIONS]
#
# --install first installs what only the benchmarks need.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [ "${1:-}" = --install ]; then
  shift
  scripts/install-deps.sh bench
  scripts/unpack-boost-url.sh
fi
scripts/prepare.sh
# Benchmarks are left out of a tree that was configured before Google Benchmark was there.
cmake --preset release >/dev/null
cmake --build --preset release

shopt -s nullglob
programs=(build/release/bin/bench_*)
if [ ${#programs[@]} -eq 0 ]; then
  echo "There are no benchmarks; where Google Benchmark is missing, bench.sh --install installs it" >&2
  exit 1
fi
for program in "${programs[@]}"; do
  echo "== ${program##*/bench_}"
  "$program" "$@"
done
