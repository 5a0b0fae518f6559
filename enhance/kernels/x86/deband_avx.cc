#include "enhance/kernels/x86/deband_simd.h"

namespace Lumaforge::avx {

void Install(DebandKernels* kernels) { kernels->plane = x86::DebandPlane<x86::Lanes8>; }

}  // namespace Lumaforge::avx
