#include "super_resolution/kernels/x86/sr_enhanced_simd.h"

namespace Lumaforge::avx2 {

void Install(SrEnhancedKernels* kernels) { kernels->plane = x86::SrEnhancedPlane<x86::Doubles256, true>; }

}  // namespace Lumaforge::avx2
