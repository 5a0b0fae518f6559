#include "color/kernels/packed422.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures) {
  kernels->packed422ToPlanesRow = Packed422ToPlanesRow_c;
  kernels->planesToPacked422Row = PlanesToPacked422Row_c;
  kernels->averageRows = AverageRows_c;
#define INSTALL(level)                                         \
  kernels->packed422ToPlanesRow = level::Packed422ToPlanesRow; \
  kernels->planesToPacked422Row = level::PlanesToPacked422Row; \
  kernels->averageRows = level::AverageRows;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
