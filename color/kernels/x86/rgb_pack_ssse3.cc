#include "color/kernels/x86/rgb_pack_simd.h"

namespace Lumaforge::ssse3 {

// Planes to BGRA needs no byte shuffle: the SSE2 build of its body stays.
void Install(RgbPackKernels* kernels) {
  kernels->shuffle4Row = x86::Shuffle4Row<x86::Vec128>;
  kernels->rgb24ToBgraRow = x86::Rgb24ToBgraRow<x86::Vec128>;
  kernels->bgraToRgb24Row = x86::BgraToRgb24Row<x86::Vec128>;
  kernels->bgraToPlanesRow = x86::BgraToPlanesRow<x86::Vec128>;
}

}  // namespace Lumaforge::ssse3
