#include "color/kernels/rgb_pack.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures) {
  kernels->shuffle4Row = Shuffle4Row_c;
  kernels->rgb24ToBgraRow = Rgb24ToBgraRow_c;
  kernels->bgraToRgb24Row = BgraToRgb24Row_c;
  kernels->planesToBgraRow = PlanesToBgraRow_c;
  kernels->bgraToPlanesRow = BgraToPlanesRow_c;
  (void)cpuFeatures;  // vector forms are installed here as they land
}

}  // namespace Lumaforge
