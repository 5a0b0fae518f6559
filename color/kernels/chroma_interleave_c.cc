#include "color/kernels/chroma_interleave.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void MergeUVRow_c(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    uv[2 * i] = u[i];
    uv[2 * i + 1] = v[i];
  }
}

void SplitUVRow_c(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    u[i] = uv[2 * i];
    v[i] = uv[2 * i + 1];
  }
}

void EvenSamplesRow_c(const uint8_t* src, uint8_t* dst, int32_t width) {
  for (int32_t i = 0; i < width; ++i) dst[i] = src[2 * i];
}

void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {MergeUVRow_c, SplitUVRow_c, EvenSamplesRow_c};
  ClimbLadder(kernels, cpuFeatures, {{kCpuSSE2, sse2::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
