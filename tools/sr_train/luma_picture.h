// 8-bit luma pictures: loading a photograph, the 2x2 area average that
// models a camera's or encoder's downscale, and mild sensor-like noise.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_LUMA_PICTURE_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_LUMA_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace Lumaforge::sr_train {

struct LumaPicture {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;  // rows of `width` bytes

  LumaPicture() = default;
  LumaPicture(int32_t w, int32_t h) : width(w), height(h), pixels(static_cast<size_t>(w) * h) {}
  uint8_t At(int32_t x, int32_t y) const { return pixels[static_cast<size_t>(y) * width + x]; }
  uint8_t& At(int32_t x, int32_t y) { return pixels[static_cast<size_t>(y) * width + x]; }
};

// The BT.601 limited-range luma of any picture stb_image reads, cropped to
// even sizes and halved by area averaging while wider than `maxWidth`.
// Returns false (with a reason in `error`) when the file cannot be read.
bool LoadLuma(const std::string& path, int32_t maxWidth, LumaPicture& luma, std::string& error);

// Each output pixel is (a + b + c + d + 2) >> 2 of its 2x2 source block;
// `source` has even sizes.
LumaPicture HalveByAreaAverage(const LumaPicture& source);

// One of the eight symmetries of the square: bit 2 transposes, then bit 0
// mirrors left to right and bit 1 top to bottom. They commute with the 2x2
// area average on even sizes, so a picture pair stays a pair.
LumaPicture Transformed(const LumaPicture& picture, int32_t symmetry);

// Adds rounded Gaussian noise of deviation `sigma`, clamped to 0..255. The
// normal deviates come from `random` through the Box-Muller transform, so
// the result does not depend on the standard library's distributions.
void AddGaussianNoise(LumaPicture& picture, double sigma, std::mt19937& random);

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_LUMA_PICTURE_H_
