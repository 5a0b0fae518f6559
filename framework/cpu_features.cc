#include "framework/cpu_features.h"

#include <cstdlib>
#include <cstring>

namespace Lumaforge {
namespace {

constexpr bool Bit(uint32_t reg, int bit) { return (reg >> bit) & 1u; }

bool VendorIs(const CpuidSnapshot& cpu, const char* vendor) {
  char text[13];
  std::memcpy(text, &cpu.leaf0.ebx, 4);
  std::memcpy(text + 4, &cpu.leaf0.edx, 4);
  std::memcpy(text + 8, &cpu.leaf0.ecx, 4);
  text[12] = '\0';
  return std::strcmp(text, vendor) == 0;
}

uint32_t CacheLineBit(uint32_t leaf1Ebx) {
  switch (((leaf1Ebx >> 8) & 0xff) * 8) {
    case 16: return kCpuCacheLine16;
    case 32: return kCpuCacheLine32;
    case 64: return kCpuCacheLine64;
    case 128: return kCpuCacheLine128;
    default: return 0;
  }
}

}  // namespace

uint32_t DecodeCpuFeatures(const CpuidSnapshot& cpu, uint32_t* logicalProcessors) {
  if (logicalProcessors) *logicalProcessors = 0;
  if (!cpu.hasCpuid) return 0;
  const uint32_t maxLeaf = cpu.leaf0.eax;
  if (maxLeaf == 0) return 0;

  const uint32_t edx = cpu.leaf1.edx;
  const uint32_t ecx = cpu.leaf1.ecx;
  if (!Bit(edx, 23)) return 0;  // no MMX: nothing this library can use

  const bool intel = VendorIs(cpu, "GenuineIntel");
  const bool amd = VendorIs(cpu, "AuthenticAMD");
  uint32_t word = kCpuMMX;
  if (Bit(edx, 25)) word |= kCpuMMXExt | kCpuSSE;
  if (Bit(edx, 26)) word |= kCpuSSE2;
  if (Bit(ecx, 0)) word |= kCpuSSE3;
  if (Bit(ecx, 19)) word |= kCpuSSE41;
  if (Bit(ecx, 9)) word |= kCpuSSSE3;
  if (Bit(ecx, 20)) word |= kCpuSSE42;
  if (Bit(edx, 0)) word |= kCpuFPU;
  if (Bit(edx, 28) && (intel || amd)) word |= kCpuHyperThreading;
  if (Bit(edx, 15)) word |= kCpuCMOV;
  if (Bit(ecx, 22)) word |= kCpuMOVBE;
  if (Bit(ecx, 25)) word |= kCpuAES;

  // AVX needs both the instructions (and OSXSAVE) and an OS that saves the
  // XMM and YMM registers on a context switch.
  const bool osSavesYmm = (cpu.xcr0 & 0x6) == 0x6;
  const bool avxUsable = Bit(ecx, 27) && Bit(ecx, 28) && osSavesYmm;
  if (avxUsable) word |= kCpuAVX;
  if (avxUsable && Bit(ecx, 12)) word |= kCpuFMA;
  if (maxLeaf >= 7 && avxUsable && Bit(cpu.leaf7.ebx, 5)) word |= kCpuAVX2;

  if (amd && cpu.ext0.eax >= 0x80000001) {
    if (Bit(cpu.ext1.edx, 22)) word |= kCpuMMXExt;
    if (Bit(cpu.ext1.edx, 31)) word |= kCpu3DNow;
  }

  // These early Intel family 6 models are excluded from the SSE2 and SSE3
  // paths whatever they report.
  const uint32_t eax = cpu.leaf1.eax;
  const uint32_t family = ((eax >> 8) & 0xf) + ((eax >> 20) & 0xff);
  const uint32_t model = ((eax >> 4) & 0xf) + (((eax >> 16) & 0xf) << 4);
  if (intel && family == 6 && (model == 9 || model == 13 || model == 14)) word &= ~(kCpuSSE2 | kCpuSSE3);

  if (intel || VendorIs(cpu, "CyrixInstead")) word |= CacheLineBit(cpu.leaf1.ebx);

  if (logicalProcessors) {
    if (intel && maxLeaf >= 4) {
      *logicalProcessors = ((cpu.leaf4.eax >> 26) & 0x3f) + 1;
    } else if (word & kCpuHyperThreading) {
      *logicalProcessors = (cpu.leaf1.ebx >> 16) & 0xff;
    }
  }
  return word;
}

CpuidSnapshot ReadCpuidSnapshot() {
  CpuidSnapshot cpu;
  cpu.hasCpuid = platform::HasCpuid();
  if (!cpu.hasCpuid) return cpu;
  cpu.leaf0 = platform::Cpuid(0, 0);
  const uint32_t maxLeaf = cpu.leaf0.eax;
  if (maxLeaf >= 1) cpu.leaf1 = platform::Cpuid(1, 0);
  if (maxLeaf >= 4) cpu.leaf4 = platform::Cpuid(4, 0);
  if (maxLeaf >= 7) cpu.leaf7 = platform::Cpuid(7, 0);
  cpu.ext0 = platform::Cpuid(0x80000000, 0);
  if (cpu.ext0.eax >= 0x80000001) cpu.ext1 = platform::Cpuid(0x80000001, 0);
  // xgetbv faults unless the OS has enabled it (OSXSAVE).
  if (Bit(cpu.leaf1.ecx, 27)) cpu.xcr0 = platform::ReadXcr0();
  return cpu;
}

uint32_t DetectCpuFeatures(uint32_t* logicalProcessors) {
  uint32_t word = DecodeCpuFeatures(ReadCpuidSnapshot(), logicalProcessors);
  if (const char* mask = std::getenv(kCpuMaskVariable)) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(mask, &end, 0);
    if (end != mask) word &= static_cast<uint32_t>(value);
  }
  return word;
}

int32_t CpuTier(uint32_t features) {
  int32_t tier = 0;
  for (int32_t level = 0; level < 5; ++level) {
    if (features & kKernelLevelBits[level]) tier = level + 1;
  }
  return tier;
}

}  // namespace Lumaforge
