// The colour space converter through the public interface.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/csc_model.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

constexpr uint32_t kFormats[] = {LF_RGB24, LF_RGBA, LF_BGR24, LF_BGRA, LF_ABGR, LF_ARGB, LF_RGBP, LF_BGRP, LF_YUY2,
                                 LF_YVYU,  LF_UYVY, LF_VYUY,  LF_I420, LF_YV12, LF_NV12, LF_NV21, LF_I440};

class Converter {
 public:
  Converter() {
    CreateLumaforge(&m_lf);
    m_lf->Init(LF_FILTER_CSC, nullptr, 0);
  }
  ~Converter() { DestroyLumaforge(m_lf); }
  int32_t Convert(VideoPicture& in, VideoPicture& out) { return m_lf->Process(LF_FILTER_CSC, &in, &out); }
  ILumaforge* Get() { return m_lf; }

 private:
  ILumaforge* m_lf = nullptr;
};

// Compares the converter's output with the model, sample by sample.
void ExpectMatchesModel(const Samples& expected, const VideoPicture& out, const std::string& what) {
  const Samples actual = ReadSamples(out, false);
  const bool hasAlpha = (out.format & LF_FORMAT_CODE_MASK) == LF_RGBA ||
                        (out.format & LF_FORMAT_CODE_MASK) == LF_BGRA ||
                        (out.format & LF_FORMAT_CODE_MASK) == LF_ABGR || (out.format & LF_FORMAT_CODE_MASK) == LF_ARGB;
  auto compare = [&](const std::vector<int>& e, const std::vector<int>& a, const char* name) {
    ASSERT_EQ(e.size(), a.size()) << what << " " << name;
    for (size_t i = 0; i < e.size(); ++i) ASSERT_EQ(e[i], a[i]) << what << " " << name << " at " << i;
  };
  if (expected.kind == Kind::kRgb) {
    compare(expected.r, actual.r, "R");
    compare(expected.g, actual.g, "G");
    compare(expected.b, actual.b, "B");
    if (hasAlpha) compare(expected.a, actual.a, "A");
  } else {
    compare(expected.y, actual.y, "Y");
    compare(expected.u, actual.u, "U");
    compare(expected.v, actual.v, "V");
  }
}

// Every format pair, both flip directions, at every processor level, on
// sizes that cross the converters' column chunks and the vector widths.
TEST(CscConversions, EveryPairMatchesTheModelAtEveryLevel) {
  struct Size {
    uint32_t width, height;
  };
  const Size sizes[] = {{2, 2}, {70, 6}, {2054, 4}};
  ForEachCpuLevel([&](const CpuLevel& level) {
    Converter csc;
    for (const Size size : sizes) {
      for (uint32_t inCode : kFormats) {
        for (uint32_t outCode : kFormats) {
          for (const uint32_t inFlag : {0u, LF_FORMAT_BOTTOM_UP}) {
            OwnedPicture in(inCode | inFlag, size.width, size.height, 5);
            in.FillRandom(inCode * 131 + outCode + size.width);
            OwnedPicture out(outCode, size.width, size.height, 3);
            const std::string what = std::string(level.name) + " " + std::to_string(inCode) + "->" +
                                     std::to_string(outCode) + (inFlag ? " mirrored " : " ") +
                                     std::to_string(size.width) + "x" + std::to_string(size.height);
            const int32_t status = csc.Convert(in.picture, out.picture);
            if (!ConversionSupported(inCode, outCode)) {
              ASSERT_EQ(status, LF_UNSUPPORTED) << what;
              continue;
            }
            ASSERT_EQ(status, LF_OK) << what;
            ExpectMatchesModel(ExpectedConversion(ReadSamples(in.picture, inFlag != 0), outCode), out.picture, what);
          }
        }
      }
    }
  });
}

// One I420 picture of a single colour, converted to BGRA.
std::vector<uint8_t> I420PixelToBgra(uint8_t y, uint8_t u, uint8_t v) {
  OwnedPicture in(LF_I420, 2, 2, 0), out(LF_BGRA, 2, 2, 0);
  in.memory[0].assign(in.memory[0].size(), y);
  in.memory[1].assign(in.memory[1].size(), u);
  in.memory[2].assign(in.memory[2].size(), v);
  Converter csc;
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_OK);
  return {out.At(0, 0, 0), out.At(0, 1, 0), out.At(0, 2, 0), out.At(0, 3, 0)};
}

TEST(CscReferenceValues, YuvToRgb) {
  EXPECT_EQ(I420PixelToBgra(16, 128, 128), (std::vector<uint8_t>{0, 0, 0, 255}));
  // (219 * 74) >> 6 = 253: limited-range white does not reach 255.
  EXPECT_EQ(I420PixelToBgra(235, 128, 128), (std::vector<uint8_t>{253, 253, 253, 255}));
  EXPECT_EQ(I420PixelToBgra(255, 255, 128)[0], 255);  // blue saturates
  EXPECT_EQ(I420PixelToBgra(0, 128, 0)[2], 0);        // red clamps at 0
  // The shift rounds toward minus infinity: (0 - 1184 + 0) >> 6 = -19 -> 0;
  // (17 - 16) * 74 >> 6 = 1.
  EXPECT_EQ(I420PixelToBgra(17, 128, 128)[1], 1);
}

