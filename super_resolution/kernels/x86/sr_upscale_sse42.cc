#include "super_resolution/kernels/x86/sr_upscale_simd.h"

namespace Lumaforge::sse42 {

// The two-pass 2x needs 32-bit multiplies (SSE4.1) for its detail gain.
void Install(SrUpscaleKernels* kernels) { kernels->twoPass = x86::SrTwoPass; }

}  // namespace Lumaforge::sse42
