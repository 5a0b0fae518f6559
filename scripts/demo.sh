#!/usr/bin/env bash
# Installs what is missing, builds the library and runs the example host.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target crop_host
./build/examples/crop_host
