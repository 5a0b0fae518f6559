// Pixel classes of the enhanced 2x upscaler. A source pixel's 3x3
// neighbourhood p0..p8 (raster order: top-left .. bottom-right) is reduced
// to a binary pattern (which pixels lie above its mid-range) and a variance
// level; neighbourhoods whose range is small form one flat class. Each class
// has its own trained 3x3 -> 2x2 filter. Header-only: the filter's kernels,
// the tests and the training tool classify pixels the same way.
#ifndef LUMAFORGE_SUPER_RESOLUTION_SR_CLASSES_H_
#define LUMAFORGE_SUPER_RESOLUTION_SR_CLASSES_H_

#include <cstdint>

namespace Lumaforge {

inline constexpr int32_t kSrPatterns = 512;
inline constexpr int32_t kSrLevels = 16;
inline constexpr int32_t kSrFlatClass = kSrPatterns * kSrLevels;  // 8192
inline constexpr int32_t kSrClasses = kSrFlatClass + 1;
// Output positions of a source pixel: (2x, 2y), (2x+1, 2y), (2x, 2y+1), (2x+1, 2y+1).
inline constexpr int32_t kSrPositions = 4;
inline constexpr int32_t kSrTaps = 9;
// Doubles per class and position in the coefficient table: nine weights and
// one that is never read.
inline constexpr int32_t kSrWeightsPerPosition = 10;
// Neighbourhoods whose max - min stays below this are flat.
inline constexpr int32_t kSrFlatRange = 16;

// The last variance index of each level: finer steps for the low variances
// most pixels have.
inline constexpr uint8_t kSrLastIndexOfLevel[kSrLevels] = {1,  2,  3,  4,  6,   8,   10,  15,
                                                           25, 35, 50, 75, 100, 150, 200, 255};

// The variance level (0..15) of a variance index 0..255.
inline int32_t SrVarianceLevel(int32_t index) {
  int32_t level = 0;
  while (index > kSrLastIndexOfLevel[level]) ++level;
  return level;
}

// The variance index of a neighbourhood from the sum and the sum of squares
// of its nine pixels: the population variance scaled so that the largest
// possible one (about 16244) maps to 255.
inline int32_t SrVarianceIndex(int32_t sum, int32_t sumOfSquares) {
  const double mean = sum / 9.0;
  const double variance = sumOfSquares / 9.0 - mean * mean;
  const double scaled = variance * 255 / 16244;
  // Truncation toward zero; rounding can leave a flat variance a hair below 0.
  const auto index = static_cast<int32_t>(scaled > 0 ? scaled : 0);
  return index < 255 ? index : 255;
}

// The same level in integers, for vector code. With n = 9 sumOfSquares -
// sum^2 (81 times the variance, exact and never negative), index >= i + 1
// exactly when n * 255 >= (i + 1) * 81 * 16244. The double formula lands on
// the same side of every level boundary: n * 255 never equals a boundary
// (85 would have to divide i + 1, and no i + 1 here is a multiple of 85), so
// the two sides are at least 1 / 1315764 apart in index units, far beyond
// the doubles' rounding. n * 255 stays below 2^31.
inline constexpr int32_t kSrLevelStep = 81 * 16244;
inline int32_t SrLevelBoundary(int32_t level) { return (kSrLastIndexOfLevel[level] + 1) * kSrLevelStep; }

inline int32_t SrVarianceLevelOfMoments(int32_t sum, int32_t sumOfSquares) {
  const int32_t scaled = (9 * sumOfSquares - sum * sum) * 255;
  int32_t level = 0;
  while (level < kSrLevels - 1 && scaled >= SrLevelBoundary(level)) ++level;
  return level;
}

// The class (0..8192) of neighbourhood p[0..8].
inline int32_t SrClass(const uint8_t p[kSrTaps]) {
  int32_t lo = p[0], hi = p[0], sum = 0, sumOfSquares = 0;
  for (int32_t k = 0; k < kSrTaps; ++k) {
    lo = p[k] < lo ? p[k] : lo;
    hi = p[k] > hi ? p[k] : hi;
    sum += p[k];
    sumOfSquares += p[k] * p[k];
  }
  if (hi - lo < kSrFlatRange) return kSrFlatClass;
  const int32_t threshold = (lo + hi) >> 1;
  int32_t pattern = 0;
  for (int32_t k = 0; k < kSrTaps; ++k) pattern |= (p[k] > threshold) << k;
  return pattern * kSrLevels + SrVarianceLevel(SrVarianceIndex(sum, sumOfSquares));
}

// The plain 2x formula of one source pixel C with its four neighbours:
// each output leans toward the neighbours on its own side.
inline void SrPlainBlock(int32_t c, int32_t top, int32_t bottom, int32_t left, int32_t right, uint8_t out[4]) {
  out[0] = static_cast<uint8_t>((2 * c + top + left + 2) >> 2);
  out[1] = static_cast<uint8_t>((2 * c + top + right + 2) >> 2);
  out[2] = static_cast<uint8_t>((2 * c + bottom + left + 2) >> 2);
  out[3] = static_cast<uint8_t>((2 * c + bottom + right + 2) >> 2);
}

// A trained filter's output: the weighted sum in double, k = 0..8 in order,
// held to 0..255 (NaN counts as 0) and truncated.
inline uint8_t SrClampToByte(double v) {
  v = v > 0 ? v : 0;
  v = v < 255 ? v : 255;
  return static_cast<uint8_t>(v);
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_SUPER_RESOLUTION_SR_CLASSES_H_
