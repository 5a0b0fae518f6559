#!/usr/bin/env bash
# Installs what is missing, builds the library and its command-line tool, and
# runs the tool's demo: every filter over a synthetic 1280x720 clip, with
# contact sheets and a timing table written to lumaforge-demo/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target lumaforge_cli
./build/tools/lumaforge/lumaforge demo "$@"
