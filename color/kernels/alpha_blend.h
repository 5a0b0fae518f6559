// Alpha blending rows in place: out = (in * (256 - a) + out * a) >> 8, with
// a from a one-byte-per-pixel map. The sum never exceeds 255 * 256, so
// 16-bit unsigned lanes hold it exactly.
//
// Counts are pixels (samples for the plane kernels); any count >= 1.
// Vector variants finish the row with the plain routine and never touch
// bytes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_
#define LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_

#include <cstdint>

#include "framework/simd_levels.h"

namespace Lumaforge {

// 32-bit pixels: one alpha per pixel for all four bytes, alpha byte included.
using BlendRgb32RowFn = void (*)(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);
// One alpha per sample.
using BlendPlaneRowFn = void (*)(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);
// Half-resolution chroma: sample c takes alpha[2c] (the map row of the
// block's top line).
using BlendChromaRowFn = void (*)(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);

struct AlphaBlendKernels {
  BlendRgb32RowFn rgb32Row;
  BlendPlaneRowFn planeRow;
  BlendChromaRowFn chromaRow;
};

void InitAlphaBlendKernels(AlphaBlendKernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_ALPHA_BLEND_KERNELS                                                       \
  void BlendRgb32Row(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width); \
  void BlendPlaneRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width); \
  void BlendChromaRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);

void BlendRgb32Row_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);
void BlendPlaneRow_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);
void BlendChromaRow_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width);
LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_ALPHA_BLEND_KERNELS)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_ALPHA_BLEND_H_
