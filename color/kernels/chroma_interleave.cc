#include "color/kernels/chroma_interleave.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {MergeUVRow_c, SplitUVRow_c, EvenSamplesRow_c};
  ClimbLadder(kernels, cpuFeatures, {{kCpuSSE2, sse2::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
