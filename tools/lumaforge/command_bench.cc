// lumaforge bench: every filter at 1920x1080 and 1280x720 at each processor
// level this machine has, in milliseconds per frame.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/chain.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/cpu_levels.h"
#include "tools/lumaforge/patterns.h"
#include "tools/lumaforge/pixel_formats.h"
#include "tools/lumaforge/progress.h"

namespace Lumaforge::cli {
namespace {

struct Size {
  uint32_t width, height;
};
constexpr Size kSizes[] = {{1920, 1080}, {1280, 720}};
// Distinct clip frames per size; longer runs cycle through them.
constexpr uint32_t kClipFrames = 8;

int32_t MachineTier() {
  ScopedCpuMask unmasked(nullptr);
  return GetLumaforgeArch();
}

double MsPerFrame(const char* filter, const std::vector<Frame>& clip, uint32_t frames, bool verbose,
                  Progress& progress) {
  Chain chain({filter}, {}, verbose);
  for (uint32_t i = 0; i < frames; ++i) {
    chain.Run(clip[i % clip.size()], "frame " + std::to_string(i + 1) + " of the bench clip");
    progress.Advance();
  }
  return std::chrono::duration<double, std::milli>(chain.ProcessTime(0)).count() / frames;
}

}  // namespace

void RunBench(const BenchOptions& options) {
  std::vector<CpuLevel> levels;
  const int32_t machineTier = MachineTier();
  for (const CpuLevel& level : CpuLevels()) {
    if (level.tier <= machineTier) levels.push_back(level);
  }
  std::vector<std::vector<Frame>> clips;
  {
    ScopedCpuMask unmasked(nullptr);
    for (const Size& size : kSizes)
      clips.push_back(DemoClip(size.width, size.height, std::min(options.frames, kClipFrames), options.verbose));
  }

  const std::span<const FilterInfo> catalog = Catalog();
  // ms[level][size][filter]
  std::vector<std::vector<std::vector<double>>> ms(levels.size(), std::vector<std::vector<double>>(std::size(kSizes)));
  {
    Progress progress("bench", uint64_t{options.frames} * levels.size() * std::size(kSizes) * catalog.size());
    for (size_t l = 0; l < levels.size(); ++l) {
      ScopedCpuMask mask(levels[l].mask);
      for (size_t s = 0; s < std::size(kSizes); ++s) {
        for (const FilterInfo& info : catalog)
          ms[l][s].push_back(MsPerFrame(info.name, clips[s], options.frames, options.verbose, progress));
      }
    }
  }

  std::printf("ms per frame, %u frames each, I420 input (csc: to bgra)\n%-12s %-10s", options.frames, "filter", "size");
  for (const CpuLevel& level : levels) std::printf(" %9s", level.name);
  std::printf("\n");
  for (size_t f = 0; f < catalog.size(); ++f) {
    for (size_t s = 0; s < std::size(kSizes); ++s) {
      const std::string size = SizeText(kSizes[s].width, kSizes[s].height);
      std::printf("%-12s %-10s", catalog[f].name, size.c_str());
      for (size_t l = 0; l < levels.size(); ++l) std::printf(" %9.3f", ms[l][s][f]);
      std::printf("\n");
    }
  }
}

}  // namespace Lumaforge::cli
