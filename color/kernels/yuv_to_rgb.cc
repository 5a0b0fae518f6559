#include "color/kernels/yuv_to_rgb.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures) {
  kernels->i422ToBgraRow = I422ToBgraRow_c;
  (void)cpuFeatures;  // vector forms are installed here as they land
}

}  // namespace Lumaforge
