// Byte reordering between the RGB layouts and 32-bit B, G, R, A rows, the
// working form of the converters. The same 4-byte shuffle reorders packed
// 4:2:2 pixel pairs.
//
// A pattern lists, for each output byte of a pixel, which input byte of the
// same pixel it takes: index[k] < 4 for a 4-byte input pixel, < 3 for a
// 3-byte one. Vector variants hand any other pattern to the plain routine.
// Counts are pixels, any count >= 1. No kernel reads or writes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_
#define LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// Output byte k of a pixel is input byte index[k] of that pixel.
struct BytePattern {
  uint8_t index[4];
};

// dst[4i + k] = src[4i + pattern.index[k]], k < 4.
using Shuffle4RowKernel = void(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width);
// bgra[4i + k] = src[3i + pattern.index[k]] for k < 3, bgra[4i + 3] = 255.
using Rgb24ToBgraRowKernel = void(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width);
// dst[3i + k] = bgra[4i + pattern.index[k]], k < 3 (index[3] is not used).
using BgraToRgb24RowKernel = void(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width);
// bgra[4i..4i+3] = b[i], g[i], r[i], 255.
using PlanesToBgraRowKernel = void(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width);
// r[i], g[i], b[i] = bgra[4i + 2], bgra[4i + 1], bgra[4i].
using BgraToPlanesRowKernel = void(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width);

struct RgbPackKernels {
  Shuffle4RowKernel* shuffle4Row;
  Rgb24ToBgraRowKernel* rgb24ToBgraRow;
  BgraToRgb24RowKernel* bgraToRgb24Row;
  PlanesToBgraRowKernel* planesToBgraRow;
  BgraToPlanesRowKernel* bgraToPlanesRow;
};

// Plain routines, then the best variant the feature word allows.
void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures);

Shuffle4RowKernel Shuffle4Row_c;
Rgb24ToBgraRowKernel Rgb24ToBgraRow_c;
BgraToRgb24RowKernel BgraToRgb24Row_c;
PlanesToBgraRowKernel PlanesToBgraRow_c;
BgraToPlanesRowKernel BgraToPlanesRow_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, RgbPackKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, RgbPackKernels)
LUMAFORGE_KERNEL_LEVEL(avx, RgbPackKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, RgbPackKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_
