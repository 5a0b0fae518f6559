#include "scaling/kernels/multitap_scale.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures) {
  kernels->halfBandVertical = HalfBandVertical_c;
  kernels->halfBandHorizontal = HalfBandHorizontal_c;
  kernels->fourTapVertical = FourTapVertical_c;
  kernels->fourTapHorizontal = FourTapHorizontal_c;
  (void)cpuFeatures;  // vector forms are installed here as they land
}

}  // namespace Lumaforge
