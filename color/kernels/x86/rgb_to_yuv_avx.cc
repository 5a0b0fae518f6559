#include "color/kernels/x86/rgb_to_yuv_simd.h"

namespace Lumaforge::avx {

// The VEX build of the 128-bit luma body is faster (three-operand forms and
// folded unaligned loads); the chroma bodies gain nothing from it, so their
// SSSE3 builds stay.
void Install(RgbToYuvKernels* kernels) { kernels->bgraToYRow = x86::BgraToYRow<x86::Vec128>; }

}  // namespace Lumaforge::avx
