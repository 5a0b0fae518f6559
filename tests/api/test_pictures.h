// Pictures of any format for host-side tests: owned memory with padded
// strides, random content, and byte access by the documented layouts.
#ifndef LUMAFORGE_TESTS_API_TEST_PICTURES_H_
#define LUMAFORGE_TESTS_API_TEST_PICTURES_H_

#include <cstdint>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

// Bytes per pixel of plane 0, and chroma plane geometry, by format code.
struct PlaneGeometry {
  uint32_t rowBytes[3];
  uint32_t rows[3];
  int planes;
};

inline PlaneGeometry GeometryOf(uint32_t code, uint32_t w, uint32_t h) {
  switch (code) {
    case LF_RGB24:
    case LF_BGR24: return {{3 * w}, {h}, 1};
    case LF_RGBA:
    case LF_BGRA:
    case LF_ABGR:
    case LF_ARGB: return {{4 * w}, {h}, 1};
    case LF_RGBP:
    case LF_BGRP: return {{w}, {3 * h}, 1};  // three planes stacked in one buffer
    case LF_YUY2:
    case LF_YVYU:
    case LF_UYVY:
    case LF_VYUY: return {{2 * w}, {h}, 1};
    case LF_I420:
    case LF_YV12: return {{w, w / 2, w / 2}, {h, h / 2, h / 2}, 3};
    case LF_NV12:
    case LF_NV21: return {{w, w}, {h, h / 2}, 2};
    default: return {{w, w, w}, {h, h / 2, h / 2}, 3};  // full-width, half-height chroma
  }
}

// A picture with its own memory; strides padded by `pad` bytes per row.
class OwnedPicture {
 public:
  OwnedPicture(uint32_t format, uint32_t width, uint32_t height, uint32_t pad = 8) {
    const PlaneGeometry g = GeometryOf(format & LF_FORMAT_CODE_MASK, width, height);
    picture.width = width;
    picture.height = height;
    picture.format = format;
    for (int k = 0; k < g.planes; ++k) {
      picture.strides[k] = g.rowBytes[k] + pad;
      memory[k].assign(static_cast<size_t>(picture.strides[k]) * g.rows[k] + 1, 0);
      picture.planes[k] = memory[k].data();
    }
  }
  OwnedPicture(const OwnedPicture&) = delete;
  OwnedPicture& operator=(const OwnedPicture&) = delete;

  void FillRandom(uint32_t seed) {
    for (auto& plane : memory) {
      for (uint8_t& byte : plane) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<uint8_t>(seed >> 24);
      }
    }
  }
  void Fill(uint8_t value) {
    for (auto& plane : memory) plane.assign(plane.size(), value);
  }
  uint8_t& At(int plane, uint32_t x, uint32_t y) { return picture.planes[plane][y * picture.strides[plane] + x]; }

  VideoPicture picture = {};
  std::vector<uint8_t> memory[3];
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_API_TEST_PICTURES_H_
