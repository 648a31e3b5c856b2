#!/usr/bin/env bash
# Builds the fuzz targets and runs each for some seconds, starting from its kept inputs in fuzz/corpus/NAME/.
#
#   fuzz.sh [SECONDS [NAME...]]    10 seconds, all targets, unless said otherwise
#
# New inputs are collected in build/fuzz/corpus/NAME/; an input that makes a target fail is left in
# build/fuzz/findings/. Worthwhile ones are added to the kept inputs by hand.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=${1:-10}
shift || true
werror=OFF
[ "${CI:-}" != true ] || werror=ON

cmake --preset asan "-DQXFOUNDATION_WERROR=$werror"
cmake --build --preset asan --target fuzzers

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  shopt -s nullglob
  for source in fuzz/*.cpp; do
    name=${source##*/}
    names+=("${name%.cpp}")
  done
fi
if [ ${#names[@]} -eq 0 ]; then
  echo "There are no fuzz targets" >&2
  exit 1
fi

findings=build/fuzz/findings
mkdir -p "$findings"
for name in "${names[@]}"; do
  echo "== $name, $seconds s"
  inputs=(build/fuzz/corpus/"$name")
  mkdir -p "${inputs[0]}"
  [ ! -d "fuzz/corpus/$name" ] || inputs+=("fuzz/corpus/$name")
  if ! build/asan/bin/fuzz_"$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$findings/$name-" "${inputs[@]}" >"$findings/$name.log" 2>&1; then
    tail -n 60 "$findings/$name.log" >&2
    echo "$name failed; the input is in $findings/" >&2
    exit 1
  fi
  grep '^Done ' "$findings/$name.log"
done
