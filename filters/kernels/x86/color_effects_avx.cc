#include "filters/kernels/x86/color_effects_simd.h"

namespace Lumaforge::avx {

// The VEX encoding's three-operand forms save sepia's register copies; the
// hue rotation gains nothing and stays with SSE2.
void Install(ColorEffectKernels* kernels) { kernels->sepia = x86::Sepia<x86::Effects128>; }

}  // namespace Lumaforge::avx
