#!/usr/bin/env bash
# Installs the library from a build tree and builds and runs a program against the installed copy: shared and
# static, found by CMake and by pkg-config; and the example programs against the shared one.
#
#   run.sh BUILD_DIR
#
# The static library is built in BUILD_DIR/package-static, which stays, so that a second run has little to do.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_dir=$(cd "$here/../.." && pwd)
build_dir=$(cd "${1:?usage: run.sh BUILD_DIR}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/support/quietly.sh
. "$here/../support/quietly.sh"

# The value of a cache variable of the build tree.
cached() {
  sed -n "s/^$1:[A-Z]*=//p" "$build_dir/CMakeCache.txt"
}

compiler=$(cached CMAKE_CXX_COMPILER)
build_type=$(cached CMAKE_BUILD_TYPE)

build_static_tree() {
  quietly cmake -S "$source_dir" -B "$build_dir/package-static" -G Ninja \
    "-DCMAKE_CXX_COMPILER=$compiler" "-DCMAKE_BUILD_TYPE=$build_type" \
    "-DQXFOUNDATION_WERROR=$(cached QXFOUNDATION_WERROR)" -DQXFOUNDATION_STATIC=ON \
    -DQXFOUNDATION_BUILD_TOOLS=OFF -DQXFOUNDATION_BUILD_TESTS=OFF \
    -DQXFOUNDATION_BUILD_EXAMPLES=OFF -DQXFOUNDATION_BUILD_BENCHMARKS=OFF
  quietly cmake --build "$build_dir/package-static"
}

# Whether the program needs the shared library: it must where that was installed, and must not otherwise.
uses_shared_library() {
  readelf --dynamic "$1" | grep -q 'NEEDED.*libqxfoundation\.so'
}

check_linkage() {
  local kind=$1 program=$2
  if [ "$kind" = static ] && uses_shared_library "$program"; then
    echo "$program was to be linked statically, but needs the shared library" >&2
    return 1
  fi
}

consume_with_cmake() {
  local kind=$1 prefix=$2 tree=$work/cmake-$1
  quietly cmake -S "$here" -B "$tree" -G Ninja "-DCMAKE_CXX_COMPILER=$compiler" \
    "-DCMAKE_BUILD_TYPE=$build_type" "-DCMAKE_PREFIX_PATH=$prefix"
  quietly cmake --build "$tree"
  check_linkage "$kind" "$tree/consumer"
  quietly "$tree/consumer"
}

consume_with_pkg_config() {
  local kind=$1 prefix=$2 libdir=$3 program=$work/pkg-config-$1 flags
  local -a static_option=()
  [ "$kind" = shared ] || static_option=(--static)
  flags=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config "${static_option[@]}" --cflags --libs qxfoundation)
  # The flags are words by design.
  # shellcheck disable=SC2086
  quietly "$compiler" -std=c++20 "$here/main.cpp" -o "$program" $flags
  check_linkage "$kind" "$program"
  quietly env "LD_LIBRARY_PATH=$libdir" "$program"
}

# A program with the address sanitizer, which the library does not have: nothing counts as lost.
consume_with_address_sanitizer() {
  local prefix=$1 libdir=$2 program=$work/address-sanitizer
  quietly "$compiler" -std=c++20 -O0 -fsanitize=address "-I$prefix/include" "$here/main.cpp" -o "$program" \
    "-L$libdir" -lqxfoundation
  quietly env "LD_LIBRARY_PATH=$libdir" ASAN_OPTIONS=detect_leaks=1 "$program"
  echo "with the address sanitizer: good"
}

# The example programs as one project by itself, each held against what it is to print.
consume_examples() {
  local prefix=$1 tree=$work/examples
  quietly cmake -S "$source_dir/examples" -B "$tree" -G Ninja "-DCMAKE_CXX_COMPILER=$compiler" \
    -DCMAKE_CXX_FLAGS=-O0 "-DCMAKE_PREFIX_PATH=$prefix"
  quietly cmake --build "$tree"
  quietly ctest --test-dir "$tree" --no-tests=error --output-on-failure
  echo "examples: good"
}

check_variants() {
  local kind=$1 tree=$2 prefix=$work/prefix-$1 libdir
  quietly cmake --install "$tree" --prefix "$prefix"
  libdir=$prefix/$(cached CMAKE_INSTALL_LIBDIR)
  consume_with_cmake "$kind" "$prefix"
  echo "$kind, find_package: good"
  consume_with_pkg_config "$kind" "$prefix" "$libdir"
  echo "$kind, pkg-config: good"
}

if [ "$(cached QXFOUNDATION_STATIC)" = ON ]; then
  check_variants static "$build_dir"
  exit
fi
check_variants shared "$build_dir"
consume_with_address_sanitizer "$work/prefix-shared" "$work/prefix-shared/$(cached CMAKE_INSTALL_LIBDIR)"
consume_examples "$work/prefix-shared"
build_static_tree
check_variants static "$build_dir/package-static"
