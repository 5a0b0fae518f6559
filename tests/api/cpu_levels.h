// Runs a test body once per instruction-set level this processor supports,
// with LUMAFORGE_CPU_MASK limiting what filters created inside the body see.
// Outputs produced at every level must be identical.
#ifndef LUMAFORGE_TESTS_API_CPU_LEVELS_H_
#define LUMAFORGE_TESTS_API_CPU_LEVELS_H_

#include <cstdlib>
#include <functional>

#include "lumaforge/lumaforge.h"
#include "tests/environment.h"
#include "tools/cpu_level_masks.h"

namespace Lumaforge::test {

using Lumaforge::CpuLevel;

inline void ForEachCpuLevel(const std::function<void(const CpuLevel&)>& body) {
  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
  const int32_t available = GetLumaforgeArch();
  for (const CpuLevel& level : kCpuLevels) {
    if (level.tier > available) break;
    Lumaforge::test::SetEnv("LUMAFORGE_CPU_MASK", level.mask);
    body(level);
  }
  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
}

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_API_CPU_LEVELS_H_
