// Super resolution on photographs the coefficient file was not trained on
// (the training tool's held-out wallpapers): every mode must recover more of
// the original than libyuv's bilinear upscale of the same reduced picture,
// and the trained filters more than the plain 2x formula alone.
#include <gtest/gtest.h>

#include <libyuv.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "bench/sr_upscaler.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::bench {
namespace {

constexpr size_t kPictures = 3;
constexpr int32_t kMaxWidth = 1280;

// Originals cropped to multiples of 12, so both the 2x and the 2/3
// reductions come out even.
std::vector<LumaPicture> HeldOutOriginals() {
  std::vector<LumaPicture> originals;
  for (const std::string& path : sr_train::HeldOutPictures(sr_train::kWallpaperDirectory)) {
    if (originals.size() == kPictures) break;
    LumaPicture luma;
    std::string error;
    if (!sr_train::LoadLuma(path, kMaxWidth, luma, error)) continue;
    originals.push_back(Cropped(luma, luma.width / 12 * 12, luma.height / 12 * 12));
  }
  return originals;
}

LumaPicture BoxReduced(const LumaPicture& original, int32_t width, int32_t height) {
  LumaPicture reduced(width, height);
  libyuv::ScalePlane(original.pixels.data(), original.width, original.width, original.height, reduced.pixels.data(),
                     width, width, height, libyuv::kFilterBox);
  return reduced;
}

struct Scores {
  std::vector<double> psnr;
  double Mean() const {
    double sum = 0;
    for (const double p : psnr) sum += p;
    return sum / static_cast<double>(psnr.size());
  }
};

class SrPhotographs : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { s_originals = new std::vector<LumaPicture>(HeldOutOriginals()); }
  static void TearDownTestSuite() { delete s_originals; }

  void SetUp() override {
    if (s_originals->size() < kPictures)
      GTEST_SKIP() << "the held-out wallpapers are missing (Debian: plasma-workspace-wallpapers)";
  }

  // PSNR of `upscale` on every original, enlarging `reduce`'s result back.
  template <typename Reduce, typename Upscale>
  static Scores Measure(const char* title, Reduce reduce, Upscale upscale) {
    Scores scores;
    std::printf("%-22s", title);
    for (const LumaPicture& original : *s_originals) {
      const LumaPicture result = upscale(reduce(original), original.width, original.height);
      EXPECT_EQ(result.width, original.width) << title << " refused the picture";
      if (result.width != original.width) return scores;
      scores.psnr.push_back(Psnr(result, original));
      std::printf(" %8.3f", scores.psnr.back());
    }
    std::printf("   mean %.3f dB\n", scores.Mean());
    return scores;
  }

  static std::vector<LumaPicture>* s_originals;
};

std::vector<LumaPicture>* SrPhotographs::s_originals = nullptr;

LumaPicture Halved(const LumaPicture& original) { return sr_train::HalveByAreaAverage(original); }
LumaPicture TwoThirds(const LumaPicture& original) {
  return BoxReduced(original, original.width * 2 / 3, original.height * 2 / 3);
}

TEST_F(SrPhotographs, TwiceTheSizeBeatsBilinearAndTheTrainedFiltersBeatThePlainFormula) {
  // A file with no class lines: every pixel takes the plain formula.
  const std::string emptyFile = ::testing::TempDir() + "sr_no_classes.txt";
  std::ofstream(emptyFile) << "\n";
  SrUpscaler enhanced(SrMode::kEnhanced2x), standard(SrMode::kStandard2x),
      plain(SrMode::kEnhanced2x, emptyFile.c_str());
  auto with = [](SrUpscaler& upscaler) {
    return [&upscaler](const LumaPicture& s, int32_t w, int32_t h) { return upscaler.Upscale(s, w, h); };
  };
  const Scores bilinear = Measure("2x libyuv bilinear", Halved, LibyuvBilinear);
  const Scores plainScores = Measure("2x plain formula", Halved, with(plain));
  const Scores standardScores = Measure("2x standard", Halved, with(standard));
  const Scores enhancedScores = Measure("2x enhanced", Halved, with(enhanced));
  // On a smooth, dark photograph bilinear can come out ahead; on average
  // it must not.
  EXPECT_GT(enhancedScores.Mean(), bilinear.Mean() + 0.5);
  EXPECT_GT(enhancedScores.Mean(), plainScores.Mean() + 0.5);
  EXPECT_GT(standardScores.Mean(), bilinear.Mean() + 0.5);
}

TEST_F(SrPhotographs, OneAndAHalfTimesTheSizeBeatsBilinear) {
  SrUpscaler standard(SrMode::kStandard15), alternative(SrMode::kAlternative15);
  auto with = [](SrUpscaler& upscaler) {
    return [&upscaler](const LumaPicture& s, int32_t w, int32_t h) { return upscaler.Upscale(s, w, h); };
  };
  const Scores bilinear = Measure("1.5x libyuv bilinear", TwoThirds, LibyuvBilinear);
  const Scores standardScores = Measure("1.5x standard", TwoThirds, with(standard));
  const Scores alternativeScores = Measure("1.5x alternative", TwoThirds, with(alternative));
  EXPECT_GT(standardScores.Mean(), bilinear.Mean() + 0.5);
  EXPECT_GT(alternativeScores.Mean(), bilinear.Mean() + 0.5);
}

}  // namespace
}  // namespace Lumaforge::bench
