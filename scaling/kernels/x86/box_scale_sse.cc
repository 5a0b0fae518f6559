#include "scaling/kernels/x86/box_scale_simd.h"

namespace Lumaforge::sse {

// Unaligned loads cost nothing extra on aligned rows, so both step-2 entries share one body.
void Install(BoxScaleKernels* kernels) {
  kernels->halfAligned = x86::BoxScale<x86::HalfByWords>;
  kernels->halfUnaligned = x86::BoxScale<x86::HalfByWords>;
  kernels->quarter = x86::BoxScale<x86::QuarterByWords>;
}

}  // namespace Lumaforge::sse
