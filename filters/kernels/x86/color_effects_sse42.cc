#include "filters/kernels/x86/color_effects_simd.h"

namespace Lumaforge::sse42 {

// Sepia gathers its channels with blendv here; the hue rotation gains
// nothing and stays with SSE2.
void Install(ColorEffectKernels* kernels) { kernels->sepia = x86::Sepia<x86::Effects128>; }

}  // namespace Lumaforge::sse42
