#include "filters/kernels/color_effects.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitColorEffectKernels(ColorEffectKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {RotateHue_c, Sepia_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuSSE42, sse42::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
