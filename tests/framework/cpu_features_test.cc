// Feature-word decoding on synthetic processors.
#include "framework/cpu_features.h"
#include "tests/environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace Lumaforge {
namespace {

constexpr uint32_t kEdxMmxSseSse2 = (1u << 23) | (1u << 25) | (1u << 26);
constexpr uint32_t kEcxSse3Ssse3Sse41Sse42 = (1u << 0) | (1u << 9) | (1u << 19) | (1u << 20);
constexpr uint32_t kEcxOsxsaveAvx = (1u << 27) | (1u << 28);

CpuidSnapshot Processor(const char* vendor, uint32_t family, uint32_t model) {
  CpuidSnapshot cpu;
  cpu.hasCpuid = true;
  cpu.leaf0.eax = 7;
  std::memcpy(&cpu.leaf0.ebx, vendor, 4);
  std::memcpy(&cpu.leaf0.edx, vendor + 4, 4);
  std::memcpy(&cpu.leaf0.ecx, vendor + 8, 4);
  const uint32_t baseFamily = family > 15 ? 15 : family;
  cpu.leaf1.eax = ((model & 0xf) << 4) | (baseFamily << 8) | ((model >> 4) << 16) | ((family - baseFamily) << 20);
  cpu.leaf1.edx = kEdxMmxSseSse2 | 1u;  // with an x87 unit
  cpu.leaf1.ecx = kEcxSse3Ssse3Sse41Sse42;
  cpu.leaf1.ebx = 8u << 8;  // 64-byte cache lines
  return cpu;
}

// A modern desktop processor with AVX2 enabled by the OS.
CpuidSnapshot Avx2Processor() {
  CpuidSnapshot cpu = Processor("GenuineIntel", 6, 0x9e);
  cpu.leaf1.ecx |= kEcxOsxsaveAvx | (1u << 12);
  cpu.leaf7.ebx = 1u << 5;
  cpu.xcr0 = 0x7;
  return cpu;
}

TEST(CpuFeatures, ModernProcessorReachesAvx2) {
  const uint32_t word = DecodeCpuFeatures(Avx2Processor());
  for (uint32_t bit : kKernelLevelBits) EXPECT_TRUE(word & bit) << std::hex << bit;
  EXPECT_TRUE(word & kCpuFMA);
  EXPECT_TRUE(word & kCpuCacheLine64);
  EXPECT_EQ(CpuTier(word), 5);
}

TEST(CpuFeatures, AvxNotSavedByTheOsIsNotUsable) {
  CpuidSnapshot cpu = Avx2Processor();
  cpu.xcr0 = 0x3;  // XMM saved, YMM not
  const uint32_t word = DecodeCpuFeatures(cpu);
  EXPECT_FALSE(word & (kCpuAVX | kCpuAVX2 | kCpuFMA));
  EXPECT_EQ(CpuTier(word), 3);
}

TEST(CpuFeatures, AvxWithoutAvx2IsTierFour) {
  CpuidSnapshot cpu = Avx2Processor();
  cpu.leaf7.ebx = 0;
  EXPECT_EQ(CpuTier(DecodeCpuFeatures(cpu)), 4);
  // A processor whose highest leaf is below 7 gets no AVX2 whatever leaf 7 holds.
  cpu = Avx2Processor();
  cpu.leaf0.eax = 6;
  EXPECT_EQ(CpuTier(DecodeCpuFeatures(cpu)), 4);
}

TEST(CpuFeatures, EarlyIntelFamilySixModelsLoseSse2AndSse3) {
  for (uint32_t model : {9u, 13u, 14u}) {
    const uint32_t word = DecodeCpuFeatures(Processor("GenuineIntel", 6, model));
    EXPECT_FALSE(word & (kCpuSSE2 | kCpuSSE3)) << model;
    EXPECT_TRUE(word & kCpuSSSE3);
  }
  EXPECT_TRUE(DecodeCpuFeatures(Processor("GenuineIntel", 6, 15)) & kCpuSSE2);
  EXPECT_TRUE(DecodeCpuFeatures(Processor("AuthenticAMD", 6, 13)) & kCpuSSE2);
}

TEST(CpuFeatures, NoCpuidNoLeavesOrNoMmxMeansNothing) {
  CpuidSnapshot cpu = Avx2Processor();
  cpu.hasCpuid = false;
  EXPECT_EQ(DecodeCpuFeatures(cpu), 0u);
  cpu = Avx2Processor();
  cpu.leaf0.eax = 0;
  EXPECT_EQ(DecodeCpuFeatures(cpu), 0u);
  cpu = Avx2Processor();
  cpu.leaf1.edx &= ~(1u << 23);
  EXPECT_EQ(DecodeCpuFeatures(cpu), 0u);
  EXPECT_EQ(CpuTier(0), 0);
}

TEST(CpuFeatures, VendorSpecificBits) {
  CpuidSnapshot amd = Processor("AuthenticAMD", 0x17, 1);
  amd.leaf1.edx |= 1u << 28;
  amd.ext0.eax = 0x80000001;
  amd.ext1.edx = (1u << 22) | (1u << 31);
  uint32_t logical = 99;
  amd.leaf1.ebx |= 16u << 16;
  const uint32_t word = DecodeCpuFeatures(amd, &logical);
  EXPECT_TRUE(word & kCpu3DNow);
  EXPECT_TRUE(word & kCpuHyperThreading);
  EXPECT_FALSE(word & kCpuCacheLine64);  // cache line only for Intel and Cyrix
  EXPECT_EQ(logical, 16u);

  CpuidSnapshot intel = Processor("GenuineIntel", 6, 0x55);
  intel.leaf4.eax = 11u << 26;
  DecodeCpuFeatures(intel, &logical);
  EXPECT_EQ(logical, 12u);

  CpuidSnapshot other = Processor("SomeOtherCPU", 6, 1);
  other.leaf1.edx |= 1u << 28;
  EXPECT_FALSE(DecodeCpuFeatures(other, &logical) & kCpuHyperThreading);
  EXPECT_EQ(logical, 0u);
}

TEST(CpuFeatures, EnvironmentMaskLimitsTheDetectedWord) {
  const uint32_t full = DetectCpuFeatures();
  test::SetEnv(kCpuMaskVariable, "0x8");
  EXPECT_EQ(DetectCpuFeatures(), full & kCpuSSE2);
  test::SetEnv(kCpuMaskVariable, "0");
  EXPECT_EQ(DetectCpuFeatures(), 0u);
  test::SetEnv(kCpuMaskVariable, "not a number");
  EXPECT_EQ(DetectCpuFeatures(), full);
  test::UnsetEnv(kCpuMaskVariable);
  EXPECT_EQ(DetectCpuFeatures(), full);
}

}  // namespace
}  // namespace Lumaforge
