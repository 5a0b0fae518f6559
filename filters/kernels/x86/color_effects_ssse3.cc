#include "filters/kernels/x86/color_effects_simd.h"

namespace Lumaforge::ssse3 {

// Sepia rotates its bytes with alignr here; the hue rotation gains nothing
// and stays with SSE2.
void Install(ColorEffectKernels* kernels) { kernels->sepia = x86::Sepia<x86::Effects128>; }

}  // namespace Lumaforge::ssse3
