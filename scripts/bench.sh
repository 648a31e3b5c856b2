#!/usr/bin/env bash
# Builds the benchmarks in build/release, runs them beside their peers, and makes docs/benchmarks.md with its plots.
#
#   bench.sh [--install] [--quick] [--only SECTION]... [--report-only]
#
#   --install       first installs what only the benchmarks need
#   --quick         measures next to nothing, to see that everything works: three minutes of the processor
#   --only SECTION  measures this section: filtering, orderings, preferences, property_lists, messages, values,
#                   collections, files, start_up, growth
#   --report-only   measures nothing: makes the report of what was measured last
#
# A whole run takes some 15 minutes on two cores, which should have nothing else to do. What was measured is kept in
# build/bench/results. The report of a part, and of a quick run, is build/bench/report/benchmarks.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

installs=false
measures=true
options=()
while [ $# -gt 0 ]; do
  case $1 in
    --install) installs=true ;;
    --quick) options+=("$1") ;;
    --only)
      options+=("$1" "${2:?bench.sh: --only needs the name of a section}")
      shift
      ;;
    --report-only)
      options+=("$1")
      measures=false
      ;;
    *)
      echo "usage: bench.sh [--install] [--quick] [--only SECTION]... [--report-only]" >&2
      exit 2
      ;;
  esac
  shift
done

if $installs; then
  scripts/install-deps.sh bench
  scripts/unpack-boost-url.sh
fi
if $measures; then
  scripts/prepare.sh
  # Benchmarks are left out of a tree that was configured before Google Benchmark was there.
  cmake --preset release >/dev/null
  if ! grep -q '^benchmark_DIR:PATH=/' build/release/CMakeCache.txt; then
    echo "There are no benchmarks; where Google Benchmark is missing, bench.sh --install installs it" >&2
    exit 1
  fi
  cmake --build --preset release --target benchmarks startup_cost qxfoundation
fi
exec python3 bench/report/report.py "${options[@]}"
