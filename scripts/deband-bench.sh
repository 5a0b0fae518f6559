#!/usr/bin/env bash
# Measures the deband filter beside FFmpeg's deband and gradfun (through
# libavfilter) on banded 1080p material: staircase, error and edges per
# picture and bit depth, and speed. Installs what is missing, builds
# deband_bench and runs it.
#
#   scripts/deband-bench.sh [frames]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh libavfilter-dev

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target deband_bench -j 2
build/bench/deband_bench "$@"
