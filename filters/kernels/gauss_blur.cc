#include "filters/kernels/gauss_blur.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitGaussBlurKernels(GaussBlurKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {GaussRowPass1_c, GaussColumnPass1_c, GaussRowPass4_c, GaussColumnPass4_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSE42, sse42::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
