#include "color/kernels/x86/rgb_pack_simd.h"

namespace Lumaforge::avx2 {

// The 4-byte shuffle is bound by memory at either width, so its 128-bit form
// stays.
void Install(RgbPackKernels* kernels) {
  kernels->rgb24ToBgraRow = x86::Rgb24ToBgraRow<x86::Vec256>;
  kernels->bgraToRgb24Row = x86::BgraToRgb24Row<x86::Vec256>;
  kernels->planesToBgraRow = x86::PlanesToBgraRow<x86::Vec256>;
  kernels->bgraToPlanesRow = x86::BgraToPlanesRow<x86::Vec256>;
}

}  // namespace Lumaforge::avx2
