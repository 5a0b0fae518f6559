#!/usr/bin/env bash
# Measures the denoise filter beside FFmpeg's hqdn3d and atadenoise (through
# libavfilter) on a noisy 1080p pan over a wallpaper: PSNR per noise level
# and speed per mode. Installs what is missing, builds denoise_bench and
# runs it.
#
#   scripts/denoise-bench.sh [frames]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh libavfilter-dev

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target denoise_bench -j 2
build/bench/denoise_bench "$@"
