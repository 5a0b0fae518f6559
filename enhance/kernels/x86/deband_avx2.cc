#include "enhance/kernels/x86/deband_simd.h"

namespace Lumaforge::avx2 {

void Install(DebandKernels* kernels) { kernels->plane = x86::DebandPlane<x86::Lanes16>; }

}  // namespace Lumaforge::avx2
