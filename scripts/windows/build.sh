#!/usr/bin/env bash
# Cross-builds lumaforge.dll (with its import library), the tests and the
# benchmarks for 64-bit Windows into build-win/bin. GoogleTest and libyuv
# are built from Debian's source packages into build-win/deps once.
set -euo pipefail
cd "$(dirname "$0")/../.."
scripts/windows/install-deps.sh

root=$PWD
toolchain=$root/cmake/toolchains/mingw-w64-x86_64.cmake
deps=$root/build-win/deps
prefix=$deps/prefix

build_dependencies() {
  rm -rf "$deps"
  mkdir -p "$deps/src" "$prefix/lib" "$prefix/include"
  (cd "$deps/src" && apt-get source -qq libyuv googletest 2>&1 | grep -v '^W: Download is performed unsandboxed' || true)
  local gtest libyuv
  gtest=$(find "$deps/src" -maxdepth 1 -type d -name 'googletest-*' | head -n 1)
  libyuv=$(find "$deps/src" -maxdepth 1 -type d -name 'libyuv-*' | head -n 1)
  [ -n "$gtest" ] && [ -n "$libyuv" ] || { echo "could not fetch the libyuv and googletest sources" >&2; exit 1; }

  cmake -S "$gtest" -B "$deps/googletest-build" -G Ninja -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_GMOCK=OFF >/dev/null
  cmake --build "$deps/googletest-build" --target install >/dev/null

  # Only the static library: libyuv's tools and shared library are not needed.
  cmake -S "$libyuv" -B "$deps/libyuv-build" -G Ninja -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$deps/libyuv-build" --target yuv >/dev/null
  cp "$deps/libyuv-build/libyuv.a" "$prefix/lib/"
  cp -r "$libyuv/include/." "$prefix/include/"
  touch "$prefix/.complete"
}

[ -f "$prefix/.complete" ] || build_dependencies

cmake -S . -B build-win -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DLUMAFORGE_WINDOWS_PREFIX="$prefix" \
  -DCMAKE_BUILD_TYPE=Release -DLUMAFORGE_WERROR=ON >/dev/null
cmake --build build-win
