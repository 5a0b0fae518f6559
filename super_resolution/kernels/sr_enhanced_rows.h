// What every variant of the enhanced 2x kernel shares: the plain formula for
// one pixel, the 3x3 neighbourhood with the edge rows repeated, and the
// flatness test of a 2x2 source block. Header-only so each level's file
// inlines it with its own flags.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_ROWS_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "super_resolution/sr_classes.h"

namespace Lumaforge::sr_enhanced {

// The three source rows around row y, edge rows repeated.
struct RowTriple {
  const uint8_t* above;
  const uint8_t* row;
  const uint8_t* below;
};

inline RowTriple RowsAround(const uint8_t* src, int32_t stride, int32_t height, int32_t y) {
  const int32_t up = y > 0 ? y - 1 : 0, down = y + 1 < height ? y + 1 : height - 1;
  return {src + static_cast<ptrdiff_t>(up) * stride, src + static_cast<ptrdiff_t>(y) * stride,
          src + static_cast<ptrdiff_t>(down) * stride};
}

inline int32_t ClampColumn(int32_t x, int32_t width) { return x < 0 ? 0 : x < width ? x : width - 1; }

// Writes the plain 2x2 block of pixel x of `rows` at out0 (row 2y) and out1 (row 2y + 1).
inline void PlainPixel(const RowTriple& rows, int32_t x, int32_t width, uint8_t* out0, uint8_t* out1) {
  uint8_t block[4];
  SrPlainBlock(rows.row[x], rows.above[x], rows.below[x], rows.row[ClampColumn(x - 1, width)],
               rows.row[ClampColumn(x + 1, width)], block);
  out0[2 * x] = block[0];
  out0[2 * x + 1] = block[1];
  out1[2 * x] = block[2];
  out1[2 * x + 1] = block[3];
}

// The neighbourhood p0..p8 of pixel x (1 <= x <= width - 2).
inline void Neighbourhood(const RowTriple& rows, int32_t x, uint8_t p[kSrTaps]) {
  p[0] = rows.above[x - 1], p[1] = rows.above[x], p[2] = rows.above[x + 1];
  p[3] = rows.row[x - 1], p[4] = rows.row[x], p[5] = rows.row[x + 1];
  p[6] = rows.below[x - 1], p[7] = rows.below[x], p[8] = rows.below[x + 1];
}

// max - min of the 3x3 neighbourhood of pixel x, columns clamped.
inline int32_t RangeAt(const RowTriple& rows, int32_t x, int32_t width) {
  const int32_t l = ClampColumn(x - 1, width), r = ClampColumn(x + 1, width);
  int32_t lo = 255, hi = 0;
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
    for (const int32_t c : {l, x, r}) {
      lo = row[c] < lo ? row[c] : lo;
      hi = row[c] > hi ? row[c] : hi;
    }
  }
  return hi - lo;
}

// Whether the 2x2 block at columns x, x + 1 of rows `top` and `bottom`
// (either column or row may be the last one repeated) is flat.
inline bool FlatBlock(const RowTriple& top, const RowTriple& bottom, int32_t x, int32_t width) {
  const int32_t x1 = ClampColumn(x + 1, width);
  return RangeAt(top, x, width) < kSrFlatRange && RangeAt(top, x1, width) < kSrFlatRange &&
         RangeAt(bottom, x, width) < kSrFlatRange && RangeAt(bottom, x1, width) < kSrFlatRange;
}

// The class of pixel x when it takes a trained filter, with its
// neighbourhood in `p`; -1 when it takes the plain formula: the block is
// flat, the pixel is in the first or last column, or the file has no filter
// for its class.
inline int32_t TrainedClass(const RowTriple& rows, int32_t x, int32_t width, bool flat, const uint8_t* valid,
                            uint8_t p[kSrTaps]) {
  if (flat || x == 0 || x == width - 1) return -1;
  Neighbourhood(rows, x, p);
  const int32_t cls = SrClass(p);
  return valid[cls] ? cls : -1;
}

}  // namespace Lumaforge::sr_enhanced

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_ROWS_H_
