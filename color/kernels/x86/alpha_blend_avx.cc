#include "color/kernels/x86/alpha_blend_simd.h"

namespace Lumaforge::avx {

// The VEX build of the 128-bit body: three-operand forms save the copies
// the SSE2 build needs.
void Install(AlphaBlendKernels* kernels) {
  kernels->rgb32Row = x86::BlendRgb32Row<x86::Vec128>;
  kernels->planeRow = x86::BlendPlaneRow<x86::Vec128>;
  kernels->chromaRow = x86::BlendChromaRow<x86::Vec128>;
}

}  // namespace Lumaforge::avx
