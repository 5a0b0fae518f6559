// Declares a family's kernels once per instruction-set namespace.
//
// A family header defines LUMAFORGE_<FAMILY>_KERNELS(level) as the list of
// its kernel declarations and expands it through
// LUMAFORGE_DECLARE_FOR_EACH_LEVEL, so the plain and vector forms can never
// disagree on a signature.
#ifndef LUMAFORGE_FRAMEWORK_SIMD_LEVELS_H_
#define LUMAFORGE_FRAMEWORK_SIMD_LEVELS_H_

#define LUMAFORGE_DECLARE_FOR_EACH_LEVEL(declare) \
  namespace sse2 {                                \
  declare                                         \
  }                                               \
  namespace ssse3 {                               \
  declare                                         \
  }                                               \
  namespace sse42 {                               \
  declare                                         \
  }                                               \
  namespace avx {                                 \
  declare                                         \
  }                                               \
  namespace avx2 {                                \
  declare                                         \
  }

// Runs `install(level)` for every level the feature word holds, lowest
// first, so the highest one wins.
#define LUMAFORGE_INSTALL_LADDER(features, install) \
  do {                                              \
    if ((features)&kCpuSSE2) {                      \
      install(sse2)                                 \
    }                                               \
    if ((features)&kCpuSSSE3) {                     \
      install(ssse3)                                \
    }                                               \
    if ((features)&kCpuSSE42) {                     \
      install(sse42)                                \
    }                                               \
    if ((features)&kCpuAVX) {                       \
      install(avx)                                  \
    }                                               \
    if ((features)&kCpuAVX2) {                      \
      install(avx2)                                 \
    }                                               \
  } while (0)

#endif  // LUMAFORGE_FRAMEWORK_SIMD_LEVELS_H_
