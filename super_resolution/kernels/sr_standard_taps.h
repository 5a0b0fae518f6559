// The standard upscalers' interpolation taps. Each phase has a soft kernel
// (linear interpolation) and a sharp one (a three-lobe windowed sinc with a
// little extra gain on the first negative lobe): area-averaged cameras and
// encoders both blur the source, and giving back some of that blur is what
// lets a six-tap kernel beat bicubic interpolation. The quantiser blends
// between the two: a coarse quantiser means blocking and ringing that
// sharpening would amplify, so it moves toward the soft kernel.
//
// Taps sum to 64. Kernels for a phase just right of a source sample list
// the samples from two left of it to three right; the mirrored phase uses
// the taps reversed.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_STANDARD_TAPS_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_STANDARD_TAPS_H_

#include <array>
#include <cstdint>

#include "super_resolution/kernels/sr_upscale.h"

namespace Lumaforge::sr_taps {

using Taps6 = std::array<int32_t, kSrStandardTaps>;

// 2x, output a quarter sample right of the source sample.
inline constexpr Taps6 kSoftQuarter = {0, 0, 48, 16, 0, 0};
inline constexpr Taps6 kSharpQuarter = {3, -12, 60, 19, -7, 1};
// 1.5x: of every three outputs, two lie a sixth of a sample from a source
// sample (one each side) and one midway between two. The sixth phases are
// the windowed sinc at distances 1/6, 5/6, 7/6 ...: mostly the near sample
// (61/64) with small lobes; the midway phase splits evenly and carries the
// largest negative lobes, since an output between two samples is where
// interpolation loses most detail.
inline constexpr Taps6 kSoftSixth = {0, 0, 53, 11, 0, 0};
inline constexpr Taps6 kSharpSixth = {2, -7, 61, 11, -3, 0};
inline constexpr Taps6 kSoftHalf = {0, 0, 32, 32, 0, 0};
inline constexpr Taps6 kSharpHalf = {2, -9, 39, 39, -9, 2};

constexpr Taps6 Reversed(const Taps6& t) { return {t[5], t[4], t[3], t[2], t[1], t[0]}; }

// soft + (sharp - soft) x sharpness / 256 (sharpness 0..256), rounded, with
// the rounding error put on tap `centre` so the sum stays 64.
constexpr Taps6 Blend(const Taps6& soft, const Taps6& sharp, int32_t sharpness, int32_t centre) {
  Taps6 out{};
  int32_t sum = 0;
  for (int32_t a = 0; a < kSrStandardTaps; ++a) {
    out[a] = (soft[a] * (256 - sharpness) + sharp[a] * sharpness + 128) >> 8;
    sum += out[a];
  }
  out[centre] += 64 - sum;
  return out;
}

// Sharpness 0..256 a quantiser allows: full up to 22, none from 46.
constexpr int32_t SharpnessOfQp(int32_t qp) {
  const int32_t s = (46 - qp) * 256 / 24;
  return s < 0 ? 0 : s > 256 ? 256 : s;
}

// The standard 2x static table: per sharpness entry and output position
// (0 top-left, 1 top-right, 2 bottom-left, 3 bottom-right), twelve taps:
// h0..h5 for the position's column, v0..v5 for its row.
using StaticEntry = std::array<std::array<int8_t, 12>, 4>;

constexpr std::array<StaticEntry, kSrSharpnessEntries> MakeStandardTable() {
  std::array<StaticEntry, kSrSharpnessEntries> table{};
  for (int32_t e = 0; e < kSrSharpnessEntries; ++e) {
    const Taps6 right = Blend(kSoftQuarter, kSharpQuarter, e, 2), left = Reversed(right);
    for (int32_t n = 0; n < 4; ++n) {
      const Taps6& h = n & 1 ? right : left;
      const Taps6& v = n & 2 ? right : left;
      for (int32_t a = 0; a < kSrStandardTaps; ++a) {
        table[e][n][a] = static_cast<int8_t>(h[a]);
        table[e][n][kSrStandardTaps + a] = static_cast<int8_t>(v[a]);
      }
    }
  }
  return table;
}

inline constexpr std::array<StaticEntry, kSrSharpnessEntries> kStandardTable = MakeStandardTable();

}  // namespace Lumaforge::sr_taps

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_STANDARD_TAPS_H_
