// Alpha blending rows in place: out = (in * (256 - a) + out * a) >> 8, with
// a from a one-byte-per-pixel map. The sum never exceeds 255 * 256, so
// 16-bit unsigned lanes hold it exactly.
//
// Counts are pixels (samples for the plane kernels); any count >= 1.
// Vector variants never touch bytes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_
#define LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

using BlendRowKernel = void(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);

struct AlphaBlendKernels {
  // 32-bit pixels: one alpha per pixel for all four bytes, alpha byte included.
  BlendRowKernel* rgb32Row;
  // One alpha per sample.
  BlendRowKernel* planeRow;
  // Half-resolution chroma: sample c takes alpha[2c] (the map row of the
  // block's top line).
  BlendRowKernel* chromaRow;
};

void InitAlphaBlendKernels(AlphaBlendKernels* kernels, uint32_t cpuFeatures);

BlendRowKernel BlendRgb32Row_c, BlendPlaneRow_c, BlendChromaRow_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, AlphaBlendKernels)
LUMAFORGE_KERNEL_LEVEL(avx, AlphaBlendKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, AlphaBlendKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_
