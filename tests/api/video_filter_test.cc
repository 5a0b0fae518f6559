// The video filter's colour effects through the public interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

struct Effects {
  Effects(uint32_t width, uint32_t height, uint32_t effect) {
    CreateLumaforge(&lf);
    VideoFilterConfig config{width, height, LF_I420, effect};
    status = lf->Init(LF_FILTER_VIDEO_FILTER, &config, 0);
  }
  ~Effects() { DestroyLumaforge(lf); }
  int32_t Run(OwnedPicture& picture) { return lf->Process(LF_FILTER_VIDEO_FILTER, &picture.picture, nullptr); }
  ILumaforge* lf = nullptr;
  int32_t status;
};

// What the effect does in RGB, done beside the library: convert with the
// colour converter, apply `change` to every R, G, B triplet, convert back.
template <typename Change>
void ThroughRgb(OwnedPicture& picture, Change change) {
  ILumaforge* lf = nullptr;
  CreateLumaforge(&lf);
  lf->Init(LF_FILTER_CSC, nullptr, 0);
  OwnedPicture rgb(LF_RGB24, picture.picture.width, picture.picture.height, 0);
  ASSERT_EQ(lf->Process(LF_FILTER_CSC, &picture.picture, &rgb.picture), LF_OK);
  for (size_t i = 0; i + 3 <= rgb.memory[0].size(); i += 3) change(&rgb.memory[0][i]);
  ASSERT_EQ(lf->Process(LF_FILTER_CSC, &rgb.picture, &picture.picture), LF_OK);
  DestroyLumaforge(lf);
}

TEST(VideoFilter, GreyFillsTheChromaPlanesAsPackedRowsOfHalfSize) {
  OwnedPicture picture(LF_I420, 640, 360, 16);
  picture.FillRandom(1);
  const std::vector<uint8_t> luma = picture.memory[0];
  const std::vector<uint8_t> u = picture.memory[1];
  Effects grey(640, 360, LF_EFFECT_GREY);
  ASSERT_EQ(grey.Run(picture), LF_OK);
  for (int k = 1; k < 3; ++k) {
    EXPECT_TRUE(
        std::all_of(picture.memory[k].begin(), picture.memory[k].begin() + 57600, [](uint8_t v) { return v == 128; }));
  }
  EXPECT_EQ(picture.memory[1][57600], u[57600]);  // the strides are not followed
  EXPECT_EQ(picture.memory[0], luma);
}

TEST(VideoFilter, ASizeChangeReinitialisesAndKeepsTheEffect) {
  Effects effects(320, 180, LF_EFFECT_GREY);
  OwnedPicture picture(LF_I420, 640, 360, 0);
  picture.FillRandom(2);
  ASSERT_EQ(effects.Run(picture), LF_OK);
  EXPECT_EQ(picture.At(1, 319, 179), 128);
  EXPECT_EQ(picture.At(2, 0, 0), 128);
}

