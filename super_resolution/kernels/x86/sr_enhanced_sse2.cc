#include "super_resolution/kernels/x86/sr_enhanced_simd.h"

namespace Lumaforge::sse2 {

void Install(SrEnhancedKernels* kernels) { kernels->plane = x86::SrEnhancedPlane<x86::Doubles128, false>; }

}  // namespace Lumaforge::sse2
