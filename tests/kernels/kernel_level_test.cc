// Kernel selection from a feature word: each level installs only up to
// itself, so a filter constructed with a reduced word runs that level.
#include <gtest/gtest.h>

#include "color/kernels/chroma_interleave.h"
#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

ChromaInterleaveKernels For(uint32_t features) {
  ChromaInterleaveKernels kernels;
  InitChromaInterleaveKernels(&kernels, features);
  return kernels;
}

TEST(KernelLevels, FeatureWordPicksTheHighestAvailableVariant) {
  EXPECT_EQ(For(0).mergeUVRow, &MergeUVRow_c);
  EXPECT_EQ(For(0).splitUVRow, &SplitUVRow_c);

  // The 128-bit forms come with SSE2 and stay up to AVX; AVX2 replaces them.
  const ChromaInterleaveKernels sse2 = For(kCpuSSE2);
  EXPECT_NE(sse2.mergeUVRow, &MergeUVRow_c);
  EXPECT_EQ(For(kCpuSSE2 | kCpuSSSE3 | kCpuSSE42 | kCpuAVX).mergeUVRow, sse2.mergeUVRow);
  const ChromaInterleaveKernels avx2 = For(kCpuSSE2 | kCpuSSSE3 | kCpuSSE42 | kCpuAVX | kCpuAVX2);
  EXPECT_NE(avx2.mergeUVRow, sse2.mergeUVRow);
  EXPECT_NE(avx2.mergeUVRow, &MergeUVRow_c);

  // An early Intel part that lost its SSE2 bit stays on the plain routines.
  EXPECT_EQ(For(kCpuMMX | kCpuSSE | kCpuFPU).mergeUVRow, &MergeUVRow_c);
}

}  // namespace
}  // namespace Lumaforge
