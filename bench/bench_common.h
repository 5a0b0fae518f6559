// Shared pieces of the benchmarks: timing, and running a filter through the
// public interface at every processor level this machine has.
#ifndef LUMAFORGE_BENCH_BENCH_COMMON_H_
#define LUMAFORGE_BENCH_BENCH_COMMON_H_

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "lumaforge/lumaforge.h"
#include "tests/environment.h"
#include "tools/cpu_level_masks.h"

namespace Lumaforge::bench {

// Best milliseconds per call over seven batches (after one warm-up call).
inline double TimeMs(const std::function<void()>& work, int callsPerBatch) {
  work();
  double best = 1e30;
  for (int batch = 0; batch < 7; ++batch) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < callsPerBatch; ++i) work();
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    best = std::min(best, ms / callsPerBatch);
  }
  return best;
}

inline int32_t AvailableTier() {
  test::UnsetEnv("LUMAFORGE_CPU_MASK");
  return GetLumaforgeArch();
}

// Prints one column title per processor level this machine has, each
// `width` characters wide, after a space.
inline void PrintLevelTitles(int width) {
  const int32_t available = AvailableTier();
  for (const CpuLevel& level : kCpuLevels) {
    if (level.tier <= available) std::printf(" %*s", width, level.name);
  }
}

// Runs `body` with a silent manager whose filter `type` was initialised
// (with `flag`) under each level's feature mask.
inline void ForEachLevel(int32_t type, uint8_t flag, const std::function<void(const CpuLevel&, ILumaforge*)>& body) {
  const int32_t available = AvailableTier();
  for (const CpuLevel& level : kCpuLevels) {
    if (level.tier > available) break;
    test::SetEnv("LUMAFORGE_CPU_MASK", level.mask);
    ILumaforge* lf = nullptr;
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    lf->Init(type, nullptr, flag);
    body(level, lf);
    DestroyLumaforge(lf);
  }
  test::UnsetEnv("LUMAFORGE_CPU_MASK");
}

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_BENCH_COMMON_H_
