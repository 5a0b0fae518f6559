// Packed 4:2:2 rows (two pixels in four bytes: Y0, U, Y1, V in an order
// given by a Packed422Layout) to and from planar rows, and the rounding
// average of two rows used to halve chroma vertically.
//
// Widths are even pixel counts >= 2 (width / 2 chroma samples); the average
// takes any count >= 1. Layout positions are < 4. The plain routine defines
// the result for every layout; vector variants give the same bytes (most
// vectorise only the four pair layouts, a permutation of 0..3 with both
// lumas on one byte parity, y0 first, and hand other layouts to the plain
// routine). No kernel reads or writes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_PACKED422_H_
#define LUMAFORGE_COLOR_KERNELS_PACKED422_H_

#include <cstdint>

#include "framework/kernel_family.h"

#include "framework/formats.h"

namespace Lumaforge {

using Packed422ToPlanesRowKernel = void(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                                        int32_t width);
using PlanesToPacked422RowKernel = void(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                                        Packed422Layout layout, int32_t width);
// dst[i] = (a[i] + b[i] + 1) >> 1.
using AverageRowsKernel = void(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count);

struct Packed422Kernels {
  Packed422ToPlanesRowKernel* packed422ToPlanesRow;
  PlanesToPacked422RowKernel* planesToPacked422Row;
  AverageRowsKernel* averageRows;
};

// Plain routines, then the best variant the feature word allows.
void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures);

Packed422ToPlanesRowKernel Packed422ToPlanesRow_c;
PlanesToPacked422RowKernel PlanesToPacked422Row_c;
AverageRowsKernel AverageRows_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, Packed422Kernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, Packed422Kernels)
LUMAFORGE_KERNEL_LEVEL(avx, Packed422Kernels)
LUMAFORGE_KERNEL_LEVEL(avx2, Packed422Kernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_PACKED422_H_
