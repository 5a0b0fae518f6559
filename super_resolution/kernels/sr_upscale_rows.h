// Pieces of the standard 2x upscaler shared by its plain and vector forms:
// the sharpness entry a quantiser gives, the blend with the previous frame,
// and one output of each pass. Header-only, so each level's file inlines them
// with its own flags.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_

#include <array>
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

// Where output i of a 1.5x row samples the source: the sample two left of
// which its six taps start, and its phase (0: a sixth right of a sample,
// 1: midway, 2: a sixth left of the next one).
struct Phase15 {
  int32_t first, phase;
};
inline Phase15 PhaseOf15(int32_t i) {
  const int32_t m = i / 3, q = i % 3;
  // Output i sits at source position (2i - 0.5) / 3.
  if (q == 0) return {2 * m - 1 - 2, 2};
  if (q == 1) return {2 * m - 2, 1};
  return {2 * m + 1 - 2, 0};
}

// The six 1.5x taps of a phase at a sharpness.
inline sr_taps::Taps6 Taps15(int32_t phase, int32_t sharpness) {
  if (phase == 1) return sr_taps::Blend(sr_taps::kSoftHalf, sr_taps::kSharpHalf, sharpness, 2);
  const sr_taps::Taps6 right = sr_taps::Blend(sr_taps::kSoftSixth, sr_taps::kSharpSixth, sharpness, 2);
  return phase == 0 ? right : sr_taps::Reversed(right);
}

// Sharpness of a 1.5x output. Sources reduced by 2/3 are blurred by the
// reduction itself, so the kernels go past the sharp end (sharpness above
// 256 extrapolates the blend). On the training photographs 400 beats cubic
// interpolation on every picture and is within 0.03 dB of the best mean;
// much more would let the first pass leave 16 bits. The quantiser scales it
// down as for 2x; `level` 1..3 (luma) all take the full amount, 4 (chroma)
// about half, as colour edges are softer to begin with. Both phases a sixth
// from a sample and the midway phase take the same sharpness.
inline int32_t Sharpness15(int32_t level, int32_t qp) {
  static constexpr int32_t kLevel[5] = {0, 400, 400, 400, 192};
  return kLevel[Clamp(level, 0, 4)] * sr_taps::SharpnessOfQp(qp) >> 8;
}

// The taps of a 1.5x output by phase and source position (x, y), for the
// standard kernel (steered by the quantiser and the strength) and the
// alternative one (four taps from a sharpened cubic, Keys a = -1, over the
// sample either side of the pair around the output: the middle four of the
// six-tap window).
class StandardTaps15 {
 public:
  // The taps of every phase and quantiser value, made once per plane.
  StandardTaps15(const SrQpMap& qp, int32_t strength) : qp_(qp) {
    for (int32_t phase = 0; phase < 3; ++phase) {
      for (int32_t q = 0; q < 256; ++q) taps_[phase][q] = Taps15(phase, Sharpness15(strength, q));
    }
  }
  const sr_taps::Taps6& operator()(int32_t phase, int32_t x, int32_t y) const { return taps_[phase][QpAt(qp_, x, y)]; }

 private:
  SrQpMap qp_;
  std::array<std::array<sr_taps::Taps6, 256>, 3> taps_;
};
struct AlternativeTaps15 {
  sr_taps::Taps6 operator()(int32_t phase, int32_t, int32_t) const {
    static constexpr sr_taps::Taps6 kTaps[3] = {{0, -7, 61, 12, -2, 0}, {0, -8, 40, 40, -8, 0}, {0, -2, 12, 61, -7, 0}};
    return kTaps[phase];
  }
};

// Output X of the first 1.5x pass over source row `row` (edges repeated).
template <typename TapsAt>
inline int16_t HorizontalOutput15(const uint8_t* row, int32_t width, int32_t X, int32_t y, const TapsAt& tapsAt) {
  const Phase15 at = PhaseOf15(X);
  const sr_taps::Taps6 taps = tapsAt(at.phase, Clamp(2 * (X / 3), 0, width - 1), y);
  int32_t sum = 0;
  for (int32_t a = 0; a < kSrStandardTaps; ++a) sum += taps[a] * row[Clamp(at.first + a, 0, width - 1)];
  return static_cast<int16_t>(sum);
}

// The taps of output (X, Y) of the second 1.5x pass.
template <typename TapsAt>
inline sr_taps::Taps6 VerticalTaps15(int32_t X, int32_t Y, int32_t width, int32_t height, const TapsAt& tapsAt) {
  return tapsAt(PhaseOf15(Y).phase, Clamp(2 * (X / 3), 0, width - 1), Clamp(2 * (Y / 3), 0, height - 1));
}

// The six first-pass rows (`rowLength` values each, edges repeated) that
// output row Y of the second 1.5x pass reads.
inline void FirstPassRows15(const int16_t* scratch, int32_t Y, int32_t rowLength, int32_t height,
                            const int16_t* rows[kSrStandardTaps]) {
  const int32_t first = PhaseOf15(Y).first;
  for (int32_t b = 0; b < kSrStandardTaps; ++b)
    rows[b] = scratch + static_cast<size_t>(Clamp(first + b, 0, height - 1)) * rowLength;
}

inline uint8_t VerticalOutput15(const int16_t* const rows[kSrStandardTaps], int32_t X, const sr_taps::Taps6& taps) {
  int32_t sum = 0;
  for (int32_t b = 0; b < kSrStandardTaps; ++b) sum += taps[b] * rows[b][X];
  return ToByte(sum);
}

// The two-pass 2x: cubic interpolation (Keys, a = -0.75) a quarter sample
// from a sample, as six-tap windows with zero ends, across then down; then
// `gain` / 16 of the detail the cubic adds over the linear blend of the two
// nearest first-pass rows, cored below `threshold` unless `last`.
inline constexpr int32_t kTwoPassLeft[kSrStandardTaps] = {0, -2, 17, 56, -7, 0};
inline constexpr int32_t kTwoPassRight[kSrStandardTaps] = {0, -7, 56, 17, -2, 0};

inline int16_t TwoPassAcross(const uint8_t* row, int32_t width, int32_t x, int32_t i) {
  const int32_t* taps = i ? kTwoPassRight : kTwoPassLeft;
  int32_t sum = 0;
  for (int32_t a = 0; a < kSrStandardTaps; ++a) sum += taps[a] * row[Clamp(x + a - 3 + i, 0, width - 1)];
  return static_cast<int16_t>(sum);
}

// Output X of row 2y + j from the first-pass rows of FirstPassRows.
inline uint8_t TwoPassDown(const int16_t* const rows[kSrStandardTaps], int32_t X, int32_t j, int32_t gain,
                           int32_t threshold, int32_t last) {
  const int32_t* taps = j ? kTwoPassRight : kTwoPassLeft;
  int32_t sum = 0;
  for (int32_t b = 0; b < kSrStandardTaps; ++b) sum += taps[b] * rows[b][X];
  const int32_t linear = 48 * rows[3 - j][X] + 16 * rows[j ? 3 : 2][X];
  int32_t detail = sum - linear;
  if (!last && detail < threshold * 64 && -detail < threshold * 64) detail = 0;
  return ToByte(linear + detail * gain / 16);
}

}  // namespace Lumaforge::sr_rows

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_ROWS_H_
