#include "scaling/kernels/x86/multitap_scale_simd.h"

namespace Lumaforge::ssse3 {

// The horizontal four-tap row stays with SSE2: a pshufb window for the sample
// quads and pmaddubsw sums measured no faster than its dword loads, and
// slower at ratios where the window applies.
void Install(MultiTapScaleKernels* kernels) {
  kernels->halfBandVertical = x86::HalfBandVertical<x86::Vec128>;
  kernels->halfBandHorizontal = x86::HalfBandHorizontal<x86::Vec128>;
  kernels->fourTapVertical = x86::FourTapVertical<x86::Vec128>;
}

}  // namespace Lumaforge::ssse3
