// The boost filter's brightness mappings against their definitions and
// worked examples: the curve family, the parameter search, the statistics
// record and the three methods.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "enhance/brightness_mapping.h"

namespace Lumaforge {
namespace {

std::array<uint32_t, 256> CountsOf(std::initializer_list<std::pair<int32_t, uint32_t>> bins) {
  std::array<uint32_t, 256> counts{};
  for (const auto& [level, count] : bins) counts[level] = count;
  return counts;
}

TEST(BrightnessCurve, KeepsItsEndsAndBrightensAboveOneDarkensBelow) {
  const LumaMapping identity = CurveMapping(1.0);
  for (int32_t i = 0; i < 256; ++i) EXPECT_FLOAT_EQ(identity[i], float(i));
  for (const double x : {3.0, 0.4}) {
    const LumaMapping map = CurveMapping(x);
    EXPECT_NEAR(map[0], 0.0f, 1e-4f);
    EXPECT_NEAR(map[255], 255.0f, 1e-3f);
    for (int32_t i = 1; i < 255; ++i) EXPECT_EQ(map[i] > float(i), x > 1) << "level " << i << ", x " << x;
  }
  // 255 ln(i / 255 (x - 1) + 1) / ln(x) at i = 100, x = 4.
  EXPECT_NEAR(CurveMapping(4.0)[100], 255.0 * std::log(100.0 / 255.0 * 3.0 + 1.0) / std::log(4.0), 1e-3);
}

TEST(BrightnessCurve, TheSearchLandsTheReferenceOnTheTarget) {
  // Brightening: x among 1, 1.01, ... below 10.
  const double up = SearchCurveParameter(60.7, 80.0);  // the reference is truncated to 60
  EXPECT_GT(up, 1.0);
  EXPECT_NEAR(CurveMapping(up)[60], 80.0, 0.15);
  // Darkening: x = 1 / v.
  const double down = SearchCurveParameter(200.0, 170.0);
  EXPECT_LT(down, 1.0);
  EXPECT_NEAR(CurveMapping(down)[200], 170.0, 0.3);
  // A target the curves cannot reach takes the furthest candidate.
  EXPECT_NEAR(SearchCurveParameter(20.0, 250.0), 9.99, 1e-9);
  EXPECT_EQ(SearchCurveParameter(100.0, 100.0), 1.0);
}

TEST(LumaStatisticsRecord, DescribesTheSamples) {
  const LumaStatistics s = StatisticsOf(CountsOf({{10, 1}, {20, 2}, {40, 1}}));
  EXPECT_FLOAT_EQ(s.histogram[20], 0.5f);
  EXPECT_EQ(s.min, 10);
  EXPECT_EQ(s.max, 40);
  EXPECT_FLOAT_EQ(s.mean, 22.5f);
  EXPECT_EQ(s.median, 20);  // the running share reaches 0.5 at level 20
  EXPECT_NEAR(s.stddev, std::sqrt((100 + 2 * 400 + 1600) / 4.0 - 22.5 * 22.5), 1e-4);
  EXPECT_FLOAT_EQ(s.cdf[19], 0.25f);
  EXPECT_FLOAT_EQ(s.cdf[255], 1.0f);
}

TEST(HistogramCdfMapping, HoldsBinsToTheMedianBinAndKeepsTheEnds) {
  // A picture crowded into 60..90: most bins are empty, so the median bin
  // is the floor 0.0015625 and every bin is held to it: equal weights, the
  // levels 16..235 spread evenly (the share up to and including each level).
  std::array<uint32_t, 256> counts{};
  for (int32_t i = 60; i <= 90; ++i) counts[i] = 1000;
  counts[5] = 10, counts[250] = 10;
  const LumaMapping map = HistogramCdfMapping(StatisticsOf(counts), 2.0);
  for (int32_t i = 0; i < 16; ++i) EXPECT_EQ(map[i], float(i));
  for (int32_t i = 236; i < 256; ++i) EXPECT_EQ(map[i], float(i));
  for (int32_t i = 16; i <= 235; ++i) EXPECT_NEAR(map[i], 219.0 * (i - 15) / 220.0 + 16.0, 1e-3) << i;
}

TEST(HistogramCdfMapping, SparseLevelsGetLessRoom) {
  // Every level equally full but 100..119, which hold a tenth as much:
  // below the median bin (and raised to the floor 0.0015625), they weigh
  // less, by the 1 / weight power.
  std::array<uint32_t, 256> counts{};
  for (int32_t i = 0; i < 256; ++i) counts[i] = i >= 100 && i < 120 ? 10 : 100;
  const LumaStatistics stats = StatisticsOf(counts);
  const LumaMapping map = HistogramCdfMapping(stats, 2.0);
  const double full = std::sqrt(100.0 / (236 * 100 + 20 * 10) + 0.0001);
  const double sparse = std::sqrt(std::max(10.0 / (236 * 100 + 20 * 10), 0.0015625) + 0.0001);
  const double total = 200 * full + 20 * sparse;
  EXPECT_NEAR(map[119] - map[99], 219.0 * 20 * sparse / total, 1e-3);
  EXPECT_NEAR(map[235], 235.0f, 1e-3f);
}

TEST(HybridMapping, WorkedExamples) {
  // Luma and skin means at 130: inside the comfortable band.
  const LumaMapping same = HybridMapping(130, 130, 20, nullptr);
  for (int32_t i = 0; i < 256; ++i) EXPECT_EQ(same[i], float(i));
  // A dark picture, Lm = Sm = 60 with skin deviation 10: start 60, target
  // 130, diff = 70 / (sqrt 2 x 10.01) = 4.945, weight 1 / 5.945 = 0.168,
  // target value 0.832 x 60 + 0.168 x 130 = 71.8.
  const double diff = 70.0 / (std::sqrt(2.0) * 10.01), wt = 1.0 / (diff + 1.0);
  const double tv = (1.0 - wt) * 60.0 + wt * 130.0;
  EXPECT_NEAR(diff, 4.95, 0.01);
  EXPECT_NEAR(wt, 0.168, 0.001);
  EXPECT_NEAR(tv, 71.8, 0.05);
  const LumaMapping dark = HybridMapping(60, 60, 10, nullptr);
  EXPECT_NEAR(dark[60], tv, 0.15);
}

TEST(HybridMapping, MovesTheRightMeanTowardTheBand) {
  // Lm > Sm, Lm < 115: the luma mean toward 115.
  EXPECT_GT(HybridMapping(80, 70, 30, nullptr)[80], 80.0f);
  // Lm > Sm, Sm >= 145: the skin mean toward 145 (darker).
  EXPECT_LT(HybridMapping(200, 180, 30, nullptr)[180], 180.0f);
  // Lm <= Sm, Sm < 115: the skin mean toward 130.
  EXPECT_GT(HybridMapping(50, 90, 20, nullptr)[90], 90.0f);
  // Lm <= Sm, 115 <= Sm < 145: the identity.
  EXPECT_EQ(HybridMapping(100, 120, 20, nullptr)[100], 100.0f);
  // Lm <= Sm, Sm >= 145, Lm >= 145: the luma mean toward 145.
  EXPECT_LT(HybridMapping(170, 180, 20, nullptr)[170], 170.0f);
}

TEST(BetaMapping, BrightensADarkPictureWithoutClippingMoreThanItHas) {
  // A dark picture spread over 20..100, skin around 50.
  std::array<uint32_t, 256> luma{}, skin{};
  for (int32_t i = 20; i <= 100; ++i) luma[i] = 100;
  for (int32_t i = 40; i <= 60; ++i) skin[i] = 100;
  const LumaStatistics l = StatisticsOf(luma), s = StatisticsOf(skin);
  const LumaMapping map = BetaMapping(l, s, 10.0, nullptr);
  EXPECT_GT(map[50], 50.0f);
  // No more than 2% of the picture above 227 after the mapping.
  double above = 0;
  for (int32_t i = 0; i < 256; ++i)
    if (std::lround(map[i]) > 227) above += l.histogram[i];
  EXPECT_LT(above, 0.02);
  // Without skin confidence the reference stays where it is.
  const LumaMapping unsure = BetaMapping(l, s, 0.0, nullptr);
  EXPECT_EQ(unsure[50], 50.0f);
  // Means inside 115..150 with skin between them: the identity.
  std::array<uint32_t, 256> mid{};
  for (int32_t i = 100; i <= 160; ++i) mid[i] = 10;
  EXPECT_EQ(BetaMapping(StatisticsOf(mid), StatisticsOf(mid), 10.0, nullptr)[77], 77.0f);
}

}  // namespace
}  // namespace Lumaforge
