#include "scaling/kernels/x86/box_scale_simd.h"

namespace Lumaforge::sse2 {

void Install(BoxScaleKernels* kernels) {
  kernels->generalLuma = x86::BilinearPlane<x86::Vec128, false>;
  kernels->generalChroma = x86::BilinearPlane<x86::Vec128, true>;
  kernels->packedHalf = x86::PackedHalf<x86::Half24ByMasks, x86::Half32<x86::Vec128>>;
  kernels->packedGeneral = x86::PackedBilinear<x86::Pack3ByMasks>;
}

}  // namespace Lumaforge::sse2
