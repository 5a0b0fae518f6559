#include "color/kernels/rgb_pack.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures) {
  kernels->shuffle4Row = Shuffle4Row_c;
  kernels->rgb24ToBgraRow = Rgb24ToBgraRow_c;
  kernels->bgraToRgb24Row = BgraToRgb24Row_c;
  kernels->planesToBgraRow = PlanesToBgraRow_c;
  kernels->bgraToPlanesRow = BgraToPlanesRow_c;
#define INSTALL(level)                               \
  kernels->shuffle4Row = level::Shuffle4Row;         \
  kernels->rgb24ToBgraRow = level::Rgb24ToBgraRow;   \
  kernels->bgraToRgb24Row = level::BgraToRgb24Row;   \
  kernels->planesToBgraRow = level::PlanesToBgraRow; \
  kernels->bgraToPlanesRow = level::BgraToPlanesRow;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
