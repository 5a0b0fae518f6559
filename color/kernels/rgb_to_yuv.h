// RGB to YUV, ITU-R BT.601 limited range, 8 fractional bits, from 32-bit
// pixels in B, G, R, A byte order (alpha ignored):
//   Y = ((66 R + 129 G + 25 B + 128) >> 8) + 16
// 4:2:0 chroma from the sums over a 2x2 block (two rows, two columns):
//   U = ((112 sB - 74 sG - 38 sR + 512) >> 10) + 128
//   V = ((112 sR - 94 sG - 18 sB + 512) >> 10) + 128
// 4:2:2 chroma from the sums over a horizontal pair:
//   U = ((112 sB - 74 sG - 38 sR + 256) >> 9) + 128
//   V = ((112 sR - 94 sG - 18 sB + 256) >> 9) + 128
// No clamping: every result lies in 16..240.
//
// Luma takes any width >= 1; chroma takes even widths >= 2 and writes
// width / 2 samples. Vector variants finish the row with narrower vector
// forms and the plain routine, and never touch bytes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_
#define LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_

#include <cstdint>

#include "framework/simd_levels.h"

namespace Lumaforge {

using BgraToYRowFn = void (*)(const uint8_t* bgra, uint8_t* y, int32_t width);
using BgraToUV420RowFn = void (*)(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width);
using BgraToUV422RowFn = void (*)(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width);

struct RgbToYuvKernels {
  BgraToYRowFn bgraToYRow;
  BgraToUV420RowFn bgraToUV420Row;  // bgra0 and bgra1 are the two rows of the block
  BgraToUV422RowFn bgraToUV422Row;
};

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_RGB_TO_YUV_KERNELS                                                                      \
  void BgraToYRow(const uint8_t* bgra, uint8_t* y, int32_t width);                                        \
  void BgraToUV420Row(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width); \
  void BgraToUV422Row(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width);

void BgraToYRow_c(const uint8_t* bgra, uint8_t* y, int32_t width);
void BgraToUV420Row_c(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width);
void BgraToUV422Row_c(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width);
LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_RGB_TO_YUV_KERNELS)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_
