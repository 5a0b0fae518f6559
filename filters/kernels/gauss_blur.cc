#include "filters/kernels/gauss_blur.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitGaussBlurKernels(GaussBlurKernels* kernels, uint32_t cpuFeatures) {
  kernels->rowPass1 = GaussRowPass1_c;
  kernels->columnPass1 = GaussColumnPass1_c;
  kernels->rowPass4 = GaussRowPass4_c;
  kernels->columnPass4 = GaussColumnPass4_c;
#define INSTALL(level)                      \
  kernels->rowPass4 = level::GaussRowPass4; \
  kernels->columnPass4 = level::GaussColumnPass4;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
  if (cpuFeatures & kCpuAVX2) {
    kernels->rowPass1 = avx2::GaussRowPass1;
    kernels->columnPass1 = avx2::GaussColumnPass1;
  }
}

}  // namespace Lumaforge