TEST(VideoFilter, EffectParameterAndStatusCodes) {
  Effects effects(64, 32, LF_EFFECT_GREY);
  OwnedPicture picture(LF_I420, 64, 32, 0);
  uint32_t none = LF_EFFECT_NONE;
  EXPECT_EQ(effects.lf->SetParam(LF_FILTER_VIDEO_FILTER, LF_PARAM_VIDEO_EFFECT, &none), LF_OK);
  EXPECT_EQ(effects.Run(picture), LF_INVALID_PARAMETER);
  EXPECT_EQ(effects.lf->SetParam(LF_FILTER_VIDEO_FILTER, LF_PARAM_VIDEO_EFFECT, nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(effects.lf->SetParam(LF_FILTER_VIDEO_FILTER, LF_PARAM_BLUR_SIGMA, &none), LF_OK);  // ignored

  uint32_t unknown = 9;  // anything unknown turns grey
  EXPECT_EQ(effects.lf->SetParam(LF_FILTER_VIDEO_FILTER, LF_PARAM_VIDEO_EFFECT, &unknown), LF_OK);
  picture.Fill(50);
  EXPECT_EQ(effects.Run(picture), LF_OK);
  EXPECT_EQ(picture.At(1, 5, 5), 128);

  VideoFilterConfig nv12{64, 32, LF_NV12, LF_EFFECT_SEPIA};
  EXPECT_EQ(effects.lf->Init(LF_FILTER_VIDEO_FILTER, &nv12, 0), LF_UNSUPPORTED);
  picture.Fill(50);
  EXPECT_EQ(effects.Run(picture), LF_OK);  // still grey: the refused record changed nothing
  EXPECT_EQ(picture.At(1, 5, 5), 128);

  OwnedPicture yv12(LF_YV12, 64, 32, 0);
  EXPECT_EQ(effects.Run(yv12), LF_UNSUPPORTED);
  picture.picture.planes[2] = nullptr;
  EXPECT_EQ(effects.Run(picture), LF_INVALID_PARAMETER);
  EXPECT_EQ(effects.lf->Process(LF_FILTER_VIDEO_FILTER, nullptr, nullptr), LF_INVALID_PARAMETER);
  uint32_t sepia = LF_EFFECT_SEPIA;
  effects.lf->SetParam(LF_FILTER_VIDEO_FILTER, LF_PARAM_VIDEO_EFFECT, &sepia);
  OwnedPicture odd(LF_I420, 63, 32, 0);
  EXPECT_EQ(effects.Run(odd), LF_INVALID_PARAMETER);  // colour effects need whole 2x2 blocks
}

TEST(VideoFilter, HueRotationTurnsChromaBy120Radians) {
  OwnedPicture picture(LF_I420, 8, 4, 0);
  picture.Fill(128);
  picture.At(1, 0, 0) = 228;  // u = +100, v = 0
  Effects effects(8, 4, LF_EFFECT_HUE_ROTATE);
  ASSERT_EQ(effects.Run(picture), LF_OK);
  // cos 120 = 0.8142, sin 120 = 0.5806: u' = 81.4, v' = -58.1.
  EXPECT_EQ(picture.At(1, 0, 0), 209);
  EXPECT_EQ(picture.At(2, 0, 0), 69);
  EXPECT_EQ(picture.At(1, 1, 0), 128);  // neutral stays neutral
  EXPECT_EQ(picture.At(2, 1, 0), 128);
}

TEST(VideoFilter, SepiaAndToneCurvesAreTheirRgbFormulasThroughTheConverter) {
  OwnedPicture picture(LF_I420, 66, 34, 0), expected(LF_I420, 66, 34, 0);
  picture.FillRandom(3);
  for (int k = 0; k < 3; ++k) expected.memory[k] = picture.memory[k];
  ThroughRgb(expected, [](uint8_t* p) {
    const int r = p[0], g = p[1], b = p[2];
    p[0] = static_cast<uint8_t>(std::min((101 * r + 197 * g + 48 * b + 128) >> 8, 255));
    p[1] = static_cast<uint8_t>(std::min((89 * r + 176 * g + 43 * b + 128) >> 8, 255));
    p[2] = static_cast<uint8_t>((70 * r + 137 * g + 34 * b + 128) >> 8);
  });
  Effects sepia(66, 34, LF_EFFECT_SEPIA);
  ASSERT_EQ(sepia.Run(picture), LF_OK);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(picture.memory[k], expected.memory[k]) << "plane " << k;

  picture.FillRandom(4);
  for (int k = 0; k < 3; ++k) expected.memory[k] = picture.memory[k];
  ThroughRgb(expected, [](uint8_t* p) {
    auto curve = [](int t, int power, int scale) {
      const int d = t < 128 ? t : 256 - t;
      const int lift = (power == 3 ? d * d * d : d * d) / scale;
      return static_cast<uint8_t>(std::min(t < 128 ? lift : 256 - lift, 255));
    };
    p[0] = curve(p[0], 3, 16384);
    p[1] = curve(p[1], 2, 128);
    p[2] = static_cast<uint8_t>((p[2] >> 1) + 37);
  });
  Effects tone(66, 34, LF_EFFECT_TONE_CURVES);
  ASSERT_EQ(tone.Run(picture), LF_OK);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(picture.memory[k], expected.memory[k]) << "plane " << k;
}

TEST(VideoFilter, FilmLookLiftsBlacksSoftensWhitesAndWarmsGrey) {
  OwnedPicture picture(LF_I420, 16, 6, 0);
  picture.Fill(128);
  for (uint32_t x = 0; x < 16; ++x) {
    picture.At(0, x, 0) = picture.At(0, x, 1) = 16;   // black
    picture.At(0, x, 2) = picture.At(0, x, 3) = 235;  // white
  }
  Effects film(16, 6, LF_EFFECT_CURVE_TABLES);
  ASSERT_EQ(film.Run(picture), LF_OK);
  EXPECT_GT(picture.At(0, 3, 0), 16 + 40);   // blacks lifted to a matte grey
  EXPECT_LT(picture.At(0, 3, 2), 235 - 15);  // whites softened
  EXPECT_GT(picture.At(2, 3, 2), 128);       // mid-grey: more red (V up)
}

TEST(VideoFilter, EveryLevelGivesTheSameBytes) {
  for (uint32_t effect = LF_EFFECT_HUE_ROTATE; effect <= LF_EFFECT_CURVE_TABLES; ++effect) {
    std::vector<uint8_t> first[3];
    ForEachCpuLevel([&](const CpuLevel& level) {
      OwnedPicture picture(LF_I420, 98, 42, 6);
      picture.FillRandom(effect);
      Effects effects(98, 42, effect);
      ASSERT_EQ(effects.Run(picture), LF_OK);
      for (int k = 0; k < 3; ++k) {
        if (first[k].empty()) first[k] = picture.memory[k];
        EXPECT_EQ(picture.memory[k], first[k]) << level.name << " effect " << effect << " plane " << k;
      }
    });
  }
}

}  // namespace
}  // namespace Lumaforge::test
