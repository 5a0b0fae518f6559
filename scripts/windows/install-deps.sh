#!/usr/bin/env bash
# Installs the Debian 12 packages the Windows cross-build and its Wine test
# run need, and enables Debian's source packages (the cross-built
# dependencies come from them). Does nothing when all is present.
set -euo pipefail

packages=(
  cmake ninja-build git dpkg-dev xz-utils
  g++-mingw-w64-x86-64-posix   # the cross compiler, posix threads
  wine wine64                  # runs the Windows tests
)
sources=/etc/apt/sources.list.d/lumaforge-deb-src.sources

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && [ -f "$sources" ] && exit 0

run_as_root=()
[ "$(id -u)" -eq 0 ] || run_as_root=(sudo)
if [ ! -f "$sources" ]; then
  printf 'Types: deb-src\nURIs: http://deb.debian.org/debian\nSuites: bookworm\nComponents: main\nSigned-By: /usr/share/keyrings/debian-archive-keyring.gpg\n' |
    "${run_as_root[@]}" tee "$sources" >/dev/null
fi
echo "installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${run_as_root[@]}" apt-get update -qq
[ ${#missing[@]} -eq 0 ] || "${run_as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
