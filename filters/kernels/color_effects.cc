#include "filters/kernels/color_effects.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitColorEffectKernels(ColorEffectKernels* kernels, uint32_t cpuFeatures) {
  kernels->rotateHue = RotateHue_c;
  kernels->sepia = Sepia_c;
#define INSTALL(level)                   \
  kernels->rotateHue = level::RotateHue; \
  kernels->sepia = level::Sepia;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
