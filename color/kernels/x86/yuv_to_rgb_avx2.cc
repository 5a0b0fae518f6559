#include "color/kernels/x86/yuv_to_rgb_simd.h"

namespace Lumaforge::avx2 {

void Install(YuvToRgbKernels* kernels) { kernels->i422ToBgraRow = x86::I422ToBgraRow<x86::Vec256>; }

}  // namespace Lumaforge::avx2
