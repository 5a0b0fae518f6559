#include "color/kernels/x86/rgb_to_yuv_simd.h"

namespace Lumaforge::ssse3 {

void Install(RgbToYuvKernels* kernels) {
  kernels->bgraToYRow = x86::BgraToYRow<x86::Vec128>;
  kernels->bgraToUV420Row = x86::BgraToUV420Row<x86::Vec128>;
  kernels->bgraToUV422Row = x86::BgraToUV422Row<x86::Vec128>;
}

}  // namespace Lumaforge::ssse3
