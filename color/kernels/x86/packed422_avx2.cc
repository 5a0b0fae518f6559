#include "color/kernels/x86/packed422_simd.h"

namespace Lumaforge::avx2 {

void Install(Packed422Kernels* kernels) {
  kernels->packed422ToPlanesRow = x86::Packed422ToPlanesRow<x86::Vec256>;
  kernels->planesToPacked422Row = x86::PlanesToPacked422Row<x86::Vec256>;
  kernels->averageRows = x86::AverageRows<x86::Vec256>;
}

}  // namespace Lumaforge::avx2
