#include "scaling/kernels/box_scale.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitBoxScaleKernels(BoxScaleKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BoxHalf_c,      BoxHalf_c,        BoxThird_c,   BoxQuarter_c,
              BilinearLuma_c, BilinearChroma_c, PackedHalf_c, PackedBilinear_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE, sse::Install},
               {kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
