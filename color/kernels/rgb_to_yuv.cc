#include "color/kernels/rgb_to_yuv.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures) {
  kernels->bgraToYRow = BgraToYRow_c;
  kernels->bgraToUV420Row = BgraToUV420Row_c;
  kernels->bgraToUV422Row = BgraToUV422Row_c;
#define INSTALL(level)                             \
  kernels->bgraToYRow = level::BgraToYRow;         \
  kernels->bgraToUV420Row = level::BgraToUV420Row; \
  kernels->bgraToUV422Row = level::BgraToUV422Row;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
