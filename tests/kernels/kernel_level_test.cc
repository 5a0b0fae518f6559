// Kernel selection from a feature word: a reduced word installs the lower
// level, so a filter constructed with it runs exactly that level.
#include <gtest/gtest.h>

#include "color/kernels/chroma_interleave.h"
#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

TEST(KernelLevels, FeatureWordPicksTheHighestAvailableVariant) {
  ChromaInterleaveKernels kernels;
  InitChromaInterleaveKernels(&kernels, 0);
  EXPECT_EQ(kernels.mergeUVRow, &MergeUVRow_c);
  EXPECT_EQ(kernels.splitUVRow, &SplitUVRow_c);

  // A word reduced to SSSE3 gets the SSSE3 forms, even on an AVX2 machine.
  InitChromaInterleaveKernels(&kernels, kCpuSSE2 | kCpuSSSE3);
  EXPECT_EQ(kernels.mergeUVRow, &ssse3::MergeUVRow);
  InitChromaInterleaveKernels(&kernels, kCpuSSE2 | kCpuSSSE3 | kCpuSSE42 | kCpuAVX);
  EXPECT_EQ(kernels.mergeUVRow, &avx::MergeUVRow);

  InitChromaInterleaveKernels(&kernels, kCpuSSE2 | kCpuSSSE3 | kCpuSSE42 | kCpuAVX | kCpuAVX2);
  EXPECT_EQ(kernels.splitUVRow, &avx2::SplitUVRow);

  // An early Intel part that lost its SSE2 bit stays on the plain routines.
  InitChromaInterleaveKernels(&kernels, kCpuMMX | kCpuSSE | kCpuFPU);
  EXPECT_EQ(kernels.mergeUVRow, &MergeUVRow_c);
}

}  // namespace
}  // namespace Lumaforge
