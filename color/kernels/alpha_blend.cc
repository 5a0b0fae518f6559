#include "color/kernels/alpha_blend.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitAlphaBlendKernels(AlphaBlendKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BlendRgb32Row_c, BlendPlaneRow_c, BlendChromaRow_c};
  ClimbLadder(kernels, cpuFeatures, {{kCpuSSE2, sse2::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
