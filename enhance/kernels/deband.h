// The deband kernel: one plane, a horizontal then a vertical four-tap
// average at size-scaled distances, taps too far from the centre replaced
// by it, and a pseudo-random dither before the result is rounded back to
// 8 bits.
//
// Horizontally each source row becomes a row of four-sample sums (0..1020)
// in a ring of 2^spanV rows; vertically four ring rows are summed, the
// dither added and the total shifted down by 4. Columns within hx = 2^spanH
// / 2 of either edge and rows within hv = 2^spanV / 2 of the top or bottom
// get only the other direction's filter. The dither comes from a table of
// 2080 entries built from the seed with a CRC-32C generator whose state
// then moves on once per 32 columns. Source and destination may be the
// same plane: a row is written only after every row it reads has entered
// the ring.
#ifndef LUMAFORGE_ENHANCE_KERNELS_DEBAND_H_
#define LUMAFORGE_ENHANCE_KERNELS_DEBAND_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

inline constexpr int32_t kDebandDitherEntries = 2080;

struct DebandJob {
  const uint8_t* src;
  ptrdiff_t srcStride;
  uint8_t* dst;
  ptrdiff_t dstStride;
  int32_t width, height;
  // Rows firstRow .. rowLimit - 1 of the plane exist around `height` rows
  // that start at firstRow.
  int32_t firstRow, rowLimit;
  int32_t strength;      // largest accepted distance of a tap from the centre, in levels
  int32_t spanH, spanV;  // log2 of the horizontal and vertical spans, held to 3..6
  int32_t dither;
  uint32_t seed;
  // Work memory: 2^spanV rows of width 16-bit sums, and the dither table.
  uint16_t* ring;
  int16_t* ditherTable;
};

using DebandPlaneKernel = void(const DebandJob& job);

struct DebandKernels {
  DebandPlaneKernel* plane;
};

DebandPlaneKernel DebandPlane_c;

LUMAFORGE_KERNEL_LEVEL(sse2, DebandKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, DebandKernels)
LUMAFORGE_KERNEL_LEVEL(sse42, DebandKernels)
LUMAFORGE_KERNEL_LEVEL(avx, DebandKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, DebandKernels)

void InitDebandKernels(DebandKernels* kernels, uint32_t cpuFeatures);

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_KERNELS_DEBAND_H_
