#include "color/kernels/yuv_to_rgb.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {I422ToBgraRow_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
