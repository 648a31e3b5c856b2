#!/usr/bin/env bash
# Unpacks Boost.URL, a peer of one benchmark, into build/peers/boost-url, as Debian's package can not
# be installed: it excludes the package of the Boost that the library is built with.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folder=build/peers/boost-url
[ -d "$folder" ] && exit 0
if ! command -v apt-get >/dev/null || ! command -v dpkg-deb >/dev/null; then
  echo "This is not a Debian system: Boost.URL is left out of the benchmarks" >&2
  exit 0
fi

packages=$(mktemp -d)
trap 'rm -rf "$packages"' EXIT
(cd "$packages" && apt-get download --quiet libboost-url1.81-dev libboost1.81-dev)
mkdir -p build/peers
for package in "$packages"/*.deb; do
  dpkg-deb --extract "$package" "$packages/unpacked"
done
mv "$packages/unpacked" "$folder"
