#include "tools/lumaforge/canvas.h"

#include <stb_easy_font.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Lumaforge::cli {
namespace {

// stb_easy_font's vertex: position and a colour we do not use.
struct FontVertex {
  float x, y, z;
  uint8_t colour[4];
};

uint8_t* Pixel(Frame& rgba, uint32_t x, uint32_t y) { return rgba.Plane(0) + (size_t{y} * rgba.width() + x) * 4; }

}  // namespace

void SetPixel(Frame& rgba, uint32_t x, uint32_t y, Rgba colour) { std::memcpy(Pixel(rgba, x, y), &colour, 4); }

void FillRect(Frame& rgba, int x, int y, int width, int height, Rgba colour) {
  const int x0 = std::max(x, 0), y0 = std::max(y, 0);
  const int x1 = std::min<int>(x + width, static_cast<int>(rgba.width()));
  const int y1 = std::min<int>(y + height, static_cast<int>(rgba.height()));
  for (int row = y0; row < y1; ++row) {
    for (int col = x0; col < x1; ++col) SetPixel(rgba, col, row, colour);
  }
}

void FillDisc(Frame& rgba, int centreX, int centreY, int radius, Rgba colour) {
  for (int dy = -radius; dy <= radius; ++dy) {
    int half = 0;
    while ((half + 1) * (half + 1) + dy * dy <= radius * radius) ++half;
    FillRect(rgba, centreX - half, centreY + dy, 2 * half + 1, 1, colour);
  }
}

void DrawText(Frame& rgba, int x, int y, int scale, const std::string& text, Rgba colour) {
  std::string line = text;                                  // stb takes a mutable string
  std::vector<FontVertex> vertices(text.size() * 70 + 16);  // enough quads for any glyph
  unsigned char unused[4] = {};
  const int quads = stb_easy_font_print(0, 0, line.data(), unused, vertices.data(),
                                        static_cast<int>(vertices.size() * sizeof(FontVertex)));
  for (int q = 0; q < quads; ++q) {
    const FontVertex* v = &vertices[size_t(q) * 4];
    const float left = std::min({v[0].x, v[1].x, v[2].x, v[3].x}), top = std::min({v[0].y, v[1].y, v[2].y, v[3].y});
    const float right = std::max({v[0].x, v[1].x, v[2].x, v[3].x}), bottom = std::max({v[0].y, v[1].y, v[2].y, v[3].y});
    FillRect(rgba, x + static_cast<int>(left) * scale, y + static_cast<int>(top) * scale,
             static_cast<int>(right - left) * scale, static_cast<int>(bottom - top) * scale, colour);
  }
}

int TextWidth(const std::string& text, int scale) {
  std::string line = text;  // stb takes a mutable string
  return stb_easy_font_width(line.data()) * scale;
}

void Paste(Frame& rgba, const Frame& picture, int x, int y) {
  const int x0 = std::max(x, 0), x1 = std::min<int>(x + static_cast<int>(picture.width()), rgba.width());
  const int y0 = std::max(y, 0), y1 = std::min<int>(y + static_cast<int>(picture.height()), rgba.height());
  if (x0 >= x1) return;
  for (int row = y0; row < y1; ++row) {
    const uint8_t* from = picture.Plane(0) + (size_t(row - y) * picture.width() + size_t(x0 - x)) * 4;
    std::memcpy(Pixel(rgba, x0, row), from, size_t(x1 - x0) * 4);
  }
}

Frame Stretched(const Frame& rgba, uint32_t width, uint32_t height) {
  Frame out(LF_RGBA, width, height);
  for (uint32_t row = 0; row < height; ++row) {
    const uint32_t fromRow = static_cast<uint32_t>(uint64_t{row} * rgba.height() / height);
    for (uint32_t col = 0; col < width; ++col) {
      const uint32_t fromCol = static_cast<uint32_t>(uint64_t{col} * rgba.width() / width);
      std::memcpy(out.Plane(0) + (size_t{row} * width + col) * 4,
                  rgba.Plane(0) + (size_t{fromRow} * rgba.width() + fromCol) * 4, 4);
    }
  }
  return out;
}

}  // namespace Lumaforge::cli
