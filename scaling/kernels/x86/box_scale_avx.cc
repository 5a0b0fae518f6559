#include "scaling/kernels/x86/box_scale_simd.h"

namespace Lumaforge::avx {

// The 128-bit bilinears and packed halving in VEX encoding, which measured
// faster; the box steps and packed bilinear did not and stay with SSSE3.
void Install(BoxScaleKernels* kernels) {
  kernels->generalLuma = x86::BilinearPlane<x86::Vec128, false>;
  kernels->generalChroma = x86::BilinearPlane<x86::Vec128, true>;
  kernels->packedHalf = x86::PackedHalf<x86::Half24ByShuffle<x86::Vec128>, x86::Half32<x86::Vec128>>;
}

}  // namespace Lumaforge::avx
