// YUV to RGB, ITU-R BT.601 limited range, 6 fractional bits:
//   R = clamp(((y - 16) * 74 + (v - 128) * 102) >> 6)
//   G = clamp(((y - 16) * 74 - (u - 128) * 25 - (v - 128) * 52) >> 6)
//   B = clamp(((y - 16) * 74 + (u - 128) * 129) >> 6)
// with an arithmetic shift (no rounding term) and clamping to 0..255.
//
// The kernel writes 32-bit pixels in B, G, R, A byte order with A = 255;
// converters reorder them into the requested layout afterwards.
//
// Widths are even pixel counts >= 2; u and v hold width / 2 samples, each
// serving two neighbouring pixels. No kernel reads or writes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_YUV_TO_RGB_H_
#define LUMAFORGE_COLOR_KERNELS_YUV_TO_RGB_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

using I422ToBgraRowKernel = void(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width);

struct YuvToRgbKernels {
  I422ToBgraRowKernel* i422ToBgraRow;
};

// Plain routine, then the best variant the feature word allows.
void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures);

I422ToBgraRowKernel I422ToBgraRow_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, YuvToRgbKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, YuvToRgbKernels)
LUMAFORGE_KERNEL_LEVEL(avx, YuvToRgbKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, YuvToRgbKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_YUV_TO_RGB_H_
