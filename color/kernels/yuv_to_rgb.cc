#include "color/kernels/yuv_to_rgb.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {I422ToBgraRow_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::InstallYuvToRgbKernels},
               {kCpuSSSE3, ssse3::InstallYuvToRgbKernels},
               {kCpuAVX, avx::InstallYuvToRgbKernels},
               {kCpuAVX2, avx2::InstallYuvToRgbKernels}});
}

}  // namespace Lumaforge
