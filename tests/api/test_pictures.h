// Pictures of any format for host-side tests: owned memory with padded
// strides, random content, and byte access by the documented layouts.
#ifndef LUMAFORGE_TESTS_API_TEST_PICTURES_H_
#define LUMAFORGE_TESTS_API_TEST_PICTURES_H_

#include <cstdint>
#include <vector>

#include "framework/plane_layout.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

// Planes of a format as the converter reads it (code 31 packed 4:2:2, RGBP
// stacked in one buffer).
inline PlaneLayout GeometryOf(uint32_t code, uint32_t w, uint32_t h) {
  return LayoutOf(code, FormatReading::kConversion, w, h);
}

// Fills every byte of `planes` from one linear congruential sequence.
inline void FillPlanesRandom(std::vector<uint8_t> (&planes)[3], uint32_t seed) {
  for (auto& plane : planes) {
    for (uint8_t& byte : plane) {
      seed = seed * 1664525u + 1013904223u;
      byte = static_cast<uint8_t>(seed >> 24);
    }
  }
}

// A picture with its own memory; strides padded by `pad` bytes per row.
class OwnedPicture {
 public:
  OwnedPicture(uint32_t format, uint32_t width, uint32_t height, uint32_t pad = 8) {
    const PlaneLayout g = GeometryOf(format, width, height);
    picture.width = width;
    picture.height = height;
    picture.format = format;
    for (int k = 0; k < g.planes; ++k) {
      picture.strides[k] = static_cast<uint32_t>(g.plane[k].rowBytes) + pad;
      memory[k].assign(static_cast<size_t>(picture.strides[k]) * g.plane[k].height + 1, 0);
      picture.planes[k] = memory[k].data();
    }
  }
  OwnedPicture(const OwnedPicture&) = delete;
  OwnedPicture& operator=(const OwnedPicture&) = delete;

  void FillRandom(uint32_t seed) { FillPlanesRandom(memory, seed); }
  void Fill(uint8_t value) {
    for (auto& plane : memory) plane.assign(plane.size(), value);
  }
  uint8_t& At(int plane, uint32_t x, uint32_t y) { return picture.planes[plane][y * picture.strides[plane] + x]; }

  VideoPicture picture = {};
  std::vector<uint8_t> memory[3];
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_API_TEST_PICTURES_H_
