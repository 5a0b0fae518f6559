// Packed 4:2:2 rows (two pixels in four bytes: Y0, U, Y1, V in an order
// given by a Packed422Layout) to and from planar rows, and the rounding
// average of two rows used to halve chroma vertically.
//
// Widths are even pixel counts >= 2 (width / 2 chroma samples); the average
// takes any count >= 1. Vector variants finish the row with the plain
// routine and never touch bytes past the row.
#ifndef LUMAFORGE_COLOR_KERNELS_PACKED422_H_
#define LUMAFORGE_COLOR_KERNELS_PACKED422_H_

#include <cstdint>

#include "framework/formats.h"
#include "framework/simd_levels.h"

namespace Lumaforge {

using Packed422ToPlanesRowFn = void (*)(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                                        int32_t width);
using PlanesToPacked422RowFn = void (*)(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                                        Packed422Layout layout, int32_t width);
// dst[i] = (a[i] + b[i] + 1) >> 1.
using AverageRowsFn = void (*)(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count);

struct Packed422Kernels {
  Packed422ToPlanesRowFn packed422ToPlanesRow;
  PlanesToPacked422RowFn planesToPacked422Row;
  AverageRowsFn averageRows;
};

void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_PACKED422_KERNELS                                                                         \
  void Packed422ToPlanesRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout, \
                            int32_t width);                                                                 \
  void PlanesToPacked422Row(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,             \
                            Packed422Layout layout, int32_t width);                                         \
  void AverageRows(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count);

void Packed422ToPlanesRow_c(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                            int32_t width);
void PlanesToPacked422Row_c(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst, Packed422Layout layout,
                            int32_t width);
void AverageRows_c(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count);
LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_PACKED422_KERNELS)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_PACKED422_H_
