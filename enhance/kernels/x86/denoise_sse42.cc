#include "enhance/kernels/x86/denoise_simd.h"

namespace Lumaforge::sse42 {

void Install(DenoiseKernels* kernels) { x86::InstallDenoise<x86::Lanes8>(kernels); }

}  // namespace Lumaforge::sse42
