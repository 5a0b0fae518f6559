#!/usr/bin/env bash
# Measures the super resolution filter: luma PSNR on the held-out wallpaper
# photographs against libyuv's bilinear and OpenCV's cubic and Lanczos
# resize, then its speed at 640x360 -> 1280x720 and -> 960x540 beside
# OpenCV's cubic resize on one core. Installs what is missing (the
# photographs and OpenCV's imgproc), builds sr_bench and runs it.
#
#   scripts/sr-bench.sh [frames per mode]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh libopencv-imgproc-dev

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target sr_bench -j 2
build/bench/sr_bench "$@"
