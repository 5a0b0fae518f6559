#include "tools/sr_train/upscalers.h"

#include <algorithm>
#include <cmath>

namespace Lumaforge::sr_train {
namespace {

int32_t Clamp(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : v > hi ? hi : v; }

void Store(LumaPicture& target, int32_t x, int32_t y, const uint8_t out[kSrPositions]) {
  target.At(2 * x, 2 * y) = out[0];
  target.At(2 * x + 1, 2 * y) = out[1];
  target.At(2 * x, 2 * y + 1) = out[2];
  target.At(2 * x + 1, 2 * y + 1) = out[3];
}

// Keys' cubic convolution kernel with a = -0.5.
double Keys(double t) {
  constexpr double a = -0.5;
  t = std::fabs(t);
  if (t <= 1) return ((a + 2) * t - (a + 3)) * t * t + 1;
  if (t < 2) return ((a * t - 5 * a) * t + 8 * a) * t - 4 * a;
  return 0;
}

}  // namespace

void GatherNeighbourhood(const LumaPicture& source, int32_t x, int32_t y, uint8_t p[kSrTaps]) {
  for (int32_t dy = -1; dy <= 1; ++dy) {
    const int32_t row = Clamp(y + dy, 0, source.height - 1);
    for (int32_t dx = -1; dx <= 1; ++dx) *p++ = source.At(Clamp(x + dx, 0, source.width - 1), row);
  }
}

std::vector<uint8_t> FlatBlockMap(const LumaPicture& source) {
  std::vector<uint8_t> flatPixel(source.pixels.size());
  for (int32_t y = 0; y < source.height; ++y) {
    for (int32_t x = 0; x < source.width; ++x) {
      uint8_t p[kSrTaps];
      GatherNeighbourhood(source, x, y, p);
      const auto [lo, hi] = std::minmax_element(p, p + kSrTaps);
      flatPixel[static_cast<size_t>(y) * source.width + x] = *hi - *lo < kSrFlatRange;
    }
  }
  std::vector<uint8_t> flatBlock(source.pixels.size());
  for (int32_t by = 0; by < source.height; by += 2) {
    const int32_t rows = std::min(2, source.height - by);
    for (int32_t bx = 0; bx < source.width; bx += 2) {
      const int32_t columns = std::min(2, source.width - bx);
      uint8_t flat = 1;
      for (int32_t y = by; y < by + rows; ++y)
        for (int32_t x = bx; x < bx + columns; ++x) flat &= flatPixel[static_cast<size_t>(y) * source.width + x];
      for (int32_t y = by; y < by + rows; ++y)
        for (int32_t x = bx; x < bx + columns; ++x) flatBlock[static_cast<size_t>(y) * source.width + x] = flat;
    }
  }
  return flatBlock;
}

void TrainedOutputs(const uint8_t p[kSrTaps], const CoefficientTable& table, int32_t cls, uint8_t out[kSrPositions]) {
  for (int32_t n = 0; n < kSrPositions; ++n) {
    const double* w = table.Weights(cls, n);
    double sum = 0;
    for (int32_t k = 0; k < kSrTaps; ++k) sum += p[k] * w[k];
    out[n] = SrClampToByte(sum);
  }
}

LumaPicture PlainUpscale(const LumaPicture& source) {
  LumaPicture target(2 * source.width, 2 * source.height);
  for (int32_t y = 0; y < source.height; ++y) {
    for (int32_t x = 0; x < source.width; ++x) {
      uint8_t p[kSrTaps], out[kSrPositions];
      GatherNeighbourhood(source, x, y, p);
      PlainOutputs(p, out);
      Store(target, x, y, out);
    }
  }
  return target;
}

LumaPicture TrainedUpscale(const LumaPicture& source, const CoefficientTable& table) {
  const std::vector<uint8_t> flat = FlatBlockMap(source);
  LumaPicture target(2 * source.width, 2 * source.height);
  for (int32_t y = 0; y < source.height; ++y) {
    for (int32_t x = 0; x < source.width; ++x) {
      uint8_t p[kSrTaps], out[kSrPositions];
      GatherNeighbourhood(source, x, y, p);
      const bool edgeColumn = x == 0 || x == source.width - 1;
      const int32_t cls = edgeColumn || flat[static_cast<size_t>(y) * source.width + x] ? -1 : SrClass(p);
      if (cls >= 0 && table.valid[cls])
        TrainedOutputs(p, table, cls, out);
      else
        PlainOutputs(p, out);
      Store(target, x, y, out);
    }
  }
  return target;
}

LumaPicture BicubicUpscale(const LumaPicture& source) {
  // Output column 2x + i reads source columns x - 2 + i .. x + 1 + i; the
  // fractional position is 0.75 for i = 0 and 0.25 for i = 1.
  double taps[2][4];
  for (int32_t i = 0; i < 2; ++i) {
    const double fraction = i == 0 ? 0.75 : 0.25;
    for (int32_t j = 0; j < 4; ++j) taps[i][j] = Keys(fraction - (j - 1));
  }
  const int32_t width = 2 * source.width, height = 2 * source.height;
  std::vector<double> rows(static_cast<size_t>(width) * source.height);
  for (int32_t y = 0; y < source.height; ++y) {
    for (int32_t ox = 0; ox < width; ++ox) {
      const int32_t i = ox & 1, first = (ox >> 1) - 2 + i;
      double sum = 0;
      for (int32_t j = 0; j < 4; ++j) sum += taps[i][j] * source.At(Clamp(first + j, 0, source.width - 1), y);
      rows[static_cast<size_t>(y) * width + ox] = sum;
    }
  }
  LumaPicture target(width, height);
  for (int32_t oy = 0; oy < height; ++oy) {
    const int32_t i = oy & 1, first = (oy >> 1) - 2 + i;
    for (int32_t ox = 0; ox < width; ++ox) {
      double sum = 0;
      for (int32_t j = 0; j < 4; ++j)
        sum += taps[i][j] * rows[static_cast<size_t>(Clamp(first + j, 0, source.height - 1)) * width + ox];
      target.At(ox, oy) = static_cast<uint8_t>(std::clamp(std::floor(sum + 0.5), 0.0, 255.0));
    }
  }
  return target;
}

double Psnr(const LumaPicture& a, const LumaPicture& b) {
  double squares = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    const double d = static_cast<double>(a.pixels[i]) - b.pixels[i];
    squares += d * d;
  }
  if (squares == 0) return 99;
  return 10 * std::log10(255.0 * 255.0 * a.pixels.size() / squares);
}

}  // namespace Lumaforge::sr_train
