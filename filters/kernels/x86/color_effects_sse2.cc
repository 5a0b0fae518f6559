#include "filters/kernels/x86/color_effects_simd.h"

namespace Lumaforge::sse2 {

// Later 128-bit builds of the hue rotation are no faster, so this one
// serves up to AVX.
void Install(ColorEffectKernels* kernels) {
  kernels->rotateHue = x86::RotateHue<x86::Effects128>;
  kernels->sepia = x86::Sepia<x86::Effects128>;
}

}  // namespace Lumaforge::sse2
