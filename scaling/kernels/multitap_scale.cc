#include "scaling/kernels/multitap_scale.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures) {
  kernels->halfBandVertical = HalfBandVertical_c;
  kernels->halfBandHorizontal = HalfBandHorizontal_c;
  kernels->fourTapVertical = FourTapVertical_c;
  kernels->fourTapHorizontal = FourTapHorizontal_c;
#define INSTALL(level)                                     \
  kernels->halfBandVertical = level::HalfBandVertical;     \
  kernels->halfBandHorizontal = level::HalfBandHorizontal; \
  kernels->fourTapVertical = level::FourTapVertical;       \
  kernels->fourTapHorizontal = level::FourTapHorizontal;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
