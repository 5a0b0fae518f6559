// The processor levels the library picks kernels for, and the
// LUMAFORGE_CPU_MASK value that limits a process to each one. Shared by the
// tool, the benchmarks and the tests that compare levels.
#ifndef LUMAFORGE_TOOLS_CPU_LEVEL_MASKS_H_
#define LUMAFORGE_TOOLS_CPU_LEVEL_MASKS_H_

#include <cstdint>

namespace Lumaforge {

struct CpuLevel {
  const char* name;
  const char* mask;  // value for LUMAFORGE_CPU_MASK
  int32_t tier;      // GetLumaforgeArch() under that mask
};

inline constexpr CpuLevel kCpuLevels[] = {{"c", "0", 0},          {"sse2", "0xd", 1},  {"ssse3", "0x20d", 2},
                                          {"sse4.2", "0x62d", 3}, {"avx", "0xe2d", 4}, {"avx2", "0xffffffff", 5}};

}  // namespace Lumaforge

#endif  // LUMAFORGE_TOOLS_CPU_LEVEL_MASKS_H_
