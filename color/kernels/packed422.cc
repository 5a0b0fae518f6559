#include "color/kernels/packed422.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures) {
  kernels->packed422ToPlanesRow = Packed422ToPlanesRow_c;
  kernels->planesToPacked422Row = PlanesToPacked422Row_c;
  kernels->averageRows = AverageRows_c;
  (void)cpuFeatures;  // vector forms are installed here as they land
}

}  // namespace Lumaforge
