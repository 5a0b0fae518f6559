// The Gaussian blur filter through the public interface.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

struct Blur {
  explicit Blur(float sigma = 5.0f) {
    CreateLumaforge(&lf);
    lf->Init(LF_FILTER_GAUSS_BLUR, &sigma, 0);
  }
  ~Blur() { DestroyLumaforge(lf); }
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_GAUSS_BLUR, &in.picture, &out.picture);
  }
  float Sigma() {
    float sigma = 0;
    lf->GetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_BLUR_SIGMA, &sigma);
    return sigma;
  }
  ILumaforge* lf = nullptr;
};

// The blur reads code 31 as one grey plane of width bytes per row (the
// test pictures lay it out as packed 4:2:2, twice as wide).
PlaneLayout BlurGeometry(uint32_t format, uint32_t w, uint32_t h) {
  return LayoutOf(format, FormatReading::kPlanes, w, h);
}

uint8_t& GreyAt(OwnedPicture& picture, uint32_t x, uint32_t y) {
  return picture.memory[0][size_t{y} * picture.picture.width + x];
}

// The first `bytes` bytes of every plane of `picture`.
std::vector<uint8_t> Bytes(const OwnedPicture& picture, const size_t bytes[3]) {
  std::vector<uint8_t> all;
  for (int k = 0; k < 3; ++k) all.insert(all.end(), picture.memory[k].begin(), picture.memory[k].begin() + bytes[k]);
  return all;
}

TEST(GaussBlur, SigmaIsSetByInitAndParameterAndNeverBelowOneHalf) {
  Blur blur(2.5f);
  EXPECT_FLOAT_EQ(blur.Sigma(), 2.5f);
  float sigma = 0.2f;
  EXPECT_EQ(blur.lf->SetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_BLUR_SIGMA, &sigma), LF_OK);
  EXPECT_FLOAT_EQ(blur.Sigma(), 0.5f);
  EXPECT_EQ(blur.lf->SetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_BLUR_SIGMA, nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(blur.lf->Init(LF_FILTER_GAUSS_BLUR, nullptr, 0), LF_OK);  // keeps the sigma
  EXPECT_FLOAT_EQ(blur.Sigma(), 0.5f);
}

// Sigmas that are not finite would make NaN coefficients: they are refused
// and the sigma stays. Huge finite ones are held at 1000, which still blurs.
TEST(GaussBlur, NonFiniteSigmasAreRefusedAndHugeOnesHeld) {
  Blur blur(3.0f);
  for (float bad : {std::nanf(""), INFINITY, -INFINITY}) {
    EXPECT_EQ(blur.lf->SetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_BLUR_SIGMA, &bad), LF_INVALID_PARAMETER);
    EXPECT_EQ(blur.lf->Init(LF_FILTER_GAUSS_BLUR, &bad, 0), LF_INVALID_PARAMETER);
    EXPECT_FLOAT_EQ(blur.Sigma(), 3.0f);
  }
  float huge = 1e30f;
  EXPECT_EQ(blur.lf->SetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_BLUR_SIGMA, &huge), LF_OK);
  EXPECT_FLOAT_EQ(blur.Sigma(), 1000.0f);
  OwnedPicture in(LF_BGRA, 40, 24, 0), out(LF_BGRA, 40, 24, 0);
  in.Fill(200);
  ASSERT_EQ(blur.Run(in, out), LF_OK);
  for (size_t i = 0; i < size_t{40} * 24 * 4; ++i) ASSERT_GE(out.memory[0][i], 199) << i;
}

TEST(GaussBlur, ConstantPicturesStayConstantAtEveryLevel) {
  ForEachCpuLevel([](const CpuLevel& level) {
    for (uint32_t format : {LF_BGRA, LF_I420, LF_VYUY}) {
      for (float sigma : {0.5f, 5.0f, 40.0f}) {
        OwnedPicture in(format, 67, 37, 0), out(format, 67, 37, 0);
        in.Fill(173);
        Blur blur(sigma);
        ASSERT_EQ(blur.Run(in, out), LF_OK);
        const PlaneLayout g = BlurGeometry(format, 67, 37);
        for (int k = 0; k < g.planes; ++k) {
          for (size_t i = 0; i < g.plane[k].rowBytes * g.plane[k].height; ++i) {
            // The recursions start in their steady state; only truncation can lose a unit.
            ASSERT_GE(out.memory[k][i], 172) << level.name << " format " << format << " plane " << k << " at " << i;
            ASSERT_LE(out.memory[k][i], 173) << level.name << " format " << format << " plane " << k << " at " << i;
          }
        }
      }
    }
  });
}

// Across a step edge the blurred profile is the Gaussian's integral:
// 200 * Phi(d / sigma) at signed distance d from the edge.
void ExpectGaussianEdge(float sigma, bool vertical) {
  const uint32_t size = 160;
  OwnedPicture in(LF_VYUY, size, size, 0), out(LF_VYUY, size, size, 0);
  for (uint32_t y = 0; y < size; ++y) {
    for (uint32_t x = 0; x < size; ++x) GreyAt(in, x, y) = ((vertical ? x : y) >= size / 2) ? 200 : 0;
  }
  Blur blur(sigma);
  ASSERT_EQ(blur.Run(in, out), LF_OK);
  for (int d = -2 * static_cast<int>(sigma); d <= 2 * static_cast<int>(sigma); ++d) {
    const uint32_t across = static_cast<uint32_t>(static_cast<int>(size / 2) + d);
    const uint8_t value = vertical ? GreyAt(out, across, size / 2) : GreyAt(out, size / 2, across);
    const double centre = d + 0.5;  // the pixel's centre relative to the edge
    const double expected = 200.0 * 0.5 * std::erfc(-centre / (sigma * std::sqrt(2.0)));
    EXPECT_NEAR(value, expected, 6.0) << "sigma " << sigma << (vertical ? " across columns" : " across rows")
                                      << " at distance " << d;
  }
}

