#include "tools/lumaforge/cpu_levels.h"

#include <cstdlib>

namespace Lumaforge::cli {
namespace {

constexpr char kMaskVariable[] = "LUMAFORGE_CPU_MASK";

}  // namespace

std::span<const CpuLevel> CpuLevels() { return kCpuLevels; }

const char* TierName(int32_t tier) {
  for (const CpuLevel& level : kCpuLevels) {
    if (level.tier == tier) return level.name;
  }
  return "unknown";
}

ScopedCpuMask::ScopedCpuMask(const char* mask) {
  if (const char* value = std::getenv(kMaskVariable)) previous_ = value;
  if (mask) {
    setenv(kMaskVariable, mask, 1);
  } else {
    unsetenv(kMaskVariable);
  }
}

ScopedCpuMask::~ScopedCpuMask() {
  if (previous_) {
    setenv(kMaskVariable, previous_->c_str(), 1);
  } else {
    unsetenv(kMaskVariable);
  }
}

}  // namespace Lumaforge::cli
