#include "scaling/kernels/x86/box_scale_simd.h"

namespace Lumaforge::ssse3 {

// Byte shuffles for the box steps and 3-byte pixels. The plane bilinears
// stay with SSE2: built here they measured no faster (luma slower).
void Install(BoxScaleKernels* kernels) {
  kernels->halfAligned = x86::BoxScale<x86::HalfByShuffle>;
  kernels->halfUnaligned = x86::BoxScale<x86::HalfByShuffle>;
  kernels->third = x86::BoxScale<x86::ThirdByShuffle>;
  kernels->quarter = x86::BoxScale<x86::QuarterByShuffle>;
  kernels->packedHalf = x86::PackedHalf<x86::Half24ByShuffle<x86::Vec128>, x86::Half32<x86::Vec128>>;
  kernels->packedGeneral = x86::PackedBilinear<x86::Pack3ByShuffle>;
}

}  // namespace Lumaforge::ssse3