TEST(GaussBlur, StepEdgesFollowTheGaussianOfTheChosenSigmaInBothDirections) {
  for (float sigma : {2.0f, 5.0f, 12.0f}) {
    ExpectGaussianEdge(sigma, true);
    ExpectGaussianEdge(sigma, false);
  }
}

TEST(GaussBlur, EveryLevelGivesTheSameBytes) {
  for (uint32_t format : {LF_BGRA, LF_I420, LF_VYUY}) {
    for (uint32_t width : {1u, 7u, 33u, 130u}) {
      std::vector<uint8_t> first;
      ForEachCpuLevel([&](const CpuLevel& level) {
        OwnedPicture in(format, width, 29, 0), out(format, width, 29, 0);
        in.FillRandom(width * 31 + format);
        Blur blur(3.0f);
        ASSERT_EQ(blur.Run(in, out), LF_OK);
        const PlaneLayout g = BlurGeometry(format, width, 29);
        const size_t bytes[3] = {g.plane[0].rowBytes * g.plane[0].height, g.plane[1].rowBytes * g.plane[1].height,
                                 g.plane[2].rowBytes * g.plane[2].height};
        const std::vector<uint8_t> result = Bytes(out, bytes);
        if (first.empty()) first = result;
        EXPECT_EQ(result, first) << level.name << " format " << format << " width " << width;
      });
    }
  }
}

TEST(GaussBlur, PlanesAreReadAsIfTheirRowsWerePacked) {
  // Strides are not consulted: a padded I420 picture is read as a packed one
  // starting at the same bytes.
  OwnedPicture padded(LF_I420, 40, 20, 24), packed(LF_I420, 40, 20, 0);
  padded.FillRandom(5);
  for (int k = 0; k < 3; ++k) {
    std::memcpy(packed.memory[k].data(), padded.memory[k].data(), packed.memory[k].size());
  }
  OwnedPicture paddedOut(LF_I420, 40, 20, 24), packedOut(LF_I420, 40, 20, 0);
  Blur blur;
  ASSERT_EQ(blur.Run(padded, paddedOut), LF_OK);
  ASSERT_EQ(blur.Run(packed, packedOut), LF_OK);
  const size_t bytes[3] = {40 * 20, 20 * 10, 20 * 10};
  EXPECT_EQ(Bytes(paddedOut, bytes), Bytes(packedOut, bytes));
}

TEST(GaussBlur, BuffersFollowChangingShapesAndChannelCounts) {
  // One filter fed pictures of growing, shrinking and re-shaped sizes gives
  // what a fresh filter gives for each.
  struct Case {
    uint32_t format, width, height;
  };
  const Case cases[] = {{LF_BGRA, 64, 48}, {LF_I420, 200, 30}, {LF_I420, 30, 200}, {LF_VYUY, 8, 8}, {LF_BGRA, 90, 70}};
  Blur shared;
  for (const Case& c : cases) {
    OwnedPicture in(c.format, c.width, c.height, 0), out(c.format, c.width, c.height, 0),
        fresh(c.format, c.width, c.height, 0);
    in.FillRandom(c.width + c.height);
    ASSERT_EQ(shared.Run(in, out), LF_OK);
    Blur own;
    ASSERT_EQ(own.Run(in, fresh), LF_OK);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(out.memory[k], fresh.memory[k]) << c.width << "x" << c.height;
  }
}

TEST(GaussBlur, RefusesUnsupportedFormatsAndMissingPlanes) {
  Blur blur;
  OwnedPicture rgb24(LF_RGB24, 16, 16, 0), nv12(LF_NV12, 16, 16, 0);
  EXPECT_EQ(blur.Run(rgb24, rgb24), LF_UNSUPPORTED);
  EXPECT_EQ(blur.Run(nv12, nv12), LF_UNSUPPORTED);
  OwnedPicture in(LF_I420, 16, 16, 0), out(LF_I420, 16, 16, 0);
  out.picture.planes[2] = nullptr;
  EXPECT_EQ(blur.Run(in, out), LF_INVALID_PARAMETER);
  EXPECT_EQ(blur.lf->Process(LF_FILTER_GAUSS_BLUR, nullptr, &out.picture), LF_INVALID_PARAMETER);

  out.picture.planes[2] = out.memory[2].data();
  ASSERT_EQ(blur.Run(in, out), LF_OK);
  double us = -1;
  EXPECT_EQ(blur.lf->GetParam(LF_FILTER_GAUSS_BLUR, LF_PARAM_TIME_PER_FRAME, &us), LF_OK);
  EXPECT_GE(us, 0.0);
}

}  // namespace
}  // namespace Lumaforge::test
