// Deband on banded material: a smooth gradient with a hard-edged box and a
// wallpaper photograph, each quantised to 5 and 6 bits per sample. In the
// smooth areas the output's large-scale shape must come much closer to the
// original's (the contours' staircase gone), and the real edges must stay
// sharp.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/banding.h"
#include "bench/debander.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::bench {
namespace {

struct Material {
  std::string name;
  LumaPicture original;
};

std::vector<Material> Materials() {
  std::vector<Material> materials = {{"gradient", SmoothGradient(640, 360)}};
  const std::vector<std::string> paths = sr_train::HeldOutPictures(sr_train::kWallpaperDirectory);
  LumaPicture photo;
  std::string error;
  if (!paths.empty() && sr_train::LoadLuma(paths.front(), 1280, photo, error))
    materials.push_back({"photograph", Cropped(photo, photo.width & ~63, photo.height & ~15)});
  return materials;
}

LumaPicture Debanded(const LumaPicture& luma) {
  I420Frame in(luma), out(luma.width, luma.height);
  Debander debander(static_cast<uint32_t>(luma.width), static_cast<uint32_t>(luma.height));
  EXPECT_EQ(debander.Process(in, out), LF_OK);
  return out.Luma();
}

TEST(DebandBandedPictures, ContoursGoAndEdgesStay) {
  const std::vector<Material> materials = Materials();
  if (materials.size() < 2) GTEST_SKIP() << "no wallpaper photograph (Debian: plasma-workspace-wallpapers)";
  std::printf("%-11s %4s %13s %13s %13s %10s %10s %10s %10s\n", "picture", "bits", "stairs orig", "stairs in",
              "stairs out", "error in", "error out", "edges in", "edges out");
  for (const Material& m : materials) {
    // Sky-like areas: every 31x31 square around the pixel spans at most 12 levels.
    const LumaPicture smooth = SmoothMask(m.original, 15, 12);
    const double own = ScoreBanding(m.original, m.original, smooth).staircase;
    for (const int32_t bits : {5, 6}) {
      const LumaPicture banded = Quantised(m.original, bits);
      const LumaPicture out = Debanded(banded);
      const BandingScore before = ScoreBanding(banded, m.original, smooth);
      const BandingScore after = ScoreBanding(out, m.original, smooth);
      const double edgesBefore = EdgeContrast(banded, m.original, 48);
      const double edgesAfter = EdgeContrast(out, m.original, 48);
      std::printf("%-11s %4d %13.4f %13.4f %13.4f %10.3f %10.3f %10.2f %10.2f\n", m.name.c_str(), bits, own,
                  before.staircase, after.staircase, before.smoothError, after.smoothError, edgesBefore, edgesAfter);
      // The staircase beyond the picture's own texture must at least halve.
      EXPECT_LT(after.staircase - own, 0.5 * (before.staircase - own)) << m.name << ", " << bits << " bits";
      EXPECT_GT(edgesAfter, 0.85 * edgesBefore) << m.name << ", " << bits << " bits";
    }
  }
}

}  // namespace
}  // namespace Lumaforge::bench
