#include "bench/banding.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace Lumaforge::bench {

LumaPicture SmoothGradient(int32_t width, int32_t height) {
  LumaPicture p(width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const double dx = x - width * 0.7, dy = y - height * 0.3;
      const double radial = std::sqrt(dx * dx + dy * dy) / std::sqrt(double(width) * width + double(height) * height);
      const double v = 40 + 100.0 * x / width + 60.0 * y / height - 50 * radial;
      p.At(x, y) = static_cast<uint8_t>(std::lround(v < 0 ? 0 : v > 255 ? 255 : v));
    }
  }
  // A box outline with hard edges.
  const int32_t x0 = width / 3, x1 = 2 * width / 3, y0 = height / 3, y1 = 2 * height / 3;
  for (int32_t y = y0; y < y1; ++y) {
    for (int32_t x = x0; x < x1; ++x) {
      const bool border = x < x0 + 4 || x >= x1 - 4 || y < y0 + 4 || y >= y1 - 4;
      if (border) p.At(x, y) = 16;
    }
  }
  return p;
}

LumaPicture Quantised(const LumaPicture& picture, int32_t bits) {
  LumaPicture q = picture;
  const int32_t step = 1 << (8 - bits);
  for (uint8_t& v : q.pixels) v = static_cast<uint8_t>((v / step) * step + step / 2);
  return q;
}

LumaPicture SmoothMask(const LumaPicture& original, int32_t radius, int32_t range) {
  // Row ranges first, then the columns of those.
  const int32_t w = original.width, h = original.height;
  std::vector<uint8_t> rowLo(original.pixels.size()), rowHi(original.pixels.size());
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      int32_t lo = 255, hi = 0;
      for (int32_t xx = std::max(0, x - radius); xx <= std::min(w - 1, x + radius); ++xx) {
        lo = std::min<int32_t>(lo, original.At(xx, y));
        hi = std::max<int32_t>(hi, original.At(xx, y));
      }
      rowLo[static_cast<size_t>(y) * w + x] = static_cast<uint8_t>(lo);
      rowHi[static_cast<size_t>(y) * w + x] = static_cast<uint8_t>(hi);
    }
  }
  LumaPicture mask(w, h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      int32_t lo = 255, hi = 0;
      for (int32_t yy = std::max(0, y - radius); yy <= std::min(h - 1, y + radius); ++yy) {
        lo = std::min<int32_t>(lo, rowLo[static_cast<size_t>(yy) * w + x]);
        hi = std::max<int32_t>(hi, rowHi[static_cast<size_t>(yy) * w + x]);
      }
      mask.At(x, y) = hi - lo <= range;
    }
  }
  return mask;
}

namespace {

// The 5x5 box average, in sixteenths of a level; edges clamped.
std::vector<int32_t> BoxAverage(const LumaPicture& p) {
  std::vector<int32_t> out(p.pixels.size());
  for (int32_t y = 0; y < p.height; ++y) {
    for (int32_t x = 0; x < p.width; ++x) {
      int32_t sum = 0;
      for (int32_t dy = -2; dy <= 2; ++dy) {
        for (int32_t dx = -2; dx <= 2; ++dx) {
          const int32_t yy = std::clamp(y + dy, 0, p.height - 1), xx = std::clamp(x + dx, 0, p.width - 1);
          sum += p.At(xx, yy);
        }
      }
      out[static_cast<size_t>(y) * p.width + x] = sum * 16 / 25;
    }
  }
  return out;
}

}  // namespace

BandingScore ScoreBanding(const LumaPicture& picture, const LumaPicture& original, const LumaPicture& smooth) {
  const std::vector<int32_t> a = BoxAverage(picture);
  const int32_t w = picture.width, h = picture.height;
  auto at = [&](int32_t x, int32_t y) { return static_cast<int64_t>(a[static_cast<size_t>(y) * w + x]); };
  int64_t pixels = 0, energy = 0, error = 0;
  for (int32_t y = 2; y + 2 < h; ++y) {
    for (int32_t x = 2; x + 2 < w; ++x) {
      if (!smooth.At(x, y)) continue;
      ++pixels;
      const int64_t across = at(x - 2, y) - 2 * at(x, y) + at(x + 2, y);
      const int64_t down = at(x, y - 2) - 2 * at(x, y) + at(x, y + 2);
      energy += across * across + down * down;
      error += std::abs(picture.At(x, y) - original.At(x, y));
    }
  }
  if (pixels == 0) return {0, 0};
  return {static_cast<double>(energy) / 256.0 / static_cast<double>(pixels),
          static_cast<double>(error) / static_cast<double>(pixels)};
}

double EdgeContrast(const LumaPicture& picture, const LumaPicture& original, int32_t threshold) {
  int64_t sum = 0, count = 0;
  for (int32_t y = 0; y + 1 < picture.height; ++y) {
    for (int32_t x = 0; x + 1 < picture.width; ++x) {
      const int32_t v = original.At(x, y);
      if (std::abs(original.At(x + 1, y) - v) <= threshold && std::abs(original.At(x, y + 1) - v) <= threshold)
        continue;
      const int32_t p = picture.At(x, y);
      sum += std::abs(picture.At(x + 1, y) - p) + std::abs(picture.At(x, y + 1) - p);
      ++count;
    }
  }
  return count ? static_cast<double>(sum) / static_cast<double>(count) : 0.0;
}

}  // namespace Lumaforge::bench
