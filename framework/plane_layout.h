// The one place that knows how a picture format lies in memory: how many
// planes it has, their sizes in bytes and samples, and bytes per pixel.
// Filters ask here instead of re-deriving it from the format code.
#ifndef LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_
#define LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_

#include <cstdint>

#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// Two codes mean different things to different filters.
enum class FormatReading : uint8_t {
  // Conversion and crop: code 31 is packed 4:2:2 (VYUY); RGBP and BGRP are
  // three planes stacked in the first plane's buffer, plane k at
  // k * strides[0] * height.
  kConversion,
  // Scaling and spatial filters: code 31 is one 8-bit grey plane; RGBP is
  // three full-size planes, each with its own pointer and stride.
  kPlanes,
};

struct PlaneShape {
  uint32_t width = 0, height = 0;   // samples (packed pixels count as one)
  uint64_t rowBytes = 0;            // bytes one row of the plane needs
  uint32_t bytesPerSample = 0;      // bytes of one sample (pixel, or chroma pair)
  uint32_t shiftX = 0, shiftY = 0;  // picture column x, row y lie at x >> shiftX, y >> shiftY

  // Bytes from the plane's start to picture position (x, y) at `stride`.
  uint64_t Offset(uint32_t x, uint32_t y, uint64_t stride) const {
    return (y >> shiftY) * stride + uint64_t{x >> shiftX} * bytesPerSample;
  }
};

struct PlaneLayout {
  int32_t planes = 0;         // planes with their own pointer; 0: the reading does not know the code
  int32_t bytesPerPixel = 0;  // bytes per sample of plane 0 (2 for packed 4:2:2)
  bool chroma420 = false;     // planes 1 and 2 (or the interleaved plane 1) are half size both ways
  PlaneShape plane[3];

  bool Known() const { return planes > 0; }
  // Bytes of every plane with rows packed, one plane after another.
  uint64_t PackedBytes() const {
    uint64_t bytes = 0;
    for (int32_t k = 0; k < planes; ++k) bytes += plane[k].rowBytes * plane[k].height;
    return bytes;
  }
  // Bytes a plane needs at `stride`: the last row ends after rowBytes.
  uint64_t PlaneBytes(int32_t k, uint64_t stride) const {
    return plane[k].height ? (plane[k].height - 1) * stride + plane[k].rowBytes : 0;
  }
};

namespace plane_layout_detail {

inline PlaneShape Shape(uint32_t width, uint32_t height, uint32_t bytesPerSample, uint32_t shiftX = 0,
                        uint32_t shiftY = 0) {
  return {width >> shiftX, height >> shiftY, uint64_t{width >> shiftX} * bytesPerSample,
          bytesPerSample,  shiftX,           shiftY};
}

inline PlaneLayout Packed(uint32_t w, uint32_t h, int32_t bytesPerPixel) {
  PlaneLayout l;
  l.planes = 1;
  l.bytesPerPixel = bytesPerPixel;
  l.plane[0] = Shape(w, h, bytesPerPixel);
  return l;
}

inline PlaneLayout ThreePlanes(PlaneShape luma, PlaneShape chroma, bool chroma420) {
  PlaneLayout l;
  l.planes = 3;
  l.bytesPerPixel = 1;
  l.chroma420 = chroma420;
  l.plane[0] = luma;
  l.plane[1] = l.plane[2] = chroma;
  return l;
}

}  // namespace plane_layout_detail

// Layout of `format` (the bottom-up flag is ignored) at width x height;
// half-size planes truncate odd sizes. Header-only, so tests and the tool
// read formats the way the library does.
inline PlaneLayout LayoutOf(uint32_t format, FormatReading reading, uint32_t w, uint32_t h) {
  using namespace plane_layout_detail;
  const bool planes = reading == FormatReading::kPlanes;
  switch (format & LF_FORMAT_CODE_MASK) {
    case LF_RGB24:
    case LF_BGR24: return Packed(w, h, 3);
    case LF_RGBA:
    case LF_BGRA:
    case LF_ABGR:
    case LF_ARGB: return Packed(w, h, 4);
    case LF_RGBP:
    case LF_BGRP: {
      if (planes) return ThreePlanes(Shape(w, h, 1), Shape(w, h, 1), false);
      PlaneLayout stacked = Packed(w, h, 1);
      stacked.plane[0].height = 3 * h;
      return stacked;
    }
    case LF_YUY2:
    case LF_YVYU:
    case LF_UYVY: return Packed(w, h, 2);
    case LF_VYUY: return planes ? Packed(w, h, 1) : Packed(w, h, 2);
    case LF_I420:
    case LF_YV12: return ThreePlanes(Shape(w, h, 1), Shape(w, h, 1, 1, 1), true);
    case LF_I440: return ThreePlanes(Shape(w, h, 1), Shape(w, h, 1, 0, 1), false);
    case LF_NV12:
    case LF_NV21: {
      PlaneLayout l = Packed(w, h, 1);
      l.planes = 2;
      l.chroma420 = true;
      l.plane[1] = Shape(w, h, 2, 1, 1);
      return l;
    }
    default: return {};
  }
}

// True when every plane of `layout` has a pointer.
inline bool PlanesPresent(const VideoPicture& picture, const PlaneLayout& layout) {
  if (!layout.Known()) return false;
  for (int32_t k = 0; k < layout.planes; ++k) {
    if (!picture.planes[k]) return false;
  }
  return true;
}

// Filters and kernels address a plane with 32-bit offsets and sizes: a
// picture whose plane would reach this many bytes is refused, not wrapped.
inline constexpr uint64_t kMaxPlaneBytes = uint64_t{1} << 31;

// True when every plane's stride holds the plane's row and the plane at that
// stride stays below kMaxPlaneBytes.
inline bool StridesHoldRows(const VideoPicture& picture, const PlaneLayout& layout) {
  for (int32_t k = 0; k < layout.planes; ++k) {
    if (picture.strides[k] < layout.plane[k].rowBytes) return false;
    if (layout.PlaneBytes(k, picture.strides[k]) >= kMaxPlaneBytes) return false;
  }
  return true;
}

// For filters that address rows by the width (tightly packed planes): every
// plane stays below kMaxPlaneBytes.
inline bool PackedPlanesFit(const PlaneLayout& layout) {
  for (int32_t k = 0; k < layout.planes; ++k) {
    if (layout.plane[k].rowBytes * layout.plane[k].height >= kMaxPlaneBytes) return false;
  }
  return true;
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_
