// Processor levels by name, and limiting the library to one of them.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CPU_LEVELS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CPU_LEVELS_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/cpu_level_masks.h"

namespace Lumaforge::cli {

std::span<const CpuLevel> CpuLevels();
// "avx2" for tier 5.
const char* TierName(int32_t tier);

// Sets LUMAFORGE_CPU_MASK for as long as it lives; the library reads it when
// a filter is initialised. The previous value comes back afterwards.
class ScopedCpuMask {
 public:
  explicit ScopedCpuMask(const char* mask);
  ~ScopedCpuMask();
  ScopedCpuMask(const ScopedCpuMask&) = delete;
  ScopedCpuMask& operator=(const ScopedCpuMask&) = delete;

 private:
  std::optional<std::string> previous_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CPU_LEVELS_H_
