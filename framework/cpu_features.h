// The processor feature word that selects kernels.
#ifndef LUMAFORGE_FRAMEWORK_CPU_FEATURES_H_
#define LUMAFORGE_FRAMEWORK_CPU_FEATURES_H_

#include <cstdint>

#include "framework/platform/cpuid.h"

namespace Lumaforge {

// Bits of the feature word.
enum CpuFeature : uint32_t {
  kCpuMMX = 0x1,
  kCpuMMXExt = 0x2,  // SSE, or AMD's extended MMX
  kCpuSSE = 0x4,
  kCpuSSE2 = 0x8,
  kCpuSSE3 = 0x10,
  kCpuSSE41 = 0x20,
  kCpu3DNow = 0x40,
  kCpuSSSE3 = 0x200,
  kCpuSSE42 = 0x400,
  kCpuAVX = 0x800,  // instructions present and the OS saves the YMM state
  kCpuFPU = 0x1000,
  kCpuHyperThreading = 0x2000,
  kCpuCMOV = 0x4000,
  kCpuMOVBE = 0x8000,
  kCpuAES = 0x10000,
  kCpuFMA = 0x20000,
  kCpuAVX2 = 0x40000,
  kCpuCacheLine16 = 0x10000000,
  kCpuCacheLine32 = 0x20000000,
  kCpuCacheLine64 = 0x40000000,
  kCpuCacheLine128 = 0x80000000,
};

// The kernel-selecting bits in ladder order; the last present one wins.
constexpr uint32_t kKernelLevelBits[] = {kCpuSSE2, kCpuSSSE3, kCpuSSE42, kCpuAVX, kCpuAVX2};

// Raw answers of the identification instructions for one processor.
struct CpuidSnapshot {
  bool hasCpuid = false;
  platform::CpuidRegisters leaf0, leaf1, leaf4, leaf7;
  platform::CpuidRegisters ext0;  // leaf 0x80000000
  platform::CpuidRegisters ext1;  // leaf 0x80000001
  uint64_t xcr0 = 0;              // meaningful only when leaf 1 reports OSXSAVE
};

// Builds the feature word from a snapshot. `logicalProcessors`, when given,
// receives the logical processor count the identification reports (0 when
// it reports none).
uint32_t DecodeCpuFeatures(const CpuidSnapshot& cpu, uint32_t* logicalProcessors = nullptr);

// Executes the identification instructions on this processor.
CpuidSnapshot ReadCpuidSnapshot();

// Name of the environment variable holding a mask (hexadecimal or decimal)
// that is ANDed into the detected word, to run lower kernel levels.
constexpr const char kCpuMaskVariable[] = "LUMAFORGE_CPU_MASK";

// The feature word of this processor, masked by kCpuMaskVariable when set.
uint32_t DetectCpuFeatures(uint32_t* logicalProcessors = nullptr);

// Instruction-set tier of a feature word: 5 AVX2, 4 AVX, 3 SSE4.2, 2 SSSE3, 1 SSE2, 0.
int32_t CpuTier(uint32_t features);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_CPU_FEATURES_H_
