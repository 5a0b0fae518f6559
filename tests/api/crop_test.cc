// The crop filter through the public interface.
#include <gtest/gtest.h>

#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"

namespace {

class CropTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(CreateLumaforge(&lf), LF_OK); }
  void TearDown() override { DestroyLumaforge(lf); }

  // A picture header over a fake address space: crop never touches pixels.
  VideoPicture Picture(uint32_t format, uint32_t width, uint32_t height) {
    VideoPicture p = {};
    p.planes[0] = memory.data();
    p.planes[1] = memory.data() + 0x100000;
    p.planes[2] = memory.data() + 0x200000;
    p.strides[0] = width * 4 + 64;
    p.strides[1] = width + 32;
    p.strides[2] = width + 48;
    p.width = width;
    p.height = height;
    p.format = format;
    return p;
  }

  int32_t Crop(const CropConfig& config, VideoPicture& in, VideoPicture& out) {
    CropConfig copy = config;
    EXPECT_EQ(lf->Init(LF_FILTER_CROP, &copy, 0), LF_OK);
    return lf->Process(LF_FILTER_CROP, &in, &out);
  }

  size_t Moved(const VideoPicture& in, const VideoPicture& out, int plane) {
    return static_cast<size_t>(out.planes[plane] - in.planes[plane]);
  }

  ILumaforge* lf = nullptr;
  std::vector<uint8_t> memory = std::vector<uint8_t>(0x300000);
};

TEST_F(CropTest, ExplicitRectangleIsClippedToThePicture) {
  VideoPicture in = Picture(LF_BGRA, 1280, 720), out = {};
  ASSERT_EQ(Crop({1, 10, 10, 2000, 2000}, in, out), LF_OK);
  EXPECT_EQ(out.width, 1270u);
  EXPECT_EQ(out.height, 710u);
  EXPECT_EQ(Moved(in, out, 0), 10 * in.strides[0] + 10 * 4);
  EXPECT_EQ(out.planes[1], out.planes[0]);
  EXPECT_EQ(out.strides[0], in.strides[0]);
}

// Left plus width past 2^32 must clip, not wrap around to a huge rectangle.
TEST_F(CropTest, RectanglesReachingPast32BitsAreClippedNotWrapped) {
  VideoPicture in = Picture(LF_BGRA, 64, 64), out = {};
  ASSERT_EQ(Crop({1, 0, 8, 0xFFFFFFFCu, 4}, in, out), LF_OK);
  EXPECT_EQ(out.width, 56u);
  EXPECT_EQ(out.height, 4u);
  VideoPicture i420 = Picture(LF_I420, 64, 64);
  ASSERT_EQ(Crop({1, 60, 0, 8, 0xFFFFFFF0u}, i420, out), LF_OK);
  EXPECT_EQ(out.width, 8u);
  EXPECT_EQ(out.height, 4u);
}

TEST_F(CropTest, SubsampledFormatsRoundToEvenAndMoveChroma) {
  VideoPicture in = Picture(LF_I420, 640, 360), out = {};
  ASSERT_EQ(Crop({1, 11, 7, 101, 51}, in, out), LF_OK);
  EXPECT_EQ(out.width, 100u);
  EXPECT_EQ(out.height, 50u);
  EXPECT_EQ(Moved(in, out, 0), 10 * in.strides[0] + 6);
  EXPECT_EQ(Moved(in, out, 1), 5 * in.strides[1] + 3);
  EXPECT_EQ(Moved(in, out, 2), 5 * in.strides[2] + 3);

  in = Picture(LF_NV21, 640, 360);
  ASSERT_EQ(Crop({1, 11, 7, 101, 51}, in, out), LF_OK);
  EXPECT_EQ(Moved(in, out, 1), 5 * in.strides[1] + 6);
  EXPECT_EQ(out.planes[2], out.planes[1]);

  in = Picture(LF_I440, 640, 360);
  ASSERT_EQ(Crop({1, 11, 7, 101, 51}, in, out), LF_OK);
  EXPECT_EQ(Moved(in, out, 1), 5 * in.strides[1] + 6);  // full-width chroma

  in = Picture(LF_UYVY, 640, 360);
  ASSERT_EQ(Crop({1, 11, 7, 101, 51}, in, out), LF_OK);
  EXPECT_EQ(Moved(in, out, 0), 10 * in.strides[0] + 6 * 2);

  in = Picture(LF_RGB24, 640, 360);  // not subsampled: no rounding
  ASSERT_EQ(Crop({1, 11, 7, 101, 51}, in, out), LF_OK);
  EXPECT_EQ(out.width, 101u);
  EXPECT_EQ(Moved(in, out, 0), 11 * in.strides[0] + 7 * 3);
}

