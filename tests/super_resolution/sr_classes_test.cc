// The vector kernels take a pixel's variance level from integer moments
// instead of the double formula; the two must agree for every neighbourhood.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "super_resolution/sr_classes.h"

namespace Lumaforge {
namespace {

// The level as the text defines it: v = sumOfSquares / 9.0 - (sum / 9.0)^2,
// index = min(trunc(v * 255 / 16244), 255), then the variance table.
int32_t LevelFromFormula(int32_t sum, int32_t sumOfSquares) {
  const double mean = sum / 9.0;
  const double v = sumOfSquares / 9.0 - mean * mean;
  const double scaled = v * 255 / 16244;
  const int32_t index = scaled <= 0 ? 0 : std::min(static_cast<int32_t>(scaled), 255);
  constexpr int32_t kFirstIndex[16] = {0, 2, 3, 4, 5, 7, 9, 11, 16, 26, 36, 51, 76, 101, 151, 201};
  int32_t level = 0;
  while (level < 15 && index >= kFirstIndex[level + 1]) ++level;
  return level;
}

// The sums of squares reachable with a given sum of nine bytes: from the
// most even split to the most uneven one.
void ReachableSquares(int32_t sum, int32_t& lo, int32_t& hi) {
  const int32_t q = sum / 9, r = sum % 9;
  lo = (9 - r) * q * q + r * (q + 1) * (q + 1);
  const int32_t full = sum / 255, rest = sum % 255;
  hi = full * 255 * 255 + rest * rest;
}

TEST(SrClasses, IntegerLevelsMatchTheDoubleFormulaAtEveryBoundary) {
  int64_t checked = 0;
  for (int32_t sum = 0; sum <= 9 * 255; ++sum) {
    int32_t lo = 0, hi = 0;
    ReachableSquares(sum, lo, hi);
    for (int32_t level = 0; level < kSrLevels - 1; ++level) {
      // The sums of squares on either side of the boundary n * 255 = T.
      const int64_t n = (int64_t{SrLevelBoundary(level)} + 254) / 255;
      const int64_t centre = (n + int64_t{sum} * sum + 8) / 9;
      for (int64_t s = centre - 3; s <= centre + 3; ++s) {
        if (s < lo || s > hi) continue;
        const auto squares = static_cast<int32_t>(s);
        ASSERT_EQ(SrVarianceLevelOfMoments(sum, squares), LevelFromFormula(sum, squares))
            << "sum " << sum << ", sum of squares " << squares;
        ++checked;
      }
    }
  }
  EXPECT_GT(checked, 100000);
}

TEST(SrClasses, IntegerLevelsMatchOnRandomNeighbourhoods) {
  std::mt19937 rng(7);
  for (int i = 0; i < 200000; ++i) {
    int32_t sum = 0, squares = 0;
    const int32_t spread = 1 + static_cast<int32_t>(rng() % 256), base = static_cast<int32_t>(rng() % 256);
    for (int k = 0; k < 9; ++k) {
      const int32_t p = std::min(255, base + static_cast<int32_t>(rng() % spread));
      sum += p, squares += p * p;
    }
    ASSERT_EQ(SrVarianceLevelOfMoments(sum, squares), LevelFromFormula(sum, squares));
  }
}

}  // namespace
}  // namespace Lumaforge
