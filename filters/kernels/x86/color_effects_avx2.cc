#include "filters/kernels/x86/color_effects_simd.h"

namespace Lumaforge::avx2 {

void Install(ColorEffectKernels* kernels) {
  kernels->rotateHue = x86::RotateHue<x86::Effects256>;
  kernels->sepia = x86::Sepia<x86::Effects256>;
}

}  // namespace Lumaforge::avx2
