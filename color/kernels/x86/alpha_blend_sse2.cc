#include "color/kernels/x86/alpha_blend_simd.h"

namespace Lumaforge::sse2 {

// The 128-bit body; its SSSE3 and SSE4.2 builds were no faster.
void Install(AlphaBlendKernels* kernels) {
  kernels->rgb32Row = x86::BlendRgb32Row<x86::Vec128>;
  kernels->planeRow = x86::BlendPlaneRow<x86::Vec128>;
  kernels->chromaRow = x86::BlendChromaRow<x86::Vec128>;
}

}  // namespace Lumaforge::sse2
