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
  # Source entries beside the binary ones this machine already uses for its
  # release: the same archives, suites and components, in deb822 form.
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  entries=$(
    for file in /etc/apt/sources.list.d/*.sources; do
      [ -f "$file" ] || continue
      awk -v RS= -v release="$codename" '$0 ~ ("Suites:[^\n]*" release) && /Types:[^\n]*deb/ {
        sub(/Types:[^\n]*/, "Types: deb-src"); print; print "" }' "$file"
    done
    if [ -f /etc/apt/sources.list ]; then
      awk -v release="$codename" '$1 == "deb" && $2 !~ /^\[/ && $3 ~ ("^" release) {
        components = $4; for (i = 5; i <= NF; ++i) components = components " " $i
        printf "Types: deb-src\nURIs: %s\nSuites: %s\nComponents: %s\n\n", $2, $3, components }' /etc/apt/sources.list
    fi
  )
  [ -n "$entries" ] || { echo "no $codename archive in this machine's apt sources" >&2; exit 1; }
  printf '%s\n' "$entries" | "${run_as_root[@]}" tee "$sources" >/dev/null
fi
echo "installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${run_as_root[@]}" apt-get update -qq
[ ${#missing[@]} -eq 0 ] || "${run_as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
