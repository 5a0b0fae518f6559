#include "color/kernels/x86/rgb_pack_simd.h"

namespace Lumaforge::avx {

// VEX builds of the 24-bit packers: faster inside whole conversions to and
// from 24-bit RGB than their SSSE3 builds.
void Install(RgbPackKernels* kernels) {
  kernels->rgb24ToBgraRow = x86::Rgb24ToBgraRow<x86::Vec128>;
  kernels->bgraToRgb24Row = x86::BgraToRgb24Row<x86::Vec128>;
}

}  // namespace Lumaforge::avx
