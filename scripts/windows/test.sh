#!/usr/bin/env bash
# Cross-builds for Windows (see build.sh) and runs the tests under Wine in a
# fresh Wine prefix.
set -euo pipefail
cd "$(dirname "$0")/../.."
scripts/windows/build.sh

WINEPREFIX=$(mktemp -d)
export WINEPREFIX WINEDEBUG=-all WINEARCH=win64
# No Mono or Gecko installer prompts: the tests need neither.
export WINEDLLOVERRIDES="mscoree,mshtml="
trap 'wineserver -k 2>/dev/null || true; rm -rf "$WINEPREFIX"' EXIT
wineboot --init >/dev/null 2>&1 || true

echo "== build-win (Wine)"
ctest --test-dir build-win --output-on-failure
