#include "tools/lumaforge/patterns.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "tools/lumaforge/canvas.h"
#include "tools/lumaforge/converter.h"

namespace Lumaforge::cli {
namespace {

uint8_t Clamp(double value) { return static_cast<uint8_t>(std::lround(std::fmin(std::fmax(value, 0.0), 255.0))); }

// Shallow ramps: few code values over many pixels, so they band.
void DrawGradients(Frame& f, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h) {
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      const double across = double(x) / w, down = double(y) / h;
      if (y < h / 2) {
        const uint8_t grey = Clamp(20 + 40 * across);
        SetPixel(f, x0 + x, y0 + y, {grey, grey, grey, 255});
      } else {
        const double t = (down - 0.5) * 2;  // sky: deep blue to a warm horizon
        SetPixel(f, x0 + x, y0 + y, {Clamp(30 + 200 * t), Clamp(60 + 90 * t), Clamp(160 - 60 * t), 255});
      }
    }
  }
}

// Rings whose frequency rises to the Nyquist limit at the left and right
// edges, drifting from frame to frame.
void DrawZonePlate(Frame& f, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h, uint32_t index) {
  const double cx = w / 2.0, cy = h / 2.0, scale = std::numbers::pi / w;
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      const double r2 = (x - cx) * (x - cx) + (y - cy) * (y - cy);
      const uint8_t v = Clamp(128 + 110 * std::cos(scale * r2 - 0.4 * index));
      SetPixel(f, x0 + x, y0 + y, {v, v, v, 255});
    }
  }
}

// A fine checker on the left, one-pixel lines on the right.
void DrawDetail(Frame& f, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h) {
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      bool on;
      if (x < w / 2) {
        const uint32_t cell = y < h / 2 ? 4 : 1;
        on = ((x / cell) + (y / cell)) & 1;
      } else {
        const uint32_t u = x - w / 2;
        on = (y < h / 3) ? u % 3 == 0 : (y < 2 * h / 3) ? y % 3 == 0 : (u + y) % 5 == 0;
      }
      const uint8_t v = on ? 235 : 20;
      SetPixel(f, x0 + x, y0 + y, {v, v, v, 255});
    }
  }
}

void DrawNoise(Frame& f, uint32_t x0, uint32_t y0, uint32_t w, uint32_t h, uint32_t index) {
  uint32_t seed = 0x9e3779b9u * (index + 1);
  auto next = [&seed] {
    seed = seed * 1664525u + 1013904223u;
    return static_cast<int>(seed >> 24) - 128;
  };
  for (uint32_t y = 0; y < h; ++y) {
    for (uint32_t x = 0; x < w; ++x) {
      const int grey = next() / 2;
      SetPixel(f, x0 + x, y0 + y,
               {Clamp(128 + grey + next() / 8), Clamp(128 + grey), Clamp(128 + grey + next() / 8), 255});
    }
  }
}

}  // namespace

Frame ColourBars(uint32_t width, uint32_t height) {
  static constexpr Rgba kBars[] = {{191, 191, 191, 255}, {191, 191, 0, 255}, {0, 191, 191, 255}, {0, 191, 0, 255},
                                   {191, 0, 191, 255},   {191, 0, 0, 255},   {0, 0, 191, 255}};
  Frame bars(LF_RGBA, width, height);
  for (uint32_t x = 0; x < width; ++x) {
    const Rgba colour = kBars[size_t{x} * 7 / width];
    for (uint32_t y = 0; y < height; ++y) SetPixel(bars, x, y, colour);
  }
  return bars;
}

Frame DemoFrame(uint32_t width, uint32_t height, uint32_t index, uint32_t count) {
  Frame f(LF_RGBA, width, height);
  const uint32_t w = width / 2, h = height / 2;
  DrawGradients(f, 0, 0, w, h);
  DrawZonePlate(f, w, 0, width - w, h, index);
  DrawDetail(f, 0, h, w, height - h);
  DrawNoise(f, w, h, width - w, height - h, index);

  const double s = width / 1280.0, t = count > 1 ? double(index) / (count - 1) : 0.0;
  const int W = static_cast<int>(width), H = static_cast<int>(height);
  // A block of text on a dark box sized to it.
  const int big = std::max(1, static_cast<int>(std::lround(3 * s))), small = std::max(1, big - 1);
  const std::string lines[] = {"LUMAFORGE DEMO CLIP",
                               "frame " + std::to_string(index + 1) + " of " + std::to_string(count),
                               "The quick brown fox jumps over the lazy dog 0123456789"};
  const int scales[] = {big, big, small};
  const Rgba colours[] = {{255, 255, 255, 255}, {255, 220, 80, 255}, {160, 220, 255, 255}};
  int boxWidth = 0, boxHeight = 0;
  for (int i = 0; i < 3; ++i) {
    boxWidth = std::max(boxWidth, TextWidth(lines[i], scales[i]));
    boxHeight += 13 * scales[i];
  }
  const int pad = 4 * big, left = (W - boxWidth) / 2 - pad, top = (H - boxHeight) / 2 - pad;
  FillRect(f, left, top, boxWidth + 2 * pad, boxHeight + 2 * pad, {10, 10, 40, 255});
  for (int i = 0, y = top + pad; i < 3; y += 13 * scales[i], ++i)
    DrawText(f, left + pad, y, scales[i], lines[i], colours[i]);

  // Motion: a disc crossing left to right, a square on a diagonal, a bar falling.
  FillDisc(f, int((0.05 + 0.9 * t) * W), int(H * (0.3 + 0.1 * std::sin(6 * t))), int(50 * s), {230, 40, 30, 255});
  FillRect(f, int((0.85 - 0.7 * t) * W), int((0.1 + 0.7 * t) * H), int(80 * s), int(80 * s), {40, 200, 60, 255});
  FillRect(f, int(0.62 * W), int(t * (H - 20 * s)), int(160 * s), int(20 * s), {250, 250, 250, 255});
  return f;
}

std::vector<Frame> DemoClip(uint32_t width, uint32_t height, uint32_t count, bool verbose) {
  Converter converter(verbose);
  std::vector<Frame> clip;
  clip.reserve(count);
  for (uint32_t i = 0; i < count; ++i) clip.push_back(converter.To(DemoFrame(width, height, i, count), LF_I420));
  return clip;
}

}  // namespace Lumaforge::cli
