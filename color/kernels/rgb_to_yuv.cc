#include "color/kernels/rgb_to_yuv.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures) {
  kernels->bgraToYRow = BgraToYRow_c;
  kernels->bgraToUV420Row = BgraToUV420Row_c;
  kernels->bgraToUV422Row = BgraToUV422Row_c;
  (void)cpuFeatures;  // vector forms are installed here as they land
}

}  // namespace Lumaforge
