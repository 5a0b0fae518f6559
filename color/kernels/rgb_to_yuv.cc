#include "color/kernels/rgb_to_yuv.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BgraToYRow_c, BgraToUV420Row_c, BgraToUV422Row_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::InstallRgbToYuvKernels},
               {kCpuSSSE3, ssse3::InstallRgbToYuvKernels},
               {kCpuAVX, avx::InstallRgbToYuvKernels},
               {kCpuAVX2, avx2::InstallRgbToYuvKernels}});
}

}  // namespace Lumaforge
