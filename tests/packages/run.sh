#!/usr/bin/env bash
# Makes the Debian packages of a build tree, installs them in an empty folder with a database of its own, uses what they
# bring, and removes them again. Needs neither the network nor the rights of root, and leaves the system alone.
#
#   run.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build_dir=$(cd "${1:?usage: run.sh BUILD_DIR}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/support/quietly.sh
. "$here/../support/quietly.sh"
root=$work/root

fail() {
  echo "$*" >&2
  exit 1
}
# dpkg on the folder. What the packages depend on is not installed there, but on the system.
dpkg_there() {
  quietly dpkg --root="$root" --log="$work/dpkg.log" --force-depends --force-not-root --force-script-chrootless \
    --force-bad-path "$@"
}
has_field() {
  local found
  found=$(dpkg-deb --field "$1" "$2")
  [[ $found == *"$3"* ]] || fail "$1: $2 is \"$found\", which should hold \"$3\""
}

quietly cpack --config "$build_dir/CPackConfig.cmake" -G DEB -B "$work/made"
library=$(echo "$work"/made/libqxfoundation[0-9]*.deb)
development=$(echo "$work"/made/libqxfoundation-dev_*.deb)
tool=$(echo "$work"/made/qxfoundation-tools_*.deb)
for package in "$library" "$development" "$tool"; do
  [ -f "$package" ] || fail "$package was not made"
done
name=$(dpkg-deb --field "$library" Package)
version=$(dpkg-deb --field "$library" Version)
has_field "$library" Depends libc6
has_field "$library" Depends libutf8proc
has_field "$development" Depends "$name (= $version)"
has_field "$tool" Depends "$name (= $version)"

mkdir -p "$root/var/lib/dpkg"/{info,updates,triggers}
touch "$root/var/lib/dpkg/status"
dpkg_there --install "$library" "$development" "$tool"

# What is installed is used: the tool, its page and completion, the development files.
lib_dir=$(dirname "$(find "$root/usr" -name 'libqxfoundation.so.*' -print -quit)")
# The file's own name tells the binary interface, and so does the package's.
soname=$(readelf --dynamic "$lib_dir/libqxfoundation.so" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
[ "$name" = "libqxfoundation${soname#libqxfoundation.so.}" ] || fail "$name holds $soname"
shown=$("$root/usr/bin/qx" size 1500)
[[ $shown == *"1.500 KB"* ]] || fail "the installed tool says \"$shown\""
for file in share/man/man1/qx.1 share/bash-completion/completions/qx share/zsh/vendor-completions/_qx; do
  [ -s "$root/usr/$file" ] || fail "$file is not installed"
done
"$here/completion_test.sh" "$root/usr/bin/qx"
flags=$(PKG_CONFIG_PATH=$lib_dir/pkgconfig pkg-config --cflags --libs qxfoundation)
# The flags are words by design.
# shellcheck disable=SC2086
quietly "${CXX:-g++}" -std=c++20 "$here/../consumer/main.cpp" -o "$work/consumer" $flags
[[ $flags == *"$root/usr"* ]] || fail "pkg-config finds another copy: $flags"
quietly env "LD_LIBRARY_PATH=$lib_dir" "$work/consumer"

dpkg_there --purge qxfoundation-tools libqxfoundation-dev "$name"
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o ! -type d -print)
[ -z "$left" ] || fail "left behind: $left"
echo "$name, libqxfoundation-dev, qxfoundation-tools $version: installed, used, removed"
