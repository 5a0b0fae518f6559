// Byte layouts of the format codes: channel positions, packed 4:2:2 pair
// order, the subsampled group, and the plane layout each reading gives.
#include "framework/formats.h"

#include <gtest/gtest.h>

#include <array>

#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

TEST(Formats, ChannelAndPairPositions) {
  struct Rgb {
    uint32_t code;
    RgbLayout layout;
  };
  // Planar RGB (step 1) gives plane numbers instead of byte positions.
  const Rgb rgb[] = {{LF_RGB24, {0, 1, 2, -1, 3}},
                     {LF_BGRA, {2, 1, 0, 3, 4}},
                     {LF_ARGB, {1, 2, 3, 0, 4}},
                     {LF_ABGR, {3, 2, 1, 0, 4}},
                     {LF_BGRP, {2, 1, 0, -1, 1}}};
  for (const Rgb& c : rgb) {
    const RgbLayout* l = GetRgbLayout(c.code);
    ASSERT_NE(l, nullptr) << c.code;
    EXPECT_EQ((std::array{l->r, l->g, l->b, l->a, l->step}),
              (std::array{c.layout.r, c.layout.g, c.layout.b, c.layout.a, c.layout.step}))
        << c.code;
  }
  const Packed422Layout* vyuy = GetPacked422Layout(LF_VYUY);
  ASSERT_NE(vyuy, nullptr);
  EXPECT_EQ((std::array{vyuy->y0, vyuy->u, vyuy->y1, vyuy->v}), (std::array{1, 2, 3, 0}));
  EXPECT_EQ(GetPacked422Layout(LF_YVYU)->u, 3);
  for (uint32_t code : {0u, 3u, 4u, 11u, 23u, 32u}) {
    EXPECT_EQ(GetRgbLayout(code), nullptr) << code;
    EXPECT_EQ(GetPacked422Layout(code), nullptr) << code;
  }
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

// Code 31 and planar RGB are the two codes whose reading differs.
TEST(PlaneLayout, ReadingsDifferForCode31AndPlanarRgb) {
  const PlaneLayout vyuy = LayoutOf(LF_VYUY, FormatReading::kConversion, 64, 8);
  const PlaneLayout grey = LayoutOf(LF_VYUY | LF_FORMAT_BOTTOM_UP, FormatReading::kPlanes, 64, 8);
  EXPECT_EQ(vyuy.planes, 1);
  EXPECT_EQ(vyuy.plane[0].rowBytes, 128u);
  EXPECT_EQ(grey.planes, 1);
  EXPECT_EQ(grey.plane[0].rowBytes, 64u);

  const PlaneLayout stacked = LayoutOf(LF_RGBP, FormatReading::kConversion, 64, 8);
  const PlaneLayout separate = LayoutOf(LF_RGBP, FormatReading::kPlanes, 64, 8);
  EXPECT_EQ(stacked.planes, 1);
  EXPECT_EQ(stacked.plane[0].height, 24u);
  EXPECT_EQ(separate.planes, 3);
  EXPECT_EQ(separate.plane[2].height, 8u);
  EXPECT_EQ(stacked.PackedBytes(), separate.PackedBytes());

  for (uint32_t code : {LF_I420, LF_NV21, LF_I440, LF_YUY2, LF_BGR24, LF_ARGB}) {
    const PlaneLayout a = LayoutOf(code, FormatReading::kConversion, 30, 10);
    const PlaneLayout b = LayoutOf(code, FormatReading::kPlanes, 30, 10);
    EXPECT_EQ(a.planes, b.planes) << code;
    EXPECT_EQ(a.PackedBytes(), b.PackedBytes()) << code;
  }
  EXPECT_FALSE(LayoutOf(3, FormatReading::kPlanes, 30, 10).Known());
}

TEST(PlaneLayout, SubsampledPlanesSizesAndOffsets) {
  // Odd sizes: half-size planes truncate.
  const PlaneLayout i420 = LayoutOf(LF_I420, FormatReading::kPlanes, 65, 33);
  EXPECT_EQ(i420.plane[1].width, 32u);
  EXPECT_EQ(i420.plane[1].height, 16u);
  EXPECT_TRUE(i420.chroma420);
  EXPECT_EQ(i420.plane[1].Offset(10, 6, 40), 3u * 40 + 5);
  EXPECT_EQ(i420.PlaneBytes(0, 80), 32u * 80 + 65);

  const PlaneLayout nv12 = LayoutOf(LF_NV12, FormatReading::kPlanes, 64, 32);
  EXPECT_EQ(nv12.planes, 2);
  EXPECT_EQ(nv12.plane[1].rowBytes, 64u);  // 32 U, V pairs
  EXPECT_EQ(nv12.plane[1].Offset(10, 6, 64), 3u * 64 + 10);

  const PlaneLayout i440 = LayoutOf(LF_I440, FormatReading::kPlanes, 64, 32);
  EXPECT_EQ(i440.plane[1].width, 64u);
  EXPECT_EQ(i440.plane[1].Offset(10, 6, 64), 3u * 64 + 10);

  const PlaneLayout yuy2 = LayoutOf(LF_YUY2, FormatReading::kPlanes, 64, 32);
  EXPECT_EQ(yuy2.plane[0].Offset(10, 6, 200), 6u * 200 + 20);

  VideoPicture picture = {};
  uint8_t byte = 0;
  picture.planes[0] = picture.planes[1] = &byte;
  EXPECT_FALSE(PlanesPresent(picture, i420));
  EXPECT_TRUE(PlanesPresent(picture, nv12));
}

}  // namespace
}  // namespace Lumaforge
