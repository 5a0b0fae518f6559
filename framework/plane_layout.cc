#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

PlaneShape Shape(uint32_t width, uint32_t height, uint32_t bytesPerSample, uint32_t shiftX = 0,
                 uint32_t shiftY = 0) {
  return {width >> shiftX, height >> shiftY, uint64_t{width >> shiftX} * bytesPerSample, bytesPerSample, shiftX,
          shiftY};
}

PlaneLayout Packed(uint32_t w, uint32_t h, int32_t bytesPerPixel) {
  PlaneLayout l;
  l.planes = 1;
  l.bytesPerPixel = bytesPerPixel;
  l.plane[0] = Shape(w, h, bytesPerPixel);
  return l;
}

PlaneLayout ThreePlanes(PlaneShape luma, PlaneShape chroma, bool chroma420) {
  PlaneLayout l;
  l.planes = 3;
  l.bytesPerPixel = 1;
  l.chroma420 = chroma420;
  l.plane[0] = luma;
  l.plane[1] = l.plane[2] = chroma;
  return l;
}

}  // namespace

PlaneLayout LayoutOf(uint32_t format, FormatReading reading, uint32_t w, uint32_t h) {
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

bool PlanesPresent(const VideoPicture& picture, const PlaneLayout& layout) {
  if (!layout.Known()) return false;
  for (int32_t k = 0; k < layout.planes; ++k) {
    if (!picture.planes[k]) return false;
  }
  return true;
}

}  // namespace Lumaforge
