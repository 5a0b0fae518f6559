#include "color/kernels/alpha_blend.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitAlphaBlendKernels(AlphaBlendKernels* kernels, uint32_t cpuFeatures) {
  kernels->rgb32Row = BlendRgb32Row_c;
  kernels->planeRow = BlendPlaneRow_c;
  kernels->chromaRow = BlendChromaRow_c;
#define INSTALL(level)                      \
  kernels->rgb32Row = level::BlendRgb32Row; \
  kernels->planeRow = level::BlendPlaneRow; \
  kernels->chromaRow = level::BlendChromaRow;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
