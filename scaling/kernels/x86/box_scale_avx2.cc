#include "scaling/kernels/x86/box_scale_simd.h"

namespace Lumaforge::avx2 {

// Luma bilinear is bound by its per-column sample gathers and measured no
// faster at 256 bits, so the AVX build keeps it; the box steps and packed
// bilinear stay with SSSE3 for the same reason.
void Install(BoxScaleKernels* kernels) {
  kernels->generalChroma = x86::BilinearPlane<x86::Vec256, true>;
  kernels->packedHalf = x86::PackedHalf<x86::Half24ByShuffle<x86::Vec256>, x86::Half32<x86::Vec256>>;
}

}  // namespace Lumaforge::avx2
