#include "color/kernels/rgb_to_yuv.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BgraToYRow_c, BgraToUV420Row_c, BgraToUV422Row_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
