#include "color/kernels/chroma_interleave.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures) {
  kernels->mergeUVRow = MergeUVRow_c;
  kernels->splitUVRow = SplitUVRow_c;
  if (cpuFeatures & kCpuSSE2) {
    kernels->mergeUVRow = sse2::MergeUVRow;
    kernels->splitUVRow = sse2::SplitUVRow;
  }
  if (cpuFeatures & kCpuAVX2) {
    kernels->mergeUVRow = avx2::MergeUVRow;
    kernels->splitUVRow = avx2::SplitUVRow;
  }
}

}  // namespace Lumaforge
