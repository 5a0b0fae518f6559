#include "color/kernels/x86/packed422_simd.h"

namespace Lumaforge::sse2 {

void Install(Packed422Kernels* kernels) {
  kernels->packed422ToPlanesRow = x86::Packed422ToPlanesRow<x86::Vec128>;
  kernels->planesToPacked422Row = x86::PlanesToPacked422Row<x86::Vec128>;
  kernels->averageRows = x86::AverageRows<x86::Vec128>;
}

}  // namespace Lumaforge::sse2
