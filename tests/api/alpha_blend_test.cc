// The alpha blending filter through the public interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

// Tightly packed pictures, as the filter addresses rows by the width.
struct Blend {
  explicit Blend(std::vector<uint8_t>* map) {
    CreateLumaforge(&lf);
    lf->Init(LF_FILTER_ALPHA_BLEND, map ? map->data() : nullptr, 0);
  }
  ~Blend() { DestroyLumaforge(lf); }
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_ALPHA_BLEND, &in.picture, &out.picture);
  }
  ILumaforge* lf = nullptr;
};

uint8_t Expected(uint8_t in, uint8_t old, uint8_t a) { return static_cast<uint8_t>((in * (256 - a) + old * a) >> 8); }

TEST(AlphaBlend, ZeroAlphaCopiesAndFullAlphaKeepsTheAsymmetry) {
  std::vector<uint8_t> map(8 * 4, 0);
  OwnedPicture in(LF_BGRA, 8, 4, 0), out(LF_BGRA, 8, 4, 0);
  in.FillRandom(1);
  out.FillRandom(2);
  Blend blend(&map);
  ASSERT_EQ(blend.Run(in, out), LF_OK);
  // The buffers hold one spare byte past the picture.
  EXPECT_TRUE(std::equal(in.memory[0].begin(), in.memory[0].end() - 1, out.memory[0].begin()));

  map.assign(map.size(), 255);
  in.Fill(0);
  out.Fill(255);
  ASSERT_EQ(blend.Run(in, out), LF_OK);
  EXPECT_EQ(out.At(0, 0, 0), 254);
  EXPECT_EQ(out.At(0, 31, 3), 254);
}

TEST(AlphaBlend, OddI420ChromaIsBlendedAtHalfSizeWithTheTopLeftAlpha) {
  // 5x3: chroma planes of 2x1, alphas from map row 0, columns 0 and 2.
  std::vector<uint8_t> map = {10, 99, 200, 99, 99,  //
                              99, 99, 99,  99, 99,  //
                              99, 99, 99,  99, 99};
  OwnedPicture in(LF_I420, 5, 3, 0), out(LF_I420, 5, 3, 0);
  in.FillRandom(3);
  out.FillRandom(4);
  const std::vector<uint8_t> inU = in.memory[1], oldU = out.memory[1];
  Blend blend(&map);
  ASSERT_EQ(blend.Run(in, out), LF_OK);
  EXPECT_EQ(out.memory[1][0], Expected(inU[0], oldU[0], 10));
  EXPECT_EQ(out.memory[1][1], Expected(inU[1], oldU[1], 200));
  EXPECT_EQ(out.memory[1][2], oldU[2]);  // past the 2x1 plane: untouched
}

TEST(AlphaBlend, FormatsAndParameters) {
  std::vector<uint8_t> map(16 * 16, 7);
  OwnedPicture in(LF_I420, 16, 16, 0), out(LF_I420 | LF_FORMAT_BOTTOM_UP, 16, 16, 0);
  Blend blend(&map);
  EXPECT_EQ(blend.Run(in, out), LF_UNSUPPORTED);  // the flag is not masked off
  OwnedPicture rgb24(LF_RGB24, 16, 16, 0);
  EXPECT_EQ(blend.Run(in, rgb24), LF_UNSUPPORTED);

  int32_t value = 0;
  EXPECT_EQ(blend.lf->SetParam(LF_FILTER_ALPHA_BLEND, static_cast<ParamId>(0), nullptr), LF_OK);
  EXPECT_EQ(blend.lf->SetParam(LF_FILTER_ALPHA_BLEND, static_cast<ParamId>(0), &value), LF_INVALID_PARAMETER);
  EXPECT_EQ(blend.lf->SetParam(LF_FILTER_ALPHA_BLEND, static_cast<ParamId>(45), nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(blend.lf->GetParam(LF_FILTER_ALPHA_BLEND, LF_PARAM_TIME_PER_FRAME, &value), LF_INVALID_PARAMETER);
  EXPECT_EQ(blend.lf->Uninit(LF_FILTER_ALPHA_BLEND), LF_OK);

  Blend noMap(nullptr);  // never given a map: refused rather than read
  EXPECT_EQ(noMap.Run(in, rgb24), LF_INVALID_PARAMETER);
}

// Random pictures and maps at every processor level, against the formula.
TEST(AlphaBlend, EveryLevelFollowsTheFormula) {
  ForEachCpuLevel([](const CpuLevel& level) {
    for (const uint32_t format : {LF_ARGB, LF_YV12}) {
      const uint32_t w = 70, h = 6;
      std::vector<uint8_t> map(w * h);
      for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint8_t>(i * 37 + (i % 3 ? 0 : 255));
      OwnedPicture in(format, w, h, 0), out(format, w, h, 0);
      in.FillRandom(format + 5);
      out.FillRandom(format + 6);
      const std::vector<uint8_t> old[3] = {out.memory[0], out.memory[1], out.memory[2]};
      Blend blend(&map);
      ASSERT_EQ(blend.Run(in, out), LF_OK);
      const bool rgb = format == LF_ARGB;
      for (uint32_t r = 0; r < h; ++r) {
        for (uint32_t c = 0; c < (rgb ? 4 * w : w); ++c) {
          const size_t i = r * (rgb ? 4 * w : w) + c;
          ASSERT_EQ(out.memory[0][i], Expected(in.memory[0][i], old[0][i], map[r * w + (rgb ? c / 4 : c)]))
              << level.name << " format " << format << " at " << c << "," << r;
        }
      }
      for (int k = 1; k < 3 && !rgb; ++k) {
        for (uint32_t r = 0; r < h / 2; ++r) {
          for (uint32_t c = 0; c < w / 2; ++c) {
            const size_t i = r * (w / 2) + c;
            ASSERT_EQ(out.memory[k][i], Expected(in.memory[k][i], old[k][i], map[2 * r * w + 2 * c]))
                << level.name << " plane " << k << " at " << c << "," << r;
          }
        }
      }
    }
  });
}

}  // namespace
}  // namespace Lumaforge::test
