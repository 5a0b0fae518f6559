// Denoise beside FFmpeg's hqdn3d and atadenoise (default settings), run
// through libavfilter in the same process on the same frames.
//
// Quality: a 1920x1080 pan over a held-out wallpaper with Gaussian noise of
// deviation 3, 6, 12 and 20 (fixed seed); mean luma PSNR against the clean
// clip for every level of the filter and both peers.
// Speed: the same clip at deviation 6, each mode of the filter alternating
// frame by frame with hqdn3d and atadenoise, one thread each; medians.
//
//   denoise_bench [frames] [speed]   ("speed": the speed table only)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/avfilter_peer.h"
#include "bench/denoiser.h"
#include "bench/noisy_pan.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::bench {
namespace {

constexpr int32_t kWidth = 1920, kHeight = 1080;
constexpr const char* kModeNames[5] = {"automatic", "1 weak", "2 strong", "3 very strong", "4 super strong"};

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

PanClip Clip(const LumaPicture& photo, int32_t frames, double sigma) {
  const int32_t stepX = std::max(0, (photo.width - kWidth) / frames) & ~1;
  const int32_t stepY = std::max(0, (photo.height - kHeight) / frames) & ~1;
  return MakeNoisyPan(photo, kWidth, kHeight, frames, std::min(stepX, 4), std::min(stepY, 2), sigma, 2024);
}

std::vector<I420Frame> OursOn(const PanClip& clip, int32_t level) {
  Denoiser denoiser(level, kWidth, kHeight);
  std::vector<I420Frame> out;
  for (const I420Frame& frame : clip.noisy) {
    out.push_back(frame.Clone());
    denoiser.Process(out.back());
  }
  return out;
}

// The peer's outputs, paired with the inputs in order (a temporal peer's
// last frames stay inside it).
std::vector<I420Frame> PeerOn(const PanClip& clip, const char* filter) {
  AvFilterPeer peer(filter, kWidth, kHeight);
  std::vector<I420Frame> out;
  for (const I420Frame& frame : clip.noisy) {
    peer.Load(frame);
    if (!peer.Run()) continue;
    out.emplace_back(kWidth, kHeight);
    peer.Store(out.back());
  }
  return out;
}

void Quality(const LumaPicture& photo, int32_t frames) {
  std::printf("Quality: mean luma PSNR (dB) against the clean clip, %dx%d, %d frames\n", kWidth, kHeight, frames);
  std::printf("%-6s %8s", "sigma", "noisy");
  for (int32_t level = 0; level <= 4; ++level)
    std::printf(" %8s", level ? ("level " + std::to_string(level)).c_str() : "auto");
  std::printf(" %8s %10s\n", "hqdn3d", "atadenoise");
  for (const double sigma : {3.0, 6.0, 12.0, 20.0}) {
    const PanClip clip = Clip(photo, frames, sigma);
    std::printf("%-6.0f %8.2f", sigma, MeanLumaPsnr(clip, clip.noisy));
    for (int32_t level = 0; level <= 4; ++level) std::printf(" %8.2f", MeanLumaPsnr(clip, OursOn(clip, level)));
    std::printf(" %8.2f %10.2f\n", MeanLumaPsnr(clip, PeerOn(clip, "hqdn3d")),
                MeanLumaPsnr(clip, PeerOn(clip, "atadenoise")));
  }
  std::printf("\n");
}

void Speed(const LumaPicture& photo, int32_t frames) {
  const PanClip clip = Clip(photo, frames, 6.0);
  std::printf("Speed: %dx%d I420 in place, sigma 6, %d frames per mode, processor tier %d; ms per frame (medians)\n",
              kWidth, kHeight, frames, GetLumaforgeArch());
  std::printf("%-16s %9s %9s %11s %12s\n", "mode", "denoise", "hqdn3d", "atadenoise", "denoise/hqdn");
  for (const int32_t level : {1, 2, 3, 4, 0}) {
    Denoiser ours(level, kWidth, kHeight);
    AvFilterPeer hqdn3d("hqdn3d", kWidth, kHeight), ata("atadenoise", kWidth, kHeight);
    std::vector<double> oursMs, hqdn3dMs, ataMs;
    for (const I420Frame& frame : clip.noisy) {
      I420Frame work = frame.Clone();
      auto start = Clock::now();
      ours.Process(work);
      oursMs.push_back(Milliseconds(Clock::now() - start));
      hqdn3d.Load(frame);
      start = Clock::now();
      hqdn3d.Run();
      hqdn3dMs.push_back(Milliseconds(Clock::now() - start));
      ata.Load(frame);
      start = Clock::now();
      ata.Run();
      ataMs.push_back(Milliseconds(Clock::now() - start));
    }
    const double o = Median(oursMs), h = Median(hqdn3dMs);
    std::printf("%-16s %9.3f %9.3f %11.3f %12.2f\n", kModeNames[level], o, h, Median(ataMs), o / h);
    if (level == 0) {
      // Frames 1 .. 5 of the interval estimate the noise (frame 0 has no
      // reference yet); the others run at the level they chose.
      const std::vector<double> estimating(oursMs.begin() + 1, oursMs.begin() + 6);
      const std::vector<double> settled(oursMs.begin() + 6, oursMs.end());
      std::printf("%-16s %9.3f (frames 1-5), %.3f after: %.2f times\n", "  estimating", Median(estimating),
                  Median(settled), Median(estimating) / Median(settled));
    }
  }
}

}  // namespace
}  // namespace Lumaforge::bench

int main(int argc, char** argv) {
  using namespace Lumaforge::bench;
  const int32_t frames = argc > 1 ? std::max(8, std::atoi(argv[1])) : 30;
  const std::vector<std::string> paths = Lumaforge::sr_train::HeldOutPictures(Lumaforge::sr_train::kWallpaperDirectory);
  LumaPicture photo;
  std::string error;
  if (paths.empty() || !Lumaforge::sr_train::LoadLuma(paths.front(), 3840, photo, error) || photo.width < kWidth ||
      photo.height < kHeight) {
    std::fprintf(stderr, "denoise_bench: needs a wallpaper of at least 1920x1080 (plasma-workspace-wallpapers)\n");
    return 1;
  }
  std::printf("photograph: %s (%dx%d)\n\n", paths.front().c_str(), photo.width, photo.height);
  if (argc <= 2 || std::string(argv[2]) != "speed") Quality(photo, frames);
  Speed(photo, frames);
  return 0;
}
