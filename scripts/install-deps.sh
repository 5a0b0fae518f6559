#!/usr/bin/env bash
# Installs the Debian 12 packages the library, its tests and its examples need,
# and any further packages named as arguments. Does nothing when they are all
# present.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config git
  libsafec-dev    # the bounds-checked _s memory and string functions
  libgtest-dev    # GoogleTest, for the tests
  libyuv-dev      # the upsampling filter's plane scaler, and the benchmarks' reference
  plasma-workspace-wallpapers  # photographs for the tests on real pictures
  libcli11-dev    # the command-line tool's argument parsing
  libstb-dev      # the command-line tool's PNG, BMP and PPM reading and PNG writing
  "$@"
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
run_as_root=()
[ "$(id -u)" -eq 0 ] || run_as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${run_as_root[@]}" apt-get update -qq
"${run_as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
