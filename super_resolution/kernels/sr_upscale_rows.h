// Pieces of the standard 2x upscaler shared by its plain and vector forms:
// the sharpness entry a quantiser gives, the blend with the previous frame,
// and one output of each pass. Header-only, so each level's file inlines them
// with its own flags.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "super_resolution/kernels/sr_standard_taps.h"
#include "super_resolution/kernels/sr_upscale.h"

namespace Lumaforge::sr_rows {

inline int32_t Clamp(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : v > hi ? hi : v; }
inline uint8_t ToByte(int32_t sum) { return static_cast<uint8_t>(Clamp((sum + 2048) >> 12, 0, 255)); }

inline int32_t QpAt(const SrQpMap& qp, int32_t x, int32_t y) {
  return qp.qp[static_cast<ptrdiff_t>(y >> qp.shift) * qp.stride + (x >> qp.shift)];
}

// The table entry of source position (x, y).
inline int32_t EntryAt(const SrQpMap& qp, int32_t x, int32_t y, int32_t detailDivisor) {
  return sr_taps::SharpnessOfQp(QpAt(qp, x, y)) / detailDivisor;
}

// Codec flicker of a level or two in still areas is averaged with the last
// frame before sharpening could amplify it; moving areas differ more and
// keep the current frame.
inline uint8_t Blended(int32_t c, int32_t p) {
  return static_cast<uint8_t>(c - p <= 2 && p - c <= 2 ? (c + p + 1) >> 1 : c);
}

// Horizontal output 2x + i of a blended row.
inline int16_t HorizontalOutput(const uint8_t* row, int32_t width, int32_t x, int32_t i, const int8_t tableRow[16]) {
  int32_t taps[kSrStandardTaps];
  SrStandardTaps(tableRow, 0, taps);
  int32_t sum = 0;
  for (int32_t a = 0; a < kSrStandardTaps; ++a) sum += taps[a] * row[Clamp(x + a - 3 + i, 0, width - 1)];
  return static_cast<int16_t>(sum);
}

// The six first-pass rows (2 width values each, edges repeated) that output
// row 2y + j reads.
inline void FirstPassRows(const int16_t* scratch, int32_t y, int32_t j, int32_t width, int32_t height,
                          const int16_t* rows[kSrStandardTaps]) {
  for (int32_t b = 0; b < kSrStandardTaps; ++b)
    rows[b] = scratch + static_cast<size_t>(Clamp(y + b - 3 + j, 0, height - 1)) * 2 * width;
}

// Vertical output at column X of the rows `rows[0..5]` of the first pass.
inline uint8_t VerticalOutput(const int16_t* const rows[kSrStandardTaps], int32_t X, const int8_t tableRow[16]) {
  int32_t taps[kSrStandardTaps];
  SrStandardTaps(tableRow, 1, taps);
  int32_t sum = 0;
  for (int32_t b = 0; b < kSrStandardTaps; ++b) sum += taps[b] * rows[b][X];
  return ToByte(sum);
}

}  // namespace Lumaforge::sr_rows

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_
