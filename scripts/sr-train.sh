#!/usr/bin/env bash
# Regenerates super_resolution/data/superResCoeffs.txt, the enhanced 2x
# super-resolution filters, from the photographs of Debian's
# plasma-workspace-wallpapers package: installs what is missing, builds the
# sr_train tool and runs it. The same package version gives the same bytes.
# The tool prints the PSNR of the plain formula, the trained filters and
# bicubic on the training and the held-out pictures.
#
#   scripts/sr-train.sh [extra sr_train options]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh plasma-workspace-wallpapers

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target sr_train -j "$(nproc)"
mkdir -p super_resolution/data
build/tools/sr_train/sr_train --output super_resolution/data/superResCoeffs.txt "$@"