TEST_F(CropTest, AspectFitIsAnchoredTopLeft) {
  VideoPicture in = Picture(LF_I420, 1920, 1080), out = {};
  ASSERT_EQ(Crop({0, 0, 0, 4, 3}, in, out), LF_OK);
  EXPECT_EQ(out.width, 1440u);
  EXPECT_EQ(out.height, 1080u);
  EXPECT_EQ(out.planes[0], in.planes[0]);
  EXPECT_EQ(out.planes[1], in.planes[1]);

  in = Picture(LF_I420, 720, 1280);
  ASSERT_EQ(Crop({0, 0, 0, 1, 1}, in, out), LF_OK);
  EXPECT_EQ(out.width, 720u);
  EXPECT_EQ(out.height, 720u);
  EXPECT_EQ(out.planes[0], in.planes[0]);
}

TEST_F(CropTest, WholePictureKeepsPointersAndBottomUpFlag) {
  VideoPicture in = Picture(LF_I420 | LF_FORMAT_BOTTOM_UP, 640, 360), out = {};
  ASSERT_EQ(Crop({1, 0, 0, 640, 360}, in, out), LF_OK);
  EXPECT_EQ(out.format, LF_I420 | LF_FORMAT_BOTTOM_UP);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(out.planes[k], in.planes[k]);

  ASSERT_EQ(Crop({1, 2, 2, 100, 100}, in, out), LF_OK);
  EXPECT_EQ(out.format, LF_I420 | LF_FORMAT_BOTTOM_UP);
}

TEST_F(CropTest, Rejections) {
  VideoPicture in = Picture(LF_I420, 640, 360), out = {};
  // Nothing configured yet: all-zero rectangle.
  CropConfig none = {};
  ASSERT_EQ(lf->Init(LF_FILTER_CROP, nullptr, 0), LF_OK);
  EXPECT_EQ(lf->Process(LF_FILTER_CROP, &in, &out), LF_INVALID_PARAMETER);
  EXPECT_EQ(Crop(none, in, out), LF_INVALID_PARAMETER);

  EXPECT_EQ(Crop({1, 360, 0, 10, 10}, in, out), LF_INVALID_PARAMETER);  // top at the height
  EXPECT_EQ(Crop({0, 360, 0, 4, 3}, in, out), LF_INVALID_PARAMETER);    // in both modes
  EXPECT_EQ(Crop({1, 0, 640, 10, 10}, in, out), LF_INVALID_PARAMETER);
  EXPECT_EQ(Crop({1, 0, 0, 0, 10}, in, out), LF_INVALID_PARAMETER);
  EXPECT_EQ(Crop({2, 0, 0, 10, 10}, in, out), LF_INVALID_PARAMETER);
  EXPECT_EQ(lf->Process(LF_FILTER_CROP, nullptr, &out), LF_INVALID_PARAMETER);
  EXPECT_EQ(lf->Process(LF_FILTER_CROP, &in, nullptr), LF_INVALID_PARAMETER);

  // A format without a crop layout: the output is filled, then refused.
  in = Picture(LF_RGBP, 640, 360);
  EXPECT_EQ(Crop({1, 2, 2, 100, 100}, in, out), LF_INVALID_PARAMETER);
  EXPECT_EQ(out.format, static_cast<uint32_t>(LF_RGBP));
  EXPECT_EQ(out.width, 100u);
  EXPECT_EQ(out.planes[0], in.planes[0]);
  in.format = 0;
  EXPECT_EQ(Crop({1, 2, 2, 100, 100}, in, out), LF_INVALID_PARAMETER);
  in.format = 40;
  EXPECT_EQ(Crop({1, 2, 2, 100, 100}, in, out), LF_INVALID_PARAMETER);
}

