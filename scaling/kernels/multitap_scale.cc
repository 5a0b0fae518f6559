#include "scaling/kernels/multitap_scale.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {HalfBandVertical_c, HalfBandHorizontal_c, FourTapVertical_c, FourTapHorizontal_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::InstallMultiTapScaleKernels},
               {kCpuSSSE3, ssse3::InstallMultiTapScaleKernels},
               {kCpuAVX, avx::InstallMultiTapScaleKernels},
               {kCpuAVX2, avx2::InstallMultiTapScaleKernels}});
}

}  // namespace Lumaforge
