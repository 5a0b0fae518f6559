#include "filters/kernels/x86/gauss_blur_simd.h"

namespace Lumaforge::sse2 {

// The one-channel passes have 256-bit forms only (gauss_blur_avx2.cc);
// below AVX2 they stay plain.
void Install(GaussBlurKernels* kernels) {
  kernels->rowPass4 = x86::GaussRowPass4<x86::Floats128>;
  kernels->columnPass4 = x86::GaussColumnPass4<x86::Floats128>;
}

}  // namespace Lumaforge::sse2
