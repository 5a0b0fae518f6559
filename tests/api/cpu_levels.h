// Runs a test body once per instruction-set level this processor supports,
// with LUMAFORGE_CPU_MASK limiting what filters created inside the body see.
// Outputs produced at every level must be identical.
#ifndef LUMAFORGE_TESTS_API_CPU_LEVELS_H_
#define LUMAFORGE_TESTS_API_CPU_LEVELS_H_

#include <cstdlib>
#include <functional>

#include "lumaforge/lumaforge.h"
#include "tests/environment.h"

namespace Lumaforge::test {

struct CpuLevel {
  const char* name;
  const char* mask;  // value for LUMAFORGE_CPU_MASK
  int32_t tier;      // GetLumaforgeArch() under that mask
};

inline void ForEachCpuLevel(const std::function<void(const CpuLevel&)>& body) {
  static const CpuLevel kLevels[] = {{"c", "0", 0},         {"sse2", "0xd", 1},  {"ssse3", "0x20d", 2},
                                     {"sse42", "0x62d", 3}, {"avx", "0xe2d", 4}, {"avx2", "0xffffffff", 5}};
  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
  const int32_t available = GetLumaforgeArch();
  for (const CpuLevel& level : kLevels) {
    if (level.tier > available) break;
    Lumaforge::test::SetEnv("LUMAFORGE_CPU_MASK", level.mask);
    body(level);
  }
  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
}

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_API_CPU_LEVELS_H_
