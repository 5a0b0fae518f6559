// Byte reordering between the RGB layouts and 32-bit B, G, R, A rows, the
// working form of the converters. The same 4-byte shuffle reorders packed
// 4:2:2 pixel pairs.
//
// A pattern lists, for each output byte of a pixel, which input byte of the
// same pixel it takes. Counts are pixels (any count >= 1). Vector variants
// finish the row with the plain routine and never touch bytes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_
#define LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_

#include <cstdint>

#include "framework/simd_levels.h"

namespace Lumaforge {

// Output byte k of a pixel is input byte index[k] of that pixel.
struct BytePattern {
  uint8_t index[4];
};

// dst[4i + k] = src[4i + pattern.index[k]], k < 4.
using Shuffle4RowFn = void (*)(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width);
// bgra[4i + k] = src[3i + pattern.index[k]] for k < 3, bgra[4i + 3] = 255.
using Rgb24ToBgraRowFn = void (*)(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width);
// dst[3i + k] = bgra[4i + pattern.index[k]], k < 3.
using BgraToRgb24RowFn = void (*)(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width);
// bgra[4i..4i+3] = b[i], g[i], r[i], 255.
using PlanesToBgraRowFn = void (*)(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width);
// r[i], g[i], b[i] = bgra[4i + 2], bgra[4i + 1], bgra[4i].
using BgraToPlanesRowFn = void (*)(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width);

struct RgbPackKernels {
  Shuffle4RowFn shuffle4Row;
  Rgb24ToBgraRowFn rgb24ToBgraRow;
  BgraToRgb24RowFn bgraToRgb24Row;
  PlanesToBgraRowFn planesToBgraRow;
  BgraToPlanesRowFn bgraToPlanesRow;
};

void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_RGB_PACK_KERNELS                                                                          \
  void Shuffle4Row(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width);                   \
  void Rgb24ToBgraRow(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width);               \
  void BgraToRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width);               \
  void PlanesToBgraRow(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width); \
  void BgraToPlanesRow(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width);

void Shuffle4Row_c(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width);
void Rgb24ToBgraRow_c(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width);
void BgraToRgb24Row_c(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width);
void PlanesToBgraRow_c(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width);
void BgraToPlanesRow_c(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width);
LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_RGB_PACK_KERNELS)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_RGB_PACK_H_
