#include "scaling/kernels/multitap_scale.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {HalfBandVertical_c, HalfBandHorizontal_c, FourTapVertical_c, FourTapHorizontal_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
