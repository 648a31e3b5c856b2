#!/usr/bin/env bash
# Installs the Debian packages that are missing. Does nothing, and asks the network nothing, when all are there.
#
#   install-deps.sh GROUP...
#
#   build   compiler, build tools and libraries: what the library and the tool need
#   test    build, and what the tests need
#   bench   build, and what the benchmarks need
#   hosting the loops of other libraries inside which examples show a run loop
#   ci      all of these, the second compiler with its sanitizers and fuzz engine, the formatter, and what makes the API reference
set -euo pipefail

build=(g++ cmake ninja-build ccache pkg-config libutf8proc-dev liburiparser-dev
  libboost-dev libcli11-dev nlohmann-json3-dev)
test=(libgtest-dev libgmock-dev python3 binutils libexpat1-dev libplist-utils tzdata
  dpkg-dev zsh)
bench=(libbenchmark-dev libplist-dev libabsl-dev libsqlite3-dev qtbase5-dev libglib2.0-dev
  libhowardhinnant-date-dev libuv1-dev qt6-base-dev nlohmann-json3-dev liblua5.4-dev nodejs)
hosting=(libglib2.0-dev libuv1-dev qt6-base-dev)
ci=(clang-19 libclang-rt-19-dev llvm-19 clang-format-19 util-linux doxygen)

usage() {
  echo "usage: install-deps.sh build|test|bench|hosting|ci ..." >&2
  exit 2
}

wanted=("${build[@]}")
[ $# -gt 0 ] || usage
for group in "$@"; do
  case $group in
    build) ;;
    test) wanted+=("${test[@]}") ;;
    bench) wanted+=("${bench[@]}") ;;
    hosting) wanted+=("${hosting[@]}") ;;
    ci) wanted+=("${test[@]}" "${bench[@]}" "${hosting[@]}" "${ci[@]}") ;;
    *) usage ;;
  esac
done

if ! command -v dpkg-query >/dev/null; then
  echo "This is not a Debian system; what is needed is, in Debian's names: ${wanted[*]}" >&2
  exit 0
fi

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "These packages are missing; this command installs them:" >&2
  echo "  sudo apt-get update && sudo apt-get install --yes --no-install-recommends ${missing[*]}" >&2
  exit 1
fi

echo "Installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update --quiet </dev/null
apt-get install --yes --quiet --no-install-recommends "${missing[@]}" </dev/null
