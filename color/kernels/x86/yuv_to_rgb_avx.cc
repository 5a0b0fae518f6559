#include "color/kernels/x86/yuv_to_rgb_simd.h"

namespace Lumaforge::avx {

// The 128-bit body built with VEX encodings (three-operand forms, no register
// copies) is faster than its SSSE3 build.
void Install(YuvToRgbKernels* kernels) { kernels->i422ToBgraRow = x86::I422ToBgraRow<x86::Vec128>; }

}  // namespace Lumaforge::avx
