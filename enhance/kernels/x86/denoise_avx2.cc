#include "enhance/kernels/x86/denoise_simd.h"

namespace Lumaforge::avx2 {

void Install(DenoiseKernels* kernels) { x86::InstallDenoise<x86::Lanes16>(kernels); }

}  // namespace Lumaforge::avx2
