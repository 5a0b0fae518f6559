#include "framework/formats.h"

#include <gtest/gtest.h>

namespace Lumaforge {
namespace {

TEST(Formats, RgbLayouts) {
  const RgbLayout* argb = GetRgbLayout(LF_ARGB);
  ASSERT_NE(argb, nullptr);
  EXPECT_EQ(argb->r, 1);
  EXPECT_EQ(argb->g, 2);
  EXPECT_EQ(argb->b, 3);
  EXPECT_EQ(argb->a, 0);
  EXPECT_EQ(argb->step, 4);
  EXPECT_EQ(GetRgbLayout(LF_BGR24)->a, -1);
  EXPECT_EQ(GetRgbLayout(LF_BGRP)->r, 2);  // plane number for planar RGB
  EXPECT_EQ(GetRgbLayout(LF_RGBP)->step, 1);
  for (uint32_t code : {0u, 3u, 4u, 11u, 20u, 23u, 32u}) EXPECT_EQ(GetRgbLayout(code), nullptr) << code;
}

TEST(Formats, Packed422Layouts) {
  const Packed422Layout* vyuy = GetPacked422Layout(LF_VYUY);
  ASSERT_NE(vyuy, nullptr);
  EXPECT_EQ(vyuy->y0, 1);
  EXPECT_EQ(vyuy->u, 2);
  EXPECT_EQ(vyuy->y1, 3);
  EXPECT_EQ(vyuy->v, 0);
  EXPECT_EQ(GetPacked422Layout(LF_YVYU)->u, 3);
  EXPECT_EQ(GetPacked422Layout(LF_I420), nullptr);
}

TEST(Formats, ChromaSubsampledGroupAndFlag) {
  for (uint32_t code = 0; code < 64; ++code) {
    const bool expected = code == 20 || code == 21 || code == 22 || code == 23 || code == 24 || code == 26 ||
                          code == 29 || code == 30 || code == 31;
    EXPECT_EQ(IsChromaSubsampled(code), expected) << code;
  }
  EXPECT_EQ(FormatCode(LF_I420 | LF_FORMAT_BOTTOM_UP), LF_I420);
  EXPECT_TRUE(IsBottomUp(LF_I420 | LF_FORMAT_BOTTOM_UP));
}

}  // namespace
}  // namespace Lumaforge
