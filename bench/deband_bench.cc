// Deband beside FFmpeg's deband and gradfun (default settings), run through
// libavfilter in the same process on the same frames.
//
// Quality: a smooth gradient with a hard-edged box and a held-out wallpaper
// photograph, 1920x1080, quantised to 5 and 6 bits: the staircase measure of
// bench/banding.h over the smooth areas (the original's own value beside
// it), the mean error there, and the edge contrast.
// Speed: the 6-bit photograph, each filter in turn frame by frame, one
// thread each; medians.
//
//   deband_bench [frames]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/avfilter_peer.h"
#include "bench/banding.h"
#include "bench/debander.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::bench {
namespace {

constexpr int32_t kWidth = 1920, kHeight = 1080;
using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }
double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

LumaPicture Ours(const LumaPicture& luma) {
  I420Frame in(luma), out(kWidth, kHeight);
  Debander debander(kWidth, kHeight);
  debander.Process(in, out);
  return out.Luma();
}

LumaPicture Peer(const char* filter, const LumaPicture& luma) {
  AvFilterPeer peer(filter, kWidth, kHeight);
  I420Frame in(luma), out(kWidth, kHeight);
  peer.Load(in);
  if (!peer.Run()) return luma;
  peer.Store(out);
  return out.Luma();
}

void Quality(const std::vector<std::pair<std::string, LumaPicture>>& materials) {
  std::printf("Quality over the smooth areas (31x31 squares within 12 levels); stairs: lower is smoother\n");
  std::printf("%-11s %4s %8s %8s %8s %8s %8s | %7s %7s %7s %7s | %6s %6s %6s %6s\n", "picture", "bits", "orig",
              "banded", "ours", "deband", "gradfun", "err in", "ours", "deband", "gradfun", "edge", "ours", "deband",
              "gradfun");
  for (const auto& [name, original] : materials) {
    const LumaPicture smooth = SmoothMask(original, 15, 12);
    const double own = ScoreBanding(original, original, smooth).staircase;
    for (const int32_t bits : {5, 6}) {
      const LumaPicture banded = Quantised(original, bits);
      const LumaPicture outs[3] = {Ours(banded), Peer("deband", banded), Peer("gradfun", banded)};
      const BandingScore in = ScoreBanding(banded, original, smooth);
      std::printf("%-11s %4d %8.4f %8.4f", name.c_str(), bits, own, in.staircase);
      for (const LumaPicture& o : outs) std::printf(" %8.4f", ScoreBanding(o, original, smooth).staircase);
      std::printf(" | %7.3f", in.smoothError);
      for (const LumaPicture& o : outs) std::printf(" %7.3f", ScoreBanding(o, original, smooth).smoothError);
      std::printf(" | %6.1f", EdgeContrast(banded, original, 48));
      for (const LumaPicture& o : outs) std::printf(" %6.1f", EdgeContrast(o, original, 48));
      std::printf("\n");
    }
  }
  std::printf("\n");
}

void Speed(const LumaPicture& photo, int32_t frames) {
  const LumaPicture banded = Quantised(photo, 6);
  I420Frame in(banded), out(kWidth, kHeight);
  Debander ours(kWidth, kHeight);
  AvFilterPeer deband("deband", kWidth, kHeight), gradfun("gradfun", kWidth, kHeight);
  std::vector<double> oursMs, debandMs, gradfunMs;
  for (int32_t i = 0; i < frames; ++i) {
    auto start = Clock::now();
    ours.Process(in, out);
    oursMs.push_back(Milliseconds(Clock::now() - start));
    for (auto [peer, times] : {std::pair{&deband, &debandMs}, std::pair{&gradfun, &gradfunMs}}) {
      peer->Load(in);
      start = Clock::now();
      peer->Run();
      times->push_back(Milliseconds(Clock::now() - start));
    }
  }
  const double o = Median(oursMs), d = Median(debandMs);
  std::printf("Speed: %dx%d I420, default settings, %d frames, processor tier %d; ms per frame (medians)\n", kWidth,
              kHeight, frames, GetLumaforgeArch());
  std::printf("%10s %10s %10s %14s\n", "ours", "deband", "gradfun", "ours/deband");
  std::printf("%10.3f %10.3f %10.3f %14.2f\n", o, d, Median(gradfunMs), o / d);
}

}  // namespace
}  // namespace Lumaforge::bench

int main(int argc, char** argv) {
  using namespace Lumaforge::bench;
  const int32_t frames = argc > 1 ? std::max(5, std::atoi(argv[1])) : 30;
  const std::vector<std::string> paths = Lumaforge::sr_train::HeldOutPictures(Lumaforge::sr_train::kWallpaperDirectory);
  LumaPicture photo;
  std::string error;
  if (paths.empty() || !Lumaforge::sr_train::LoadLuma(paths.front(), 3840, photo, error) || photo.width < kWidth ||
      photo.height < kHeight) {
    std::fprintf(stderr, "deband_bench: needs a wallpaper of at least 1920x1080 (plasma-workspace-wallpapers)\n");
    return 1;
  }
  const LumaPicture window = Cropped(photo, kWidth, kHeight);
  std::printf("photograph: %s (top-left 1920x1080)\n\n", paths.front().c_str());
  Quality({{"gradient", SmoothGradient(kWidth, kHeight)}, {"photograph", window}});
  Speed(window, frames);
  return 0;
}
