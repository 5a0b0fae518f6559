#include "color/kernels/x86/alpha_blend_simd.h"

namespace Lumaforge::avx2 {

void Install(AlphaBlendKernels* kernels) {
  kernels->rgb32Row = x86::BlendRgb32Row<x86::Vec256>;
  kernels->planeRow = x86::BlendPlaneRow<x86::Vec256>;
  kernels->chromaRow = x86::BlendChromaRow<x86::Vec256>;
}

}  // namespace Lumaforge::avx2
