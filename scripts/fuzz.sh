#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (coverage, AddressSanitizer,
# UndefinedBehaviorSanitizer) and fuzzes the library for as long as asked.
#
#   scripts/fuzz.sh [consistent|bad] [seconds] [--merge]
#
# The run starts from the committed corpus tests/fuzz/corpus/<mode> and grows
# a copy of it in build-fuzz/corpus/<mode>, outside the repository. --merge
# then writes the minimised union back into tests/fuzz/corpus/<mode>. A report
# leaves the failing input in build-fuzz/ and ends the script with an error;
# reproduce it with build-fuzz/tests/lumaforge_fuzz_<mode> <file>.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=${1:-consistent}
seconds=${2:-60}
merge=${3:-}
case "$mode" in consistent | bad) ;; *) echo "mode is consistent or bad" >&2; exit 2 ;; esac

scripts/install-deps.sh clang libclang-rt-14-dev

echo "== build-fuzz"
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMAFORGE_FUZZ=ON \
  -DLUMAFORGE_BUILD_BENCH=OFF -DLUMAFORGE_BUILD_TOOLS=OFF >/dev/null
cmake --build build-fuzz --target "lumaforge_fuzz_$mode"

fuzzer=build-fuzz/tests/lumaforge_fuzz_$mode
kept=tests/fuzz/corpus/$mode
grown=build-fuzz/corpus/$mode
mkdir -p "$kept" "$grown"
echo "== fuzzing $mode records for $seconds s (log: build-fuzz/fuzz-$mode.log)"
status=0
"$fuzzer" "$grown" "$kept" -max_total_time="$seconds" -max_len=256 -timeout=20 -rss_limit_mb=4096 \
  -artifact_prefix="build-fuzz/$mode-" -print_final_stats=1 >"build-fuzz/fuzz-$mode.log" 2>&1 || status=$?
grep -E '^(Done|stat::number_of_executed_units|stat::peak_rss_mb)|SUMMARY|ERROR' "build-fuzz/fuzz-$mode.log" || true
if [ "$status" -ne 0 ]; then
  tail -n 60 "build-fuzz/fuzz-$mode.log"
  echo "fuzzing found a failure; the input is in build-fuzz/$mode-*" >&2
  exit 1
fi

if [ "$merge" = --merge ]; then
  merged=$(mktemp -d)
  "$fuzzer" -set_cover_merge=1 -max_len=256 "$merged" "$kept" "$grown" 2>&1 | grep -E 'MERGE-OUTER: [0-9]+ new files' || true
  rm -rf "$kept" && mv "$merged" "$kept"
  echo "corpus: $(ls "$kept" | wc -l) inputs in $kept"
fi
