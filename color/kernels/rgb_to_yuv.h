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
// width / 2 samples. No kernel reads or writes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_
#define LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

using BgraToYRowKernel = void(const uint8_t* bgra, uint8_t* y, int32_t width);
// bgra0 and bgra1 are the two rows of the block.
using BgraToUV420RowKernel = void(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width);
using BgraToUV422RowKernel = void(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width);

struct RgbToYuvKernels {
  BgraToYRowKernel* bgraToYRow;
  BgraToUV420RowKernel* bgraToUV420Row;
  BgraToUV422RowKernel* bgraToUV422Row;
};

// Plain routines, then the best variant the feature word allows.
void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures);

BgraToYRowKernel BgraToYRow_c;
BgraToUV420RowKernel BgraToUV420Row_c;
BgraToUV422RowKernel BgraToUV422Row_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, RgbToYuvKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, RgbToYuvKernels)
LUMAFORGE_KERNEL_LEVEL(avx, RgbToYuvKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, RgbToYuvKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_RGB_TO_YUV_H_
