#include "scaling/kernels/box_scale.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitBoxScaleKernels(BoxScaleKernels* k, uint32_t cpuFeatures) {
  *k = {BoxHalf_c,      BoxHalf_c,        BoxThird_c,   BoxQuarter_c,
        BilinearLuma_c, BilinearChroma_c, PackedHalf_c, PackedBilinear_c};
  // Vector forms land here level by level as they are written.
  (void)cpuFeatures;
}

}  // namespace Lumaforge
