// Banding material and measures, for the deband benchmark and tests: a
// smooth picture quantised to fewer bits shows contours; a debanded picture
// should have fewer of them, sit closer to the smooth original where it is
// smooth, and keep its real edges.
#ifndef LUMAFORGE_BENCH_BANDING_H_
#define LUMAFORGE_BENCH_BANDING_H_

#include <cstdint>

#include "bench/sr_upscaler.h"

namespace Lumaforge::bench {

// A smooth picture of diagonal and radial ramps, with a dark frame of hard
// edges (a box outline 4 pixels wide) in its middle.
LumaPicture SmoothGradient(int32_t width, int32_t height);

// `picture` with each sample cut to its top `bits` bits (the middle of
// its step).
LumaPicture Quantised(const LumaPicture& picture, int32_t bits);

// Where `original` is smooth: the square of `radius` around the pixel
// spans at most `range` levels (1 = smooth, 0 = not), one byte per pixel.
LumaPicture SmoothMask(const LumaPicture& original, int32_t radius, int32_t range);

struct BandingScore {
  // The staircase of the contours: the mean squared second difference
  // (across 4 pixels, horizontally plus vertically) of the picture's 5x5
  // box average over the smooth pixels, in levels squared. The average
  // takes out the fine grain a dither leaves; a smooth picture's own
  // curvature gives little.
  double staircase;
  // Mean absolute difference from the original over the smooth pixels.
  double smoothError;
};
BandingScore ScoreBanding(const LumaPicture& picture, const LumaPicture& original, const LumaPicture& smooth);

// Mean absolute horizontal plus vertical difference over the pixels where
// `original` changes by more than `threshold` to its right or below: how
// sharp its edges still are in `picture`.
double EdgeContrast(const LumaPicture& picture, const LumaPicture& original, int32_t threshold);

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_BANDING_H_
