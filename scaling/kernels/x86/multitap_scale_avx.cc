#include "scaling/kernels/x86/multitap_scale_simd.h"

namespace Lumaforge::avx {

// The 128-bit bodies in VEX encoding: the three-operand forms save the
// register copies of the vertical passes. The horizontal half-band pass
// measured no faster than its SSSE3 build, so it stays there.
void Install(MultiTapScaleKernels* kernels) {
  kernels->halfBandVertical = x86::HalfBandVertical<x86::Vec128>;
  kernels->fourTapVertical = x86::FourTapVertical<x86::Vec128>;
}

}  // namespace Lumaforge::avx