TEST_F(CropTest, ParametersAndTiming) {
  VideoPicture in = Picture(LF_NV12, 640, 360), out = {};
  ASSERT_EQ(lf->Init(LF_FILTER_CROP, nullptr, 0), LF_OK);
  CropConfig config = {1, 4, 4, 64, 64};
  EXPECT_EQ(lf->SetParam(LF_FILTER_CROP, LF_PARAM_CROP_CONFIG, &config), LF_OK);
  EXPECT_EQ(lf->SetParam(LF_FILTER_CROP, LF_PARAM_CROP_CONFIG, nullptr), LF_INVALID_PARAMETER);
  int32_t ignored = 5;
  EXPECT_EQ(lf->SetParam(LF_FILTER_CROP, static_cast<ParamId>(12), &ignored), LF_OK);

  for (int i = 0; i < 10; ++i) ASSERT_EQ(lf->Process(LF_FILTER_CROP, &in, &out), LF_OK);
  EXPECT_EQ(out.width, 64u);
  double usPerFrame = -1;
  EXPECT_EQ(lf->GetParam(LF_FILTER_CROP, LF_PARAM_TIME_PER_FRAME, &usPerFrame), LF_OK);
  EXPECT_GE(usPerFrame, 0.0);
  EXPECT_LT(usPerFrame, 1000.0);
  EXPECT_EQ(lf->GetParam(LF_FILTER_CROP, static_cast<ParamId>(12), &usPerFrame), LF_OK);

  // Uninit restarts the timing; a fresh Init keeps using the last configuration.
  EXPECT_EQ(lf->Uninit(LF_FILTER_CROP), LF_OK);
  EXPECT_EQ(lf->Init(LF_FILTER_CROP, nullptr, 0), LF_OK);
  EXPECT_EQ(lf->Process(LF_FILTER_CROP, &in, &out), LF_INVALID_PARAMETER);  // a new filter: no configuration
}

// Filters are created with the feature word of the Init that creates them;
// every level must crop alike.
TEST(CropLevels, SameRectangleAtEveryProcessorLevel) {
  std::vector<uint8_t> pixels(320 * 240 * 2);
  VideoPicture in = {};
  in.planes[0] = in.planes[1] = in.planes[2] = pixels.data();
  in.strides[0] = in.strides[1] = in.strides[2] = 320 * 2;
  in.width = 320;
  in.height = 240;
  in.format = LF_YUY2;
  std::vector<VideoPicture> outputs;
  Lumaforge::test::ForEachCpuLevel([&](const Lumaforge::test::CpuLevel& level) {
    EXPECT_EQ(GetLumaforgeArch(), level.tier);
    ILumaforge* lf = nullptr;
    ASSERT_EQ(CreateLumaforge(&lf), LF_OK);
    CropConfig config = {1, 3, 5, 101, 99};
    ASSERT_EQ(lf->Init(LF_FILTER_CROP, &config, 0), LF_OK);
    VideoPicture out = {};
    EXPECT_EQ(lf->Process(LF_FILTER_CROP, &in, &out), LF_OK) << level.name;
    outputs.push_back(out);
    DestroyLumaforge(lf);
  });
  ASSERT_FALSE(outputs.empty());
  for (const VideoPicture& out : outputs) {
    EXPECT_EQ(out.planes[0], pixels.data() + 2 * in.strides[0] + 4 * 2);
    EXPECT_EQ(out.width, 100u);
    EXPECT_EQ(out.height, 98u);
  }
}

}  // namespace
