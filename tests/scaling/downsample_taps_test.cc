#include "scaling/downsample_taps.h"

#include <gtest/gtest.h>

namespace Lumaforge {
namespace {

TEST(DownsampleTaps, HalfBandFilter) {
  int8_t taps[6];
  MakeHalfBandTaps(taps);
  const int8_t expected[6] = {-1, 8, 25, 25, 8, -1};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(taps[i], expected[i]) << i;
}

TEST(DownsampleTaps, FourTapPhaseTable) {
  int8_t table[64][4];
  MakeFourTapPhaseTable(table);
  const int8_t expected[4][4] = {{0, 64, 0, 0}, {-5, 55, 15, -1}, {-4, 36, 36, -4}, {-1, 15, 55, -5}};
  for (int e = 0; e < 4; ++e) {
    for (int k = 0; k < 4; ++k) EXPECT_EQ(table[16 * e][k], expected[e][k]) << "phase " << 16 * e << " tap " << k;
  }
  for (int p = 0; p < 64; ++p) EXPECT_EQ(table[p][0] + table[p][1] + table[p][2] + table[p][3], 64) << p;
}

TEST(DownsampleTaps, SpecialRatios) {
  EXPECT_EQ(SpecialRatioIndex(1728, 1920), 1);
  EXPECT_EQ(SpecialRatioIndex(1280, 1920), 5);
  EXPECT_EQ(SpecialRatioIndex(1440, 1920), 6);
  EXPECT_EQ(SpecialRatioIndex(960, 1920), 0);
  const int32_t counts[7] = {-1, 9, 8, 7, 6, 2, 3};
  for (int32_t index = 1; index <= 6; ++index) {
    EXPECT_EQ(SpecialRatioPhaseCount(index), counts[index]);
    for (int32_t p = 0; p < counts[index]; ++p) {
      const int8_t* t = SpecialRatioPhases(index)[p];
      EXPECT_EQ(t[0] + t[1] + t[2] + t[3], 64) << index << " " << p;
    }
  }
}

}  // namespace
}  // namespace Lumaforge
