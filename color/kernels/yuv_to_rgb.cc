#include "color/kernels/yuv_to_rgb.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures) {
  kernels->i422ToBgraRow = I422ToBgraRow_c;
#define INSTALL(level) kernels->i422ToBgraRow = level::I422ToBgraRow;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
