#include "tools/sr_train/luma_picture.h"

#include <stb_image.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace Lumaforge::sr_train {
namespace {

// Drops an odd last column and row: the upscaler's blocks are 2x2 sources.
LumaPicture CropToEvenSize(const LumaPicture& picture) {
  LumaPicture even(picture.width & ~1, picture.height & ~1);
  for (int32_t y = 0; y < even.height; ++y)
    for (int32_t x = 0; x < even.width; ++x) even.At(x, y) = picture.At(x, y);
  return even;
}

}  // namespace

bool LoadLuma(const std::string& path, int32_t maxWidth, LumaPicture& luma, std::string& error) {
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, void (*)(void*)> rgb(stbi_load(path.c_str(), &width, &height, &channels, 3),
                                                      stbi_image_free);
  if (!rgb) {
    error = stbi_failure_reason();
    return false;
  }
  LumaPicture picture(width & ~1, height & ~1);
  for (int32_t y = 0; y < picture.height; ++y) {
    const stbi_uc* row = rgb.get() + static_cast<size_t>(y) * width * 3;
    for (int32_t x = 0; x < picture.width; ++x) {
      const int32_t r = row[3 * x], g = row[3 * x + 1], b = row[3 * x + 2];
      picture.At(x, y) = static_cast<uint8_t>(((66 * r + 129 * g + 25 * b + 128) >> 8) + 16);
    }
  }
  while (picture.width > maxWidth) picture = CropToEvenSize(HalveByAreaAverage(picture));
  luma = std::move(picture);
  return true;
}

LumaPicture HalveByAreaAverage(const LumaPicture& source) {
  LumaPicture half(source.width / 2, source.height / 2);
  for (int32_t y = 0; y < half.height; ++y) {
    for (int32_t x = 0; x < half.width; ++x) {
      const int32_t sum = source.At(2 * x, 2 * y) + source.At(2 * x + 1, 2 * y) + source.At(2 * x, 2 * y + 1) +
                          source.At(2 * x + 1, 2 * y + 1);
      half.At(x, y) = static_cast<uint8_t>((sum + 2) >> 2);
    }
  }
  return half;
}

LumaPicture Transformed(const LumaPicture& picture, int32_t symmetry) {
  const bool transpose = symmetry & 4;
  LumaPicture result(transpose ? picture.height : picture.width, transpose ? picture.width : picture.height);
  for (int32_t y = 0; y < result.height; ++y) {
    for (int32_t x = 0; x < result.width; ++x) {
      const int32_t sx = symmetry & 1 ? result.width - 1 - x : x;
      const int32_t sy = symmetry & 2 ? result.height - 1 - y : y;
      result.At(x, y) = transpose ? picture.At(sy, sx) : picture.At(sx, sy);
    }
  }
  return result;
}

void AddGaussianNoise(LumaPicture& picture, double sigma, std::mt19937& random) {
  // Uniform in (0, 1): never 0, so the logarithm stays finite.
  const auto uniform = [&random] { return (static_cast<double>(random()) + 0.5) / 4294967296.0; };
  for (size_t i = 0; i < picture.pixels.size(); i += 2) {
    const double radius = sigma * std::sqrt(-2.0 * std::log(uniform()));
    const double angle = 2.0 * std::numbers::pi * uniform();
    const double deviates[2] = {radius * std::cos(angle), radius * std::sin(angle)};
    for (size_t j = 0; j < 2 && i + j < picture.pixels.size(); ++j) {
      const long value = picture.pixels[i + j] + std::lround(deviates[j]);
      picture.pixels[i + j] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    }
  }
}

}  // namespace Lumaforge::sr_train
