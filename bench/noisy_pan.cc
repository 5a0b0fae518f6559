#include "bench/noisy_pan.h"

#include <cstring>
#include <random>

namespace Lumaforge::bench {
namespace {

LumaPicture Window(const LumaPicture& photo, int32_t x0, int32_t y0, int32_t width, int32_t height) {
  LumaPicture window(width, height);
  for (int32_t y = 0; y < height; ++y)
    std::memcpy(&window.pixels[static_cast<size_t>(y) * width],
                &photo.pixels[static_cast<size_t>(y0 + y) * photo.width + x0], static_cast<size_t>(width));
  return window;
}

// Appends a frame: its clean luma, then luma and chroma with noise.
void AddNoisyFrame(PanClip& clip, LumaPicture luma, LumaPicture chroma, double sigma, std::mt19937& random) {
  clip.cleanLuma.push_back(luma);
  sr_train::AddGaussianNoise(luma, sigma, random);
  sr_train::AddGaussianNoise(chroma, sigma, random);
  clip.noisy.emplace_back(luma, &chroma);
}

LumaPicture HalfPhoto(const LumaPicture& photo) {
  return sr_train::HalveByAreaAverage(Cropped(photo, photo.width & ~1, photo.height & ~1));
}

}  // namespace

PanClip MakeNoisyPan(const LumaPicture& photo, int32_t width, int32_t height, int32_t frames, int32_t stepX,
                     int32_t stepY, double sigma, uint32_t seed) {
  const LumaPicture halfPhoto = HalfPhoto(photo);
  std::mt19937 random(seed);
  PanClip clip;
  for (int32_t i = 0; i < frames; ++i) {
    const int32_t x0 = i * stepX, y0 = i * stepY;
    AddNoisyFrame(clip, Window(photo, x0, y0, width, height), Window(halfPhoto, x0 / 2, y0 / 2, width / 2, height / 2),
                  sigma, random);
  }
  return clip;
}

PanClip MakeMovingSquare(const LumaPicture& photo, int32_t width, int32_t height, int32_t frames, int32_t side,
                         int32_t step, double sigma, uint32_t seed) {
  const LumaPicture halfPhoto = HalfPhoto(photo);
  const LumaPicture square = Window(photo, photo.width - side, photo.height - side, side, side);
  std::mt19937 random(seed);
  PanClip clip;
  const int32_t top = (height - side) / 2 & ~1;
  for (int32_t i = 0; i < frames; ++i) {
    LumaPicture luma = Window(photo, 0, 0, width, height);
    const int32_t left = (8 + i * step) % (width - side - 16) & ~1;
    for (int32_t y = 0; y < side; ++y)
      std::memcpy(&luma.pixels[static_cast<size_t>(top + y) * width + left],
                  &square.pixels[static_cast<size_t>(y) * side], static_cast<size_t>(side));
    const int32_t margin = 8;
    clip.moving.push_back({left - margin, top - margin, side + 2 * margin, side + 2 * margin});
    AddNoisyFrame(clip, std::move(luma), Window(halfPhoto, 0, 0, width / 2, height / 2), sigma, random);
  }
  return clip;
}

double MeanLumaPsnr(const PanClip& clip, const std::vector<I420Frame>& frames, bool onlyMoving) {
  double sum = 0;
  for (size_t i = 0; i < frames.size(); ++i) {
    const LumaPicture luma = frames[i].Luma();
    if (!onlyMoving) {
      sum += Psnr(luma, clip.cleanLuma[i]);
      continue;
    }
    const Region& r = clip.moving[i];
    sum += Psnr(Window(luma, r.x, r.y, r.width, r.height), Window(clip.cleanLuma[i], r.x, r.y, r.width, r.height));
  }
  return sum / static_cast<double>(frames.size());
}

}  // namespace Lumaforge::bench