TEST(CscReferenceValues, WhiteRgbToYuv) {
  for (uint32_t code : {LF_BGRA, LF_RGB24, LF_RGBP}) {
    OwnedPicture in(code, 4, 2, 0), out(LF_NV12, 4, 2, 0);
    in.Fill(255);
    Converter csc;
    ASSERT_EQ(csc.Convert(in.picture, out.picture), LF_OK);
    EXPECT_EQ(out.At(0, 3, 1), 235) << code;
    EXPECT_EQ(out.At(1, 0, 0), 128) << code;
    EXPECT_EQ(out.At(1, 3, 0), 128) << code;
  }
}

TEST(CscSizes, OddSizesAreClearedInBothRecords) {
  OwnedPicture in(LF_I420, 641, 361), out(LF_BGRA, 641, 361);
  in.FillRandom(7);
  out.Fill(0xEE);
  Converter csc;
  ASSERT_EQ(csc.Convert(in.picture, out.picture), LF_OK);
  EXPECT_EQ(in.picture.width, 640u);
  EXPECT_EQ(in.picture.height, 360u);
  EXPECT_EQ(out.picture.width, 640u);
  EXPECT_EQ(out.picture.height, 360u);
  EXPECT_EQ(out.At(0, 640 * 4, 0), 0xEE);  // column 640 untouched
  EXPECT_EQ(out.At(0, 0, 360), 0xEE);      // row 360 untouched
}

TEST(CscFlips, BottomUpFlagAloneMirrors) {
  OwnedPicture in(LF_BGRA, 4, 4, 0);
  in.FillRandom(3);
  OwnedPicture mirrored(LF_BGRA | LF_FORMAT_BOTTOM_UP, 4, 4, 0);
  Converter csc;
  ASSERT_EQ(csc.Convert(in.picture, mirrored.picture), LF_OK);
  for (uint32_t y = 0; y < 4; ++y) {
    for (uint32_t x = 0; x < 16; ++x) ASSERT_EQ(mirrored.At(0, x, y), in.At(0, x, 3 - y));
  }
  // Both bottom-up: rows map one to one.
  in.picture.format |= LF_FORMAT_BOTTOM_UP;
  OwnedPicture same(LF_BGRA | LF_FORMAT_BOTTOM_UP, 4, 4, 0);
  ASSERT_EQ(csc.Convert(in.picture, same.picture), LF_OK);
  for (uint32_t y = 0; y < 4; ++y) {
    for (uint32_t x = 0; x < 16; ++x) ASSERT_EQ(same.At(0, x, y), in.At(0, x, y));
  }
}

TEST(CscPairs, I440KeepsEveryOtherChromaSample) {
  OwnedPicture in(LF_I440, 8, 4), out(LF_YV12, 8, 4);
  in.FillRandom(11);
  Converter csc;
  ASSERT_EQ(csc.Convert(in.picture, out.picture), LF_OK);
  for (uint32_t c = 0; c < 2; ++c) {
    for (uint32_t i = 0; i < 4; ++i) {
      EXPECT_EQ(out.At(2, i, c), in.At(1, 2 * i, c));  // YV12 keeps U in plane 2
      EXPECT_EQ(out.At(1, i, c), in.At(2, 2 * i, c));
    }
  }
  OwnedPicture nv12(LF_NV12, 8, 4);
  EXPECT_EQ(csc.Convert(in.picture, nv12.picture), LF_UNSUPPORTED);
}

TEST(CscStatus, RejectionsAndParameters) {
  Converter csc;
  OwnedPicture in(LF_I420, 8, 8), out(LF_BGRA, 8, 8);
  EXPECT_EQ(csc.Get()->Process(LF_FILTER_CSC, nullptr, &out.picture), LF_INVALID_PARAMETER);
  EXPECT_EQ(csc.Get()->Process(LF_FILTER_CSC, &in.picture, nullptr), LF_INVALID_PARAMETER);

  // A missing input plane is found before the output format is looked at.
  in.picture.planes[2] = nullptr;
  out.picture.format = 0;
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_INVALID_PARAMETER);
  in.picture.planes[2] = in.memory[2].data();
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_UNSUPPORTED);
  out.picture.format = 32;
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_UNSUPPORTED);
  out.picture.format = LF_I440;
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_UNSUPPORTED);

  // Unnamed input codes convert only to I420 and YV12.
  in.picture.format = 0;
  out.picture.format = LF_BGRA;
  EXPECT_EQ(csc.Convert(in.picture, out.picture), LF_UNSUPPORTED);
  OwnedPicture i420(LF_I420, 8, 8);
  EXPECT_EQ(csc.Convert(in.picture, i420.picture), LF_OK);

  OwnedPicture nv12(LF_NV12, 8, 8);
  nv12.picture.planes[1] = nullptr;
  EXPECT_EQ(csc.Convert(nv12.picture, out.picture), LF_INVALID_PARAMETER);

  uint32_t value = 7;
  EXPECT_EQ(csc.Get()->SetParam(LF_FILTER_CSC, static_cast<ParamId>(99), &value), LF_OK);
  EXPECT_EQ(csc.Get()->SetParam(LF_FILTER_CSC, static_cast<ParamId>(99), nullptr), LF_INVALID_PARAMETER);
  double time = 0;
  EXPECT_EQ(csc.Get()->GetParam(LF_FILTER_CSC, LF_PARAM_TIME_PER_FRAME, &time), LF_OK);
  EXPECT_EQ(time, 0.0);  // the converter keeps no timing and writes nothing
  EXPECT_EQ(csc.Get()->Uninit(LF_FILTER_CSC), LF_OK);
}

}  // namespace
}  // namespace Lumaforge::test
