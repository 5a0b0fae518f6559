#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: an
# optimised build with warnings as errors, and a build under AddressSanitizer
# and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

jobs=$(nproc)
run_suite() {
  local dir=$1
  shift
  echo "== $dir"
  cmake -S . -B "$dir" -G Ninja -DLUMAFORGE_WERROR=ON "$@" >/dev/null
  cmake --build "$dir"
  ctest --test-dir "$dir" -j "$jobs" --output-on-failure
}

run_suite build -DCMAKE_BUILD_TYPE=Release
run_suite build-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMAFORGE_SANITIZE=ON

if command -v clang-format >/dev/null; then
  echo "== formatting"
  git ls-files '*.cc' '*.h' | xargs clang-format --dry-run --Werror
fi
