#include "enhance/kernels/x86/deband_simd.h"

namespace Lumaforge::ssse3 {

void Install(DebandKernels* kernels) { kernels->plane = x86::DebandPlane<x86::Lanes8>; }

}  // namespace Lumaforge::ssse3
